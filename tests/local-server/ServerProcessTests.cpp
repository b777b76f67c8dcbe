// SPDX-License-Identifier: GPL-3.0-or-later
// The server as a process of its own, over real sockets.
#include "LinkWire/LinkMessages.h"
#include "OrvaneAPI/LinkProof.h"
#include "OrvaneAPI/Operations.h"
#include "Security/RandomText.h"
#include "Support/FileDescriptor.h"
#include "support/LoopbackServer.h"

#include <QDir>
#include <QFile>
#include <QLocalSocket>
#include <QProcess>
#include <QTcpServer>
#include <QTemporaryDir>
#include <arpa/inet.h>
#include <csignal>
#include <fcntl.h>
#include <gtest/gtest.h>
#include <netinet/in.h>
#include <sys/resource.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <unistd.h>

namespace orvane::server {

using namespace operations;

namespace {

/// The programs of the tests are slow under sanitizers on a busy machine.
constexpr int patience = 60'000;

QString text(const std::string &value)
{
    return QString::fromStdString(value);
}

unsigned int modeOf(const std::string &path)
{
    struct stat info{};
    return ::lstat(path.c_str(), &info) == 0 ? info.st_mode & 0777U : 0;
}

bool sendAll(const FileDescriptor &connection, const std::string &bytes)
{
    return ::send(connection.get(), bytes.data(), bytes.size(), MSG_NOSIGNAL) ==
           static_cast<ssize_t>(bytes.size());
}

bool hasAnswer(const FileDescriptor &connection)
{
    char byte = 0;
    return ::recv(connection.get(), &byte, 1, MSG_PEEK | MSG_DONTWAIT) >= 0;
}

/// The next answer's status; 0 when the connection ended before it.
int statusFrom(const FileDescriptor &connection)
{
    std::string answer;
    char bytes[4096];
    while (!orvane::testing::isWholeAnswer(answer)) {
        const ssize_t count = ::recv(connection.get(), bytes, sizeof bytes, 0);
        if (count <= 0)
            return 0;
        answer.append(bytes, static_cast<std::size_t>(count));
    }
    return std::stoi(answer.substr(9, 3));
}

} // namespace

class ServerRun : public ::testing::Test {
protected:
    std::string folder() const { return m_root.path().toStdString() + m_below + "/server"; }

    std::unique_ptr<QProcess> launch(QStringList arguments = {},
                                     std::unique_ptr<QProcess> process = std::make_unique<QProcess>())
    {
        arguments.prepend(text(folder()));
        arguments.prepend(QStringLiteral("--data-dir"));
        process->start(QStringLiteral(ORVANE_BIN_DIR "/orvane-server"), arguments);
        EXPECT_TRUE(process->waitForStarted(patience));
        return process;
    }
    /// Starts one and waits until it says where it listens.
    std::unique_ptr<QProcess> serve(const QStringList &arguments = {},
                                    std::unique_ptr<QProcess> process = std::make_unique<QProcess>())
    {
        process = launch(arguments, std::move(process));
        while (!process->canReadLine() && process->waitForReadyRead(patience)) {
        }
        const QString address = text(process->readLine().trimmed().toStdString());
        EXPECT_TRUE(address.startsWith(QStringLiteral("http://")))
            << process->readAllStandardError().toStdString();
        m_port = static_cast<std::uint16_t>(address.section(QLatin1Char(':'), -1).toInt());
        return process;
    }
    static int exitCode(QProcess &process)
    {
        EXPECT_TRUE(process.state() == QProcess::NotRunning || process.waitForFinished(patience));
        return process.exitStatus() == QProcess::NormalExit ? process.exitCode() : -1;
    }
    static int endWith(QProcess &process, int signal)
    {
        ::kill(static_cast<pid_t>(process.processId()), signal);
        return exitCode(process);
    }

