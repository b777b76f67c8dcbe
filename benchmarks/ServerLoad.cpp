// SPDX-License-Identifier: GPL-3.0-or-later
// Many clients of one server on this computer that list and change entries at once, each its own ones, on a
// connection of its own: ServerLoad PORT TOKEN WORKSPACE CLIENTS SECONDS. Prints as JSON what came of it, and
// how many of the changes that were answered are not there afterwards.
#include <algorithm>
#include <arpa/inet.h>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <poll.h>
#include <string>
#include <sys/socket.h>
#include <unistd.h>
#include <vector>

namespace {

using Clock = std::chrono::steady_clock;

constexpr std::size_t entriesEach = 10;

[[noreturn]] void giveUp(const char *why)
{
    std::perror(why);
    std::exit(1);
}

struct Target {
    std::uint16_t port;
    std::string token;
    std::string workspacePath;
};

struct Totals {
    std::vector<double> milliseconds;
    long lists = 0, changes = 0, unexpected = 0, lost = 0;
};

/// What stands behind `key` in an answer, which is one entry.
std::string textMember(const std::string &json, const std::string &key)
{
    const std::string opening = "\"" + key + "\":\"";
    const std::size_t begin = json.find(opening);
    if (begin == std::string::npos)
        return {};
    const std::size_t value = begin + opening.size();
    return json.substr(value, json.find('"', value) - value);
}

/// One who works through a day of their own: makes its entries, then lists the day and changes one of them,
/// over and over.
class Client {
public:
    Client(const Target &target, int number) : m_target(target), m_number(number)
    {
        m_socket = ::socket(AF_INET, SOCK_STREAM, 0);
        sockaddr_in address{};
        address.sin_family = AF_INET;
        address.sin_port = htons(target.port);
        address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
        if (::connect(m_socket, reinterpret_cast<sockaddr *>(&address), sizeof address) != 0)
            giveUp("connect");
        const int on = 1;
        ::setsockopt(m_socket, IPPROTO_TCP, TCP_NODELAY, &on, sizeof on);
    }

    int socket() const { return m_socket; }
    bool isWaiting() const { return m_kind != Kind::none; }

    void askNext()
    {
        if (m_versions.size() < entriesEach)
            create();
        else if (m_turn++ % 2 == 0)
            list();
        else
            change();
    }
    void list() { ask(Kind::list, "GET", range(), {}, {}); }

    /// Reads what has come; true once the answer is whole.
    bool read(Totals &totals)
    {
        char bytes[16384];
        const ssize_t count = ::recv(m_socket, bytes, sizeof bytes, 0);
        if (count <= 0)
            giveUp("the server hung up");
        m_heard.append(bytes, static_cast<std::size_t>(count));
        const std::size_t head = m_heard.find("\r\n\r\n");
        if (head == std::string::npos)
            return false;
        const std::size_t length = m_heard.find("Content-Length: ");
        const std::size_t body = length < head ? std::stoul(m_heard.substr(length + 16)) : 0;
        if (m_heard.size() < head + 4 + body)
            return false;
        take(std::stoi(m_heard.substr(9, 3)), m_heard.substr(head + 4, body), totals);
        m_heard.clear();
        return true;
    }

private:
    enum class Kind { none, create, list, change };

