// SPDX-License-Identifier: GPL-3.0-or-later
#include "LocalServer/LocalServerLink.h"

#include "Http/NetworkThread.h"
#include "LocalServer/LocalSocket.h"
#include "Support/FolderSafety.h"

#include <QCoreApplication>
#include <QCoro/QCoroTimer>
#include <QDeadlineTimer>
#include <QDir>
#include <QHostAddress>
#include <QProcess>
#include <QUrl>
#include <cerrno>
#include <csignal>

namespace orvane {

namespace {

using std::chrono::milliseconds;

Task<> pause(milliseconds time)
{
    QTimer timer;
    timer.setSingleShot(true);
    timer.start(time);
    co_await timer;
}

Result<LocalServerHello, LinkError> helloFrom(const LinkAnswer &answer)
{
    const QUrl url(QString::fromStdString(answer.address.value_or("")), QUrl::StrictMode);
    const bool usable = url.isValid() && url.scheme() == QLatin1String("http") && !url.host().isEmpty() &&
                        url.port() > 0 && url.path().isEmpty() && url.userInfo().isEmpty();
    if (!usable)
        return failure(LinkError::failed("The server on this computer named no address that can be used."));
    if (answer.key.value_or("").empty())
        return failure(
            LinkError::failed("The server on this computer is of another version. End it and try again."));
    return LocalServerHello{*answer.address, answer.version.value_or(""), answer.pid.value_or(0),
                            *answer.key};
}

bool processLives(std::int64_t pid)
{
    return ::kill(static_cast<pid_t>(pid), 0) == 0 || errno != ESRCH;
}

std::string programBeside()
{
    return (QCoreApplication::applicationDirPath() + QStringLiteral("/orvane-server")).toStdString();
}

} // namespace

std::string describe(const LinkError &error)
{
    if (error.kind == LinkError::Kind::notRunning)
        return "The server on this computer is not running.";
    return error.message;
}

ConnectionError connectionError(const LinkError &error)
{
    return {describe(error)};
}

std::shared_ptr<LocalServerLink> LocalServerLink::make(NetworkThread &thread, LocalServerOptions options)
{
    options.folder = QDir(QString::fromStdString(options.folder)).absolutePath().toStdString();
    return std::shared_ptr<LocalServerLink>(new LocalServerLink(thread, std::move(options)));
}

LocalServerLink::LocalServerLink(NetworkThread &thread, LocalServerOptions options)
    : m_thread(thread), m_options(std::move(options))
{
}

LocalServerLink::~LocalServerLink() = default;

void LocalServerLink::giveUpAt(std::chrono::steady_clock::time_point deadline)
{
    m_deadline = deadline;
}

milliseconds LocalServerLink::untilDeadline() const
{
    const auto deadline = m_deadline.load();
    if (deadline == std::chrono::steady_clock::time_point::max())
        return milliseconds::max();
    const auto left = deadline - std::chrono::steady_clock::now();
    return std::max(std::chrono::ceil<milliseconds>(left), milliseconds{0});
}

milliseconds LocalServerLink::stepLimit() const
{
    return std::min(m_options.stepLimit, untilDeadline());
}

LocalServerLink::Answer<LocalServerHello> LocalServerLink::hello()
{
    return m_thread.run([self = shared_from_this()] { return helloHere(self); });
}

LocalServerLink::Answer<LocalServerHello> LocalServerLink::ensureRunning(milliseconds patience)
{
    return m_thread.run([self = shared_from_this(), patience] { return ensureHere(self, patience); });
}

LocalServerLink::Answer<std::string> LocalServerLink::requestCode(std::string codeChallenge,
                                                                  std::string timeZone)
{
    return m_thread.run([self = shared_from_this(), codeChallenge = std::move(codeChallenge),
                         timeZone = std::move(timeZone)] { return codeHere(self, codeChallenge, timeZone); });
}

LocalServerLink::Answer<HttpResponse> LocalServerLink::passOn(HttpRequest request)
{
    return m_thread.run(
        [self = shared_from_this(), request = std::move(request)] { return passOnHere(self, request); });
}

LocalServerLink::Answer<LocalServerHello> LocalServerLink::provenServer(bool start)
{
    return m_thread.run([self = shared_from_this(), start] { return provenHere(self, start, false); });
}

LocalServerLink::Answer<LocalServerHello> LocalServerLink::provenAnew(bool start)
{
    return m_thread.run([self = shared_from_this(), start] { return provenHere(self, start, true); });
}

LocalServerLink::Answer<LocalServerHello> LocalServerLink::helloHere(Self self)
{
    auto socket = co_await LocalSocket::connectTo(self->m_options.folder, self->stepLimit());
    if (!socket)
        co_return failure(std::move(socket.error()));
    auto answer = co_await LocalSocket::ask(*socket, {.command = "hello"}, self->stepLimit());
    if (!answer)
        co_return failure(std::move(answer.error()));
    auto hello = helloFrom(*answer);
    if (hello) {
        self->m_proof = std::move(*socket);
        self->m_proved = *hello;
    }
    co_return std::move(hello);
}

LocalServerLink::Answer<LocalServerHello> LocalServerLink::ensureHere(Self self, milliseconds patience)
{
    auto first = co_await helloHere(self);
    if (first || first.error().kind != LinkError::Kind::notRunning)
        co_return std::move(first);
    if (self->m_starting) {
        const auto starting = *self->m_starting;
        co_return co_await starting;
    }
    Eventual<HelloResult> starting;
    self->m_starting = starting;
    HelloResult result = co_await startAndWait(self, patience);
    self->m_starting.reset();
    starting.finish(result);
    co_return std::move(result);
}

LocalServerLink::Answer<LocalServerHello> LocalServerLink::startAndWait(Self self, milliseconds patience)
{
    constexpr milliseconds interval{10};
    // A server that ends at once may have found another one that is just starting.
    constexpr milliseconds graceAfterEnd{1000};
    const auto pid = self->start();
    if (!pid)
        co_return failure(pid.error());
    QDeadlineTimer deadline(std::min(patience, self->untilDeadline()));
    bool ended = false;
    while (!deadline.hasExpired()) {
        co_await pause(interval);
        auto hello = co_await helloHere(self);
        if (hello || hello.error().kind == LinkError::Kind::untrusted)
            co_return std::move(hello);
        if (!ended && !processLives(*pid)) {
            ended = true;
            deadline.setRemainingTime(std::min(deadline.remainingTime(), qint64{graceAfterEnd.count()}));
        }
    }
    if (self->untilDeadline() == milliseconds::zero())
        co_return failure(
            LinkError::failed("The server on this computer is starting; it did not answer in time."));
    co_return failure(
        LinkError{LinkError::Kind::startFailed, "The server on this computer did not start. Its log is " +
                                                    self->m_options.folder + "/server.log."});
}

Result<std::int64_t, LinkError> LocalServerLink::start() const
{
    if (const std::string fault = folderFault(m_options.folder); !fault.empty())
        return failure(LinkError{LinkError::Kind::untrusted, "The server's data folder " + m_options.folder +
                                                                 " is not safe to use. " + fault});
    QProcess process;
    const std::string program = m_options.program.empty() ? programBeside() : m_options.program;
    process.setProgram(QString::fromStdString(program));
    QStringList arguments;
    for (const std::string &argument :
         m_options.arguments.value_or(std::vector<std::string>{"--data-dir", m_options.folder}))
        arguments.append(QString::fromStdString(argument));
    process.setArguments(arguments);
    // It keeps the system's time, holds none of our pipes open, and no folder that is to be unmounted.
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.remove(QStringLiteral("ORVANE_NOW"));
    process.setProcessEnvironment(environment);
    process.setStandardInputFile(QProcess::nullDevice());
    process.setStandardOutputFile(QProcess::nullDevice());
    process.setStandardErrorFile(QProcess::nullDevice());
    process.setWorkingDirectory(QStringLiteral("/"));
    qint64 pid = 0;
    // Makes a session of its own for it.
    if (!process.startDetached(&pid))
        return failure(
            LinkError{LinkError::Kind::startFailed, "The server on this computer cannot be started: " +
                                                        process.errorString().toStdString()});
    return pid;
}

LocalServerLink::Answer<std::string> LocalServerLink::codeHere(Self self, std::string codeChallenge,
                                                               std::string timeZone)
{
    auto socket = co_await LocalSocket::connectTo(self->m_options.folder, self->stepLimit());
    if (!socket)
        co_return failure(std::move(socket.error()));
    auto answer = co_await LocalSocket::ask(
        *socket,
        {.command = "code", .codeChallenge = std::move(codeChallenge), .timeZone = std::move(timeZone)},
        self->stepLimit());
    if (!answer)
        co_return failure(std::move(answer.error()));
    if (!answer->code)
        co_return failure(LinkError::failed("The server on this computer gave no code."));
    co_return std::move(*answer->code);
}

LocalServerLink::Answer<HttpResponse> LocalServerLink::passOnHere(Self self, HttpRequest request)
{
    // A password is hashed slowly on purpose, and more so on a busy computer. Not bounded by the deadline:
    // this is for signing in, which somebody is waiting for, and giving up on it would not undo what it does.
    constexpr milliseconds patience{10'000};
    auto socket = co_await LocalSocket::connectTo(self->m_options.folder, self->stepLimit());
    if (!socket)
        co_return failure(std::move(socket.error()));
    LinkRequest passed{.command = "request"};
    passed.method = text(request.method);
    passed.path = std::move(request.path);
    passed.headers.emplace();
    for (const auto &[name, value] : request.headers.all())
        passed.headers->emplace(name, value);
    passed.body = std::move(request.body);
    auto answer =
        co_await LocalSocket::ask(*socket, std::move(passed), std::max(patience, self->m_options.stepLimit));
    if (!answer)
        co_return failure(std::move(answer.error()));
    if (!answer->status)
        co_return failure(LinkError::failed("The server on this computer did not take the request."));
    HttpResponse response{static_cast<int>(*answer->status), {}, answer->body.value_or("")};
    if (answer->headers) {
        for (auto &[name, value] : *answer->headers)
            response.headers.set(name, std::move(value));
    }
    co_return std::move(response);
}

LocalServerLink::Answer<LocalServerHello> LocalServerLink::provenHere(Self self, bool start, bool anew)
{
    if (!anew && self->m_proof && self->m_proof->isOpen())
        co_return LocalServerHello(self->m_proved);
    co_return co_await (start ? ensureHere(self, std::chrono::seconds{5}) : helloHere(self));
}

} // namespace orvane