    /// A connection to the server's socket, over which that line has gone.
    std::unique_ptr<QLocalSocket> beginAsking(const std::string &line)
    {
        // Through a descriptor, since the path may be longer than an address has room for.
        const int run = ::open((folder() + "/run").c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
        auto socket = std::make_unique<QLocalSocket>();
        socket->connectToServer(text("/proc/self/fd/" + std::to_string(run) + "/server.sock"));
        ::close(run);
        if (socket->waitForConnected(patience)) {
            socket->write(QByteArray::fromStdString(line));
            socket->flush();
        }
        return socket;
    }
    static std::string heardFrom(QLocalSocket &socket)
    {
        while (!socket.canReadLine() && socket.waitForReadyRead(patience)) {
        }
        return socket.readLine().toStdString();
    }
    std::string ask(const std::string &line) { return heardFrom(*beginAsking(line)); }
    LinkAnswer answer(const std::string &line)
    {
        return decodeJson<LinkAnswer>(ask(line)).value_or(LinkAnswer{});
    }

    std::string rawRequest(const HttpRequest &request) const
    {
        std::string raw = std::string(orvane::text(request.method)) + " " + request.path +
                          " HTTP/1.1\r\nHost: 127.0.0.1:" + std::to_string(m_port) +
                          "\r\nContent-Length: " + std::to_string(request.body.size()) +
                          "\r\nAuthorization: Bearer " + m_token + "\r\n";
        for (const auto &[name, value] : request.headers.all())
            raw += name + ": " + value + "\r\n";
        return raw + "\r\n" + request.body;
    }
    HttpResponse send(const HttpRequest &request)
    {
        const std::string got = orvane::testing::exchangeRaw(m_port, rawRequest(request));
        const std::size_t end = got.find("\r\n\r\n");
        if (end == std::string::npos)
            return {};
        return {std::stoi(got.substr(9, 3)), {}, got.substr(end + 4)};
    }
    template <class Operation>
    HttpResponse call(const typename Operation::Input &input)
    {
        return send(Operation::request(input));
    }
    int rawStatus(const std::string &request)
    {
        const std::string got = orvane::testing::exchangeRaw(m_port, request);
        return got.size() > 12 ? std::stoi(got.substr(9, 3)) : 0;
    }

    /// A connection to the server that stays open.
    FileDescriptor connected() const
    {
        FileDescriptor descriptor(::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0));
        sockaddr_in address{};
        address.sin_family = AF_INET;
        address.sin_port = htons(m_port);
        address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
        EXPECT_EQ(::connect(descriptor.get(), reinterpret_cast<sockaddr *>(&address), sizeof address), 0);
        return descriptor;
    }

    void signIn() { signIn("Asia/Tokyo", "Asia/Tokyo"); }
    /// `zone` as it stands in JSON; `kept` is what the account then has.
    void signIn(const std::string &zone, const std::string &kept)
    {
        const std::string verifier = randomText(32);
        const LinkAnswer code = answer(R"({"command":"code","timeZone":")" + zone + R"(","codeChallenge":")" +
                                       digestText(verifier) + "\"}\n");
        ASSERT_TRUE(code.code) << code.error.value_or("no answer");
        ExternalExchangeRequest body;
        body.code = *code.code;
        body.codeVerifier = verifier;
        const auto signedIn = decodeJson<ExternalSignInResponse>(call<ExchangeExternalSignIn>({body}).body);
        ASSERT_TRUE(signedIn);
        m_token = signedIn->tokens.accessToken;
        const auto me = decodeJson<MeResponse>(call<GetMe>({}).body);
        ASSERT_TRUE(me);
        EXPECT_EQ(me->timeZone, kept);
        m_workspace = me->defaultWorkspaceId.value_or("");
    }

    QTemporaryDir m_root;
    std::string m_below;
    std::uint16_t m_port = 0;
    std::string m_token;
    std::string m_workspace;
};