    std::string day() const
    {
        // Two hundred days of one year, then the next.
        char text[16];
        std::snprintf(text, sizeof text, "%04d-%02d-%02d", 2000 + m_number / 336, 1 + m_number % 336 / 28,
                      1 + m_number % 28);
        return text;
    }
    std::string range() const
    {
        return "/time-entries?from=" + day() + "T00:00:00.000Z&to=" + day() + "T23:59:00.000Z";
    }
    std::string identifier(std::size_t index) const
    {
        return "load-" + std::to_string(m_number) + "-" + std::to_string(index);
    }
    std::string contents(std::size_t index) const
    {
        const std::string hour = (index < 10 ? "0" : "") + std::to_string(index);
        return R"("description":"Review number )" + std::to_string(m_turn) +
               R"(","tagIds":[],"isBillable":false,"shares":[],"describeParts":false,"start":")" + day() +
               "T" + hour + R"(:00:00.000Z","stop":")" + day() + "T" + hour + R"(:30:00.000Z"})";
    }
    void create()
    {
        const std::size_t index = m_versions.size();
        ask(Kind::create, "POST", "/time-entries", {},
            R"({"id":")" + identifier(index) + R"(",)" + contents(index));
    }
    void change()
    {
        m_changed = static_cast<std::size_t>(m_turn / 2) % entriesEach;
        ask(Kind::change, "PUT", "/time-entries/" + identifier(m_changed),
            "If-Match: " + m_versions[m_changed] + "\r\n", "{" + contents(m_changed));
    }
    void ask(Kind kind, const char *method, const std::string &path, const std::string &header,
             const std::string &body)
    {
        const std::string request = std::string(method) + " " + m_target.workspacePath + path +
                                    " HTTP/1.1\r\nHost: 127.0.0.1:" + std::to_string(m_target.port) +
                                    "\r\nAuthorization: Bearer " + m_target.token +
                                    "\r\nContent-Type: application/json\r\n" + header +
                                    "Content-Length: " + std::to_string(body.size()) + "\r\n\r\n" + body;
        m_kind = kind;
        m_began = Clock::now();
        if (::send(m_socket, request.data(), request.size(), 0) != static_cast<ssize_t>(request.size()))
            giveUp("send");
    }
    void take(int status, const std::string &body, Totals &totals)
    {
        totals.milliseconds.push_back(
            std::chrono::duration<double, std::milli>(Clock::now() - m_began).count());
        const Kind kind = m_kind;
        m_kind = Kind::none;
        if (status != (kind == Kind::create ? 201 : 200)) {
            ++totals.unexpected;
            return;
        }
        if (kind == Kind::list) {
            ++totals.lists;
            for (const std::string &version : m_versions)
                totals.lost += body.contains("\"version\":\"" + version + "\"") ? 0 : 1;
            return;
        }
        ++totals.changes;
        if (kind == Kind::create)
            m_versions.push_back(textMember(body, "version"));
        else
            m_versions[m_changed] = textMember(body, "version");
    }

    const Target &m_target;
    int m_number;
    int m_socket = -1;
    long m_turn = 0;
    Kind m_kind = Kind::none;
    Clock::time_point m_began;
    std::string m_heard;
    std::vector<std::string> m_versions;
    std::size_t m_changed = 0;
};

/// Has every client ask until `goesOn` says no, and hears their last answers.
template <class Ask, class GoesOn>
void drive(std::vector<Client> &clients, Totals &totals, Ask ask, GoesOn goesOn)
{
    std::vector<pollfd> polled;
    for (Client &client : clients) {
        ask(client);
        polled.push_back({client.socket(), POLLIN, 0});
    }
    while (std::ranges::any_of(clients, &Client::isWaiting)) {
        if (::poll(polled.data(), polled.size(), 10'000) <= 0)
            giveUp("the server does not answer");
        for (std::size_t i = 0; i < clients.size(); ++i) {
            if (polled[i].revents != 0 && clients[i].read(totals) && goesOn())
                ask(clients[i]);
        }
    }
}

double percentile(std::vector<double> values, double part)
{
    const auto place = values.begin() + static_cast<long>(part * static_cast<double>(values.size() - 1));
    std::ranges::nth_element(values, place);
    return *place;
}

} // namespace

int main(int argc, char **argv)
{
    if (argc != 6) {
        std::fputs("PORT TOKEN WORKSPACE CLIENTS SECONDS are needed\n", stderr);
        return 2;
    }
    const Target target{static_cast<std::uint16_t>(std::atoi(argv[1])), argv[2],
                        std::string("/api/workspaces/") + argv[3]};
    const int count = std::atoi(argv[4]);
    std::vector<Client> clients;
    clients.reserve(static_cast<std::size_t>(count));
    for (int number = 0; number < count; ++number)
        clients.emplace_back(target, number);
    Totals totals;
    const auto began = Clock::now();
    const auto end = began + std::chrono::seconds(std::atoi(argv[5]));
    drive(clients, totals, [](Client &client) { client.askNext(); }, [&] { return Clock::now() < end; });
    const double seconds = std::chrono::duration<double>(Clock::now() - began).count();
    const auto measured = totals.milliseconds.size();
    const double p50 = percentile(totals.milliseconds, 0.5), p99 = percentile(totals.milliseconds, 0.99);
    drive(clients, totals, [](Client &client) { client.list(); }, [] { return false; });
    std::printf(R"({"requests":%zu,"seconds":%f,"lists":%ld,"changes":%ld,"unexpected":%ld,"lost":%ld,)"
                R"("p50":%f,"p99":%f})"
                "\n",
                measured, seconds, totals.lists, totals.changes, totals.unexpected, totals.lost, p50, p99);
    return 0;
}