TEST_F(ServerRun, ItOpensNoFileThatACallerNamesAsATimeZone)
{
    using namespace std::string_literals;
    const auto process = serve();
    // Opening the first would never end; the others are files, or rules that need none, but no zones.
    signIn("../../../dev/ptmx", "UTC");
    for (const std::string &zone :
         {"../../../dev/ptmx"s, "/dev/ptmx"s, "Europe"s, "XYZ5"s, "UTC+01:00"s, "Europe/Paris\0"s,
          "Europe/Paris\0x"s, "localtime"s, "../../../etc/localtime"s, "Europe/../Europe/Paris"s,
          "posix/Europe/Paris"s}) {
        RegisterRequest body;
        body.email = "grace@example.org";
        body.password = "correct horse battery";
        body.timeZone = zone;
        EXPECT_EQ(call<Register>({body}).status, 422) << zone;
        EXPECT_EQ(call<UpdateProfile>({{"Ada", zone}}).status, 422) << zone;
    }
    for (const char *zone : {"Europe/Paris", "Asia/Calcutta", "America/Ciudad_Juarez", "Etc/UTC", "EST5EDT"})
        EXPECT_EQ(call<UpdateProfile>({{"Ada", zone}}).status, 200) << zone;
    EXPECT_EQ(endWith(*process, SIGTERM), 0);
}

TEST_F(ServerRun, ItKeepsItsPortItsDataAndItsPrivacy)
{
    auto first = serve();
    const std::uint16_t port = m_port;
    const LinkAnswer hello = answer("{\"command\":\"hello\"}\n");
    EXPECT_EQ(hello.address, "http://127.0.0.1:" + std::to_string(port));
    EXPECT_EQ(hello.pid, first->processId());
    EXPECT_EQ(hello.version, ORVANE_VERSION);
    signIn();
    const std::string token = m_token;
    for (const char *name : {"", "/run"})
        EXPECT_EQ(modeOf(folder() + name), 0700U) << name;
    for (const char *name : {"/port", "/server.lock", "/server.log", "/orvane-server.sqlite",
                             "/orvane-server.sqlite-wal", "/run/server.sock"})
        EXPECT_EQ(modeOf(folder() + name), 0600U) << name;
    EXPECT_EQ(endWith(*first, SIGTERM), 0);
    EXPECT_FALSE(QFile::exists(text(folder() + "/run/server.sock")));

    const auto second = serve();
    EXPECT_EQ(m_port, port);
    EXPECT_EQ(call<GetMe>({}).status, 200) << "the key of the access tokens is kept";
    QFile log(text(folder() + "/server.log"));
    ASSERT_TRUE(log.open(QIODevice::ReadOnly));
    EXPECT_FALSE(log.readAll().contains(QByteArray::fromStdString(token)));
    EXPECT_EQ(endWith(*second, SIGINT), 0);
}

TEST_F(ServerRun, WhatWasCapturedIsWorthNothingToTheNextServer)
{
    auto server = serve();
    const std::string key = answer("{\"command\":\"hello\"}\n").key.value_or("");
    EXPECT_EQ(key.size(), 43U);
    m_token = "none";
    HttpRequest captured = GetServer::request({});
    HttpRequest whole = captured;
    whole.headers.set("Authorization", "Bearer " + m_token);
    captured.headers.set(linkProofHeader, requestProof(key, newProofNonce(), whole));
    EXPECT_EQ(send(captured).status, 200);
    endWith(*server, SIGTERM);
    server = serve();
    EXPECT_NE(answer("{\"command\":\"hello\"}\n").key, key);
    EXPECT_EQ(send(captured).status, 401);
    endWith(*server, SIGTERM);
    for (const char *name : {"/server.log", "/orvane-server.sqlite"}) {
        QFile file(text(folder() + name));
        ASSERT_TRUE(file.open(QIODevice::ReadOnly));
        EXPECT_FALSE(file.readAll().contains(QByteArray::fromStdString(key))) << name;
    }
}

TEST_F(ServerRun, ItTakesRequestsAtItsSocket)
{
    const auto server = serve();
    RegisterRequest body;
    body.email = "grace@example.org";
    body.password = "correct horse battery";
    LinkRequest request{.command = "request", .method = "POST", .path = "/api/auth/register"};
    request.headers.emplace()["Content-Type"] = "application/json";
    request.body = encodeJson(body);
    const LinkAnswer registered = answer(encodeJson(request) + "\n");
    EXPECT_EQ(registered.status, 201) << registered.body.value_or("");
    // A sign-in that came this way is good for who has the key alone.
    const auto tokens = decodeJson<AuthTokensResponse>(registered.body.value_or(""));
    ASSERT_TRUE(tokens);
    m_token = tokens->accessToken;
    EXPECT_EQ(call<GetMe>({}).status, 401);
    request = {.command = "request", .method = "GET", .path = "/api/me"};
    request.headers.emplace()["Authorization"] = "Bearer " + m_token;
    EXPECT_EQ(answer(encodeJson(request) + "\n").status, 200);
    request.method = "BREW";
    EXPECT_TRUE(answer(encodeJson(request) + "\n").error);
    EXPECT_EQ(endWith(*server, SIGTERM), 0);
}

TEST_F(ServerRun, WhatWasAnsweredSurvivesAKill)
{
    auto server = serve();
    signIn();
    CreateTimeEntryRequest body;
    body.start = instantFromMilliseconds(1'772'355'600'000);
    body.stop = body.start;
    for (int i = 0; i < 20; ++i) {
        body.id = "entry-" + std::to_string(i);
        ASSERT_EQ(call<CreateTimeEntry>({m_workspace, body}).status, 201);
    }
    endWith(*server, SIGKILL);
    server = serve();
    signIn();
    const auto kept = decodeJson<std::vector<TimeEntryResponse>>(
        call<ListTimeEntries>({m_workspace, body.start, body.start + std::chrono::hours{1}}).body);
    ASSERT_TRUE(kept);
    EXPECT_EQ(kept->size(), 20U);
    EXPECT_EQ(call<CreateTimeEntry>({m_workspace, body}).status, 200);
    endWith(*server, SIGTERM);
}

TEST_F(ServerRun, OneServerServesAFolder)
{
    std::vector<std::unique_ptr<QProcess>> racers;
    for (int i = 0; i < 3; ++i)
        racers.push_back(launch());
    std::size_t ended = 0;
    QProcess *serving = nullptr;
    for (auto &racer : racers) {
        while (racer->state() == QProcess::Running && !racer->canReadLine() &&
               racer->waitForReadyRead(patience)) {
        }
        if (racer->canReadLine()) {
            serving = racer.get();
            continue;
        }
        EXPECT_EQ(exitCode(*racer), 0);
        EXPECT_TRUE(racer->readAllStandardError().contains("runs already"));
        ++ended;
    }
    ASSERT_NE(serving, nullptr);
    EXPECT_EQ(ended, 2U);
    EXPECT_EQ(answer("{\"command\":\"hello\"}\n").pid, serving->processId());
    EXPECT_EQ(endWith(*serving, SIGTERM), 0);
}

TEST_F(ServerRun, APortThatAnotherProgramHoldsIsAClearError)
{
    endWith(*serve(), SIGTERM);
    QTcpServer other;
    ASSERT_TRUE(other.listen(QHostAddress::LocalHost, m_port));
    const auto server = launch();
    EXPECT_EQ(exitCode(*server), 1);
    const QByteArray said = server->readAllStandardError();
    EXPECT_TRUE(said.contains(QByteArray::number(m_port)) && said.contains("another program"))
        << said.toStdString();
    QFile log(text(folder() + "/server.log"));
    ASSERT_TRUE(log.open(QIODevice::ReadOnly));
    EXPECT_TRUE(log.readAll().contains("another program"));
}

TEST_F(ServerRun, ADatabaseThatIsNotOneIsAClearErrorAndStays)
{
    ASSERT_TRUE(QDir().mkpath(text(folder())));
    const QString path = text(folder() + "/orvane-server.sqlite");
    QFile file(path);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    const QByteArray content = QByteArray(8192, 'x');
    file.write(content);
    file.close();
    const auto server = launch();
    EXPECT_EQ(exitCode(*server), 1);
    EXPECT_TRUE(server->readAllStandardError().contains("database"));
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    EXPECT_EQ(file.readAll(), content);
}

TEST_F(ServerRun, TheSocketsFolderIsMadePrivateOrRefused)
{
    ASSERT_TRUE(QDir().mkpath(text(folder() + "/run")));
    ::chmod((folder() + "/run").c_str(), 0777);
    endWith(*serve(), SIGTERM);
    EXPECT_EQ(modeOf(folder() + "/run"), 0700U);

    ASSERT_TRUE(QDir(text(folder() + "/run")).removeRecursively());
    ASSERT_EQ(::symlink(m_root.path().toStdString().c_str(), (folder() + "/run").c_str()), 0);
    const auto server = launch();
    EXPECT_EQ(exitCode(*server), 1);
    EXPECT_TRUE(server->readAllStandardError().contains("socket"));
}

TEST_F(ServerRun, ADeepFolderIsNoHindrance)
{
    m_below = "/" + std::string(100, 'd') + "/" + std::string(100, 'e');
    const auto server = serve();
    EXPECT_EQ(answer("{\"command\":\"hello\"}\n").pid, server->processId());
    EXPECT_EQ(endWith(*server, SIGTERM), 0);
}

TEST_F(ServerRun, AChosenPortIsNotTheOneItKeeps)
{
    endWith(*serve(), SIGTERM);
    const std::uint16_t kept = m_port;
    const auto chosen = serve({QStringLiteral("--listen"), QStringLiteral("0.0.0.0:0")});
    EXPECT_EQ(answer("{\"command\":\"hello\"}\n").address, "http://127.0.0.1:" + std::to_string(m_port));
    EXPECT_EQ(call<Register>({}).status, 400);
    RegisterRequest body;
    body.email = "grace@example.org";
    body.password = "correct horse battery";
    EXPECT_EQ(call<Register>({body}).status, 403) << "closed beyond this computer";
    EXPECT_EQ(endWith(*chosen, SIGTERM), 0);
    const auto usual = serve();
    EXPECT_EQ(m_port, kept);
    EXPECT_EQ(endWith(*usual, SIGTERM), 0);
}

/// A disk without room, as a limit on the size of files makes one.
TEST_F(ServerRun, WhatCannotBeKeptIsRefused)
{
    endWith(*serve(), SIGTERM);
    auto server = std::make_unique<QProcess>();
    server->setChildProcessModifier([] {
        const rlimit small{400 * 1024, 400 * 1024};
        ::setrlimit(RLIMIT_FSIZE, &small);
    });
    server = serve({}, std::move(server));
    signIn();
    CreateTimeEntryRequest body;
    body.start = instantFromMilliseconds(1'772'355'600'000);
    body.stop = body.start;
    body.description = std::string(2900, 'x');
    int kept = 0;
    HttpResponse answer{201, {}, {}};
    for (; answer.status == 201 && kept < 1000; ++kept) {
        body.id = "entry-" + std::to_string(kept);
        answer = call<CreateTimeEntry>({m_workspace, body});
    }
    EXPECT_EQ(answer.status, 503) << answer.body;
    EXPECT_EQ(endWith(*server, SIGTERM), 0);

    server = serve();
    signIn();
    const auto entries = decodeJson<std::vector<TimeEntryResponse>>(
        call<ListTimeEntries>({m_workspace, body.start, body.start + std::chrono::hours{1}}).body);
    ASSERT_TRUE(entries);
    EXPECT_EQ(static_cast<int>(entries->size()), kept - 1) << "just what was answered with success";
    EXPECT_EQ(endWith(*server, SIGTERM), 0);
}

TEST_F(ServerRun, TheSocketAnswersNonsenseWithAnError)
{
    const auto server = serve();
    for (const char *line : {"\n", "x\n", "{}\n", "{\"command\":\"code\"}\n", "{\"command\":\"go\"}\n"})
        EXPECT_TRUE(answer(line).error) << line;
    EXPECT_EQ(ask(std::string(5000, 'x')), "") << "a line that never ends is hung up on";
    EXPECT_TRUE(answer("{\"command\":\"hello\"}\n").address);
    endWith(*server, SIGTERM);
}

TEST_F(ServerRun, RequestsThatAreNotRequestsDoNoHarm)
{
    const auto server = serve();
    const std::string host = "Host: 127.0.0.1:" + std::to_string(m_port) + "\r\n";
    EXPECT_EQ(rawStatus("GET /api/server HTTP/1.1\r\n" + host + "\r\n"), 200);
    EXPECT_EQ(rawStatus("GET /api/server HTTP/1.1\r\nHost: evil.example\r\n\r\n"), 421);
    EXPECT_EQ(rawStatus("GET /api/server HTTP/1.1\r\n" + host + "Origin: http://evil.example\r\n\r\n"), 403);
    EXPECT_EQ(rawStatus("HEAD /api/server HTTP/1.1\r\n" + host + "Connection: close\r\n\r\n"), 200);
    EXPECT_EQ(rawStatus("HEAD /api/auth/login HTTP/1.1\r\n" + host + "Connection: close\r\n\r\n"), 405);
    EXPECT_EQ(rawStatus("PATCH /api/server HTTP/1.1\r\n" + host + "\r\n"), 405);
    EXPECT_EQ(rawStatus("OPTIONS /api/me HTTP/1.1\r\n" + host + "\r\n"), 405);
    EXPECT_EQ(rawStatus("\x16\x03\x01garbage\r\n\r\n"), 0) << "hung up on";
    EXPECT_EQ(
        rawStatus("GET /api/server HTTP/1.1\r\n" + host + "X: " + std::string(2 << 20, 'x') + "\r\n\r\n"),
        413);
    const std::string post =
        "POST /api/auth/login HTTP/1.1\r\n" + host + "Content-Type: application/json\r\n";
    EXPECT_EQ(rawStatus(post + "Content-Length: 1048577\r\n\r\n" + std::string(1048577, ' ')), 413);
    EXPECT_EQ(rawStatus(post + "Content-Length: 999999999\r\n\r\n" + std::string(2 << 20, ' ')), 413)
        << "refused while it is still arriving";
    EXPECT_EQ(rawStatus("GET /api/server HTTP/1.1\r\n" + host + "\r\n"), 200);
    EXPECT_EQ(endWith(*server, SIGTERM), 0);
}

TEST_F(ServerRun, AFolderThatOthersCanWriteToIsRefused)
{
    ASSERT_TRUE(QDir().mkpath(text(folder())));
    const std::string victim = m_root.path().toStdString() + "/victim";
    ASSERT_EQ(::symlink(victim.c_str(), (folder() + "/port").c_str()), 0);
    ASSERT_EQ(::symlink(victim.c_str(), (folder() + "/orvane-server.sqlite").c_str()), 0);
    for (const unsigned int mode : {0777U, 01777U, 0770U, 0722U}) {
        ASSERT_EQ(::chmod(folder().c_str(), mode), 0);
        const auto server = launch();
        EXPECT_EQ(exitCode(*server), 1) << mode;
        const QByteArray said = server->readAllStandardError();
        EXPECT_TRUE(said.contains("Other users") && said.contains("chmod 700")) << said.toStdString();
    }
    EXPECT_FALSE(QFile::exists(text(victim))) << "no planted link was followed";
    EXPECT_FALSE(QFile::exists(text(folder() + "/server.log")));
    ASSERT_EQ(::chmod(folder().c_str(), 0755), 0);
    ASSERT_EQ(::chmod(m_root.path().toStdString().c_str(), 0777), 0);
    EXPECT_EQ(exitCode(*launch()), 1) << "it can be replaced as a whole";
}

TEST_F(ServerRun, BehindAProxyItIsPublic)
{
    const auto server = serve({QStringLiteral("--trusted-proxy"), QStringLiteral("127.0.0.1")});
    RegisterRequest body;
    body.email = "grace@example.org";
    body.password = "correct horse battery";
    EXPECT_EQ(call<Register>({body}).status, 403);
    const std::string get = "GET /api/server HTTP/1.1\r\nHost: upstream\r\n";
    EXPECT_EQ(rawStatus(get + "X-Forwarded-Host: time.example.org\r\n\r\n"), 200);
    EXPECT_EQ(rawStatus(get + "\r\n"), 421);
    EXPECT_EQ(endWith(*server, SIGTERM), 0);
}

/// One address that floods the server in every way at once does not keep its own user waiting: the password
/// hashes are made aside, and the silent give way.
TEST_F(ServerRun, AFloodOfStrangersKeepsNobodyWaiting)
{
    const auto server = serve();
    signIn();
    std::vector<FileDescriptor> silent;
    for (int i = 0; i < 128; ++i)
        silent.push_back(connected());
    std::vector<FileDescriptor> registering;
    for (int i = 0; i < 16; ++i) {
        RegisterRequest body;
        body.email = "stranger" + std::to_string(i) + "@example.org";
        body.password = "correct horse battery";
        registering.push_back(connected());
        ASSERT_TRUE(sendAll(registering.back(), rawRequest(Register::request({body}))));
    }
    // While the hashes are made, connections go on coming, and more are open than the server looks at one by
    // one.
    for (int i = 0; i < 5; ++i) {
        for (int j = 0; j < 200; ++j)
            silent.push_back(connected());
        EXPECT_EQ(call<GetMe>({}).status, 200);
    }
    EXPECT_FALSE(hasAnswer(registering.back())) << "the hashes are under way still";
    for (const FileDescriptor &one : registering)
        EXPECT_EQ(statusFrom(one), 201);
    EXPECT_EQ(endWith(*server, SIGTERM), 0);
}

TEST_F(ServerRun, APasswordThatCameThroughTheSocketKeepsNobodyWaiting)
{
    const auto server = serve();
    std::vector<std::unique_ptr<QLocalSocket>> registering;
    for (int i = 0; i < 8; ++i) {
        RegisterRequest body;
        body.email = "user" + std::to_string(i) + "@example.org";
        body.password = "correct horse battery";
        const LinkRequest request{.command = "request",
                                  .method = "POST",
                                  .path = "/api/auth/register",
                                  .headers = {{{"Content-Type", "application/json"}}},
                                  .body = encodeJson(body)};
        registering.push_back(beginAsking(encodeJson(request) + "\n"));
    }
    EXPECT_TRUE(answer("{\"command\":\"hello\"}\n").address);
    EXPECT_FALSE(registering.back()->waitForReadyRead(0)) << "the hashes are under way still";
    for (const auto &socket : registering)
        EXPECT_EQ(decodeJson<LinkAnswer>(heardFrom(*socket)).value_or(LinkAnswer{}).status, 201);
    EXPECT_EQ(endWith(*server, SIGTERM), 0);
}

/// Each has shown its token, so neither their number nor the limit of descriptors that the server began with
/// keeps any of them out.
TEST_F(ServerRun, AThousandWatchersOfOneAddressGetIn)
{
    constexpr rlim_t needed = 1400;
    struct rlimit own{};
    ASSERT_EQ(::getrlimit(RLIMIT_NOFILE, &own), 0);
    if (own.rlim_max < needed)
        GTEST_SKIP() << "this system grants too few descriptors";
    const struct rlimit raised{std::max(own.rlim_cur, needed), own.rlim_max};
    ASSERT_EQ(::setrlimit(RLIMIT_NOFILE, &raised), 0);
    auto process = std::make_unique<QProcess>();
    process->setChildProcessModifier([] {
        struct rlimit limit{};
        ::getrlimit(RLIMIT_NOFILE, &limit);
        limit.rlim_cur = 256;
        ::setrlimit(RLIMIT_NOFILE, &limit);
    });
    const auto server = serve({}, std::move(process));
    signIn();
    std::vector<FileDescriptor> watchers;
    for (int i = 0; i < 1000; ++i) {
        watchers.push_back(connected());
        ASSERT_TRUE(sendAll(watchers.back(), rawRequest(GetMe::request({}))));
        ASSERT_EQ(statusFrom(watchers.back()), 200) << i;
    }
    for (const FileDescriptor &watcher : watchers)
        ASSERT_TRUE(sendAll(watcher, rawRequest(GetMe::request({})))) << "none had to give way";
    for (const FileDescriptor &watcher : watchers)
        ASSERT_EQ(statusFrom(watcher), 200);
    EXPECT_EQ(endWith(*server, SIGTERM), 0);
}

TEST_F(ServerRun, ItEndsWhenNobodyAsks)
{
    const auto server = serve({QStringLiteral("--idle-exit"), QStringLiteral("1")});
    EXPECT_EQ(exitCode(*server), 0);
}

TEST_F(ServerRun, WhoListensToLiveSyncKeepsIt)
{
    const auto server = serve({QStringLiteral("--idle-exit"), QStringLiteral("2")});
    signIn();
    const std::string negotiated =
        send({HttpMethod::post, "/api/hubs/sync/negotiate?negotiateVersion=1", {}, {}}).body;
    const std::string member = "\"connectionToken\":\"";
    const auto begin = negotiated.find(member) + member.size();
    FileDescriptor listening = connected();
    sendAll(listening,
            "GET /api/hubs/sync?id=" + negotiated.substr(begin, negotiated.find('"', begin) - begin) +
                "&access_token=" + m_token + " HTTP/1.1\r\nHost: 127.0.0.1:" + std::to_string(m_port) +
                "\r\nUpgrade: websocket\r\nConnection: Upgrade\r\nSec-WebSocket-Version: 13\r\n"
                "Sec-WebSocket-Key: dGhlIHNhbXBsZSBub25jZQ==\r\n\r\n");
    char answer[12]{};
    EXPECT_EQ(::recv(listening.get(), answer, sizeof answer, MSG_WAITALL), 12);
    EXPECT_EQ(std::string(answer, 12), "HTTP/1.1 101");
    EXPECT_FALSE(server->waitForFinished(3'000));
    listening = FileDescriptor();
    EXPECT_EQ(exitCode(*server), 0);
    QFile log(text(folder() + "/server.log"));
    ASSERT_TRUE(log.open(QIODevice::ReadOnly));
    EXPECT_FALSE(log.readAll().contains(QByteArray::fromStdString(m_token)));
}

TEST_F(ServerRun, ItHoldsNothingOfWhoStartedIt)
{
    int pipe[2];
    ASSERT_EQ(::pipe(pipe), 0); // without close-on-exec, so that the server inherits it
    const auto server = serve();
    ::close(pipe[1]);
    char byte = 0;
    EXPECT_EQ(::read(pipe[0], &byte, 1), 0) << "the other end is closed everywhere";
    ::close(pipe[0]);
    ::kill(static_cast<pid_t>(server->processId()), SIGHUP);
    EXPECT_TRUE(answer("{\"command\":\"hello\"}\n").address) << "a hang-up is survived";
    EXPECT_EQ(endWith(*server, SIGTERM), 0);
}

TEST_F(ServerRun, WrongUsageIsSaid)
{
    EXPECT_EQ(exitCode(*launch({QStringLiteral("--nonsense")})), 2);
    EXPECT_EQ(exitCode(*launch({QStringLiteral("--listen"), QStringLiteral("nowhere")})), 2);
    EXPECT_EQ(exitCode(*launch({QStringLiteral("--idle-exit"), QStringLiteral("-1")})), 2);
    EXPECT_EQ(exitCode(*launch({QStringLiteral("--trusted-proxy"), QStringLiteral("proxy")})), 2);
}

} // namespace orvane::server
