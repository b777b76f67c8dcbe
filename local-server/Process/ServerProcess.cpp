// SPDX-License-Identifier: GPL-3.0-or-later
#include "Process/ServerProcess.h"

#include "LinkWire/LinkSocket.h"
#include "OrvaneAPI/LinkProof.h"
#include "Process/PortFile.h"
#include "Process/ProcessSetup.h"
#include "Security/RandomText.h"

#include <QLoggingCategory>
#include <QThread>
#include <pwd.h>
#include <unistd.h>

namespace orvane::server {

namespace {

Q_LOGGING_CATEGORY(processLog, "orvane.server.process")

/// How long a server that is on its way out, or up, may take.
constexpr std::chrono::milliseconds lockPatience{5'000};
constexpr std::chrono::milliseconds lockInterval{20};

/// What stands for the other side's address where there is none.
constexpr char socketPeer[] = "socket";

std::optional<HttpMethod> methodNamed(std::string_view name)
{
    for (const HttpMethod method :
         {HttpMethod::get, HttpMethod::post, HttpMethod::put, HttpMethod::delete_}) {
        if (text(method) == name)
            return method;
    }
    return std::nullopt;
}

std::string userName()
{
    const struct passwd *entry = ::getpwuid(::geteuid());
    return entry && entry->pw_name && *entry->pw_name ? entry->pw_name : "user";
}

} // namespace

ServerProcess::ServerProcess(ServerOptions options)
    : m_options(std::move(options))
    , m_linkKey(randomText(32))
    , m_lock(file("server.lock"))
    , m_hub({.ask =
                 [this](std::vector<HubQuestion> questions, std::function<void(SyncHub::Standings)> done) {
                     askForHub(std::move(questions), std::move(done));
                 }})
    , m_front(
          [this](const HttpRequest &request, const std::string &peer, HttpFront::Reply reply) {
              restartIdleTimer();
              serve(request, peer, std::move(reply));
          },
          m_options.trustedProxy, hubUpgrades())
    , m_socket([this](const LinkRequest &request, const ServerSocket::Reply &reply) {
        restartIdleTimer();
        if (request.command == "request")
            passOn(request, reply);
        else if (request.command == "code")
            sendCode(request, reply);
        else
            reply(request.command == "hello" ? hello() : LinkAnswer::refusal("the command is not known"));
    })
{
    m_idle.setSingleShot(true);
    connect(&m_idle, &QTimer::timeout, this, &ServerProcess::idleTimeIsOver);
    connect(&m_hub, &SyncHub::emptied, this, &ServerProcess::restartIdleTimer);
}

ServerProcess::~ServerProcess()
{
    // In this order: who finds no socket knows to wait for the lock, and who has the lock finds no one else
    // at the port or in the database.
    m_socket.close();
    m_front.close();
    m_hub.disconnect(this);
    m_hub.close();
    m_executor.reset();
    m_waiting.clear();
    m_waitingForCode.clear();
    m_waitingForHub.clear();
    m_waitingForStandings.clear();
    m_core.reset();
    m_lock.unlock();
}

std::string ServerProcess::file(const char *name) const
{
    return m_options.dataDir + "/" + name;
}

Result<ServerProcess::Outcome, std::string> ServerProcess::start()
{
    if (!takeFolder()) {
        if (!m_lock.error().empty())
            return failure("the data folder cannot be used: " + m_lock.error());
        return Outcome::runsAlready;
    }
    if (auto fault = listen(); !fault.empty())
        return failure(std::move(fault));
    if (auto fault = openCore(); !fault.empty())
        return failure(std::move(fault));
    if (auto fault = m_socket.listen(file(linkFolderName)); !fault.empty())
        return failure("the folder of the server's socket cannot be used: " + fault);
    qCInfo(processLog, "serving at %s", m_point.url().c_str());
    if (m_options.trustedProxy)
        qCInfo(processLog, "a proxy in front is taken at its word. Registration is closed.");
    else if (!m_point.isLoopback())
        qCWarning(processLog, "listening beyond this computer over plain HTTP: passwords and tokens can be "
                              "read on the way. Put a proxy with TLS in front. Registration is closed.");
    restartIdleTimer();
    return Outcome::serving;
}

/// False when another server has the folder. One that holds the lock but does not answer is starting or
/// ending, which is worth waiting for: in the second case nobody would be left.
bool ServerProcess::takeFolder()
{
    const QDeadlineTimer deadline(lockPatience);
    while (!m_lock.tryLock()) {
        if (!m_lock.error().empty() || serverAnswersIn(file(linkFolderName)) || deadline.hasExpired())
            return false;
        QThread::msleep(static_cast<unsigned long>(lockInterval.count()));
    }
    return true;
}

std::string ServerProcess::listen()
{
    const bool keeps = !m_options.listen;
    const std::string portFile = file("port");
    m_point = m_options.listen.value_or(ListenPoint{});
    if (keeps)
        m_point.port = keptPort(portFile).value_or(0);
    const bool isNew = m_point.port == 0;
    const auto port = m_front.listen(m_point);
    if (!port)
        return "cannot listen on " + m_point.address + " port " + std::to_string(m_point.port) + ": " +
               port.error() +
               (keeps && !isNew ? " (another program uses the port that this server keeps)" : "");
    m_point.port = *port;
    if (!keeps || !isNew)
        return {};
    const auto fault = keepPort(portFile, *port);
    return fault.empty() ? "" : "the port cannot be kept: " + fault;
}

std::string ServerProcess::openCore()
{
    const std::string path = file("orvane-server.sqlite");
    auto core = ServerCore::open({.databasePath = path,
                                  .listenPoint = m_point,
                                  .trustedProxy = m_options.trustedProxy,
                                  .clock = {},
                                  .linkKey = m_linkKey,
                                  .userName = userName(),
                                  .devProvider = m_options.devProvider,
                                  .publicAddress = m_options.publicAddress,
                                  .isHosted = m_options.isHosted,
                                  .onChange = [this](const ChangeNotice &notice) {
                                      const auto tell = [this, notice] { m_hub.tell(notice); };
                                      QMetaObject::invokeMethod(&m_hub, tell, Qt::QueuedConnection);
                                  }});
    if (!core)
        return std::move(core.error());
    m_core = std::move(*core);
    m_executor = std::make_unique<ServerExecutor>(RequestWorkers::Options{.databasePath = path});
    return {};
}

void ServerProcess::serve(const HttpRequest &request, const std::string &peer, HttpFront::Reply reply)
{
    const std::uint64_t number = ++m_lastNumber;
    m_waiting.emplace(number, std::move(reply));
    m_core->serve(request, peer, *m_executor, [this, number](Served served) {
        auto back = [this, number, served = std::move(served)]() mutable {
            answer(number, std::move(served));
        };
        QMetaObject::invokeMethod(this, std::move(back), Qt::QueuedConnection);
    });
}

void ServerProcess::answer(std::uint64_t number, Served served)
{
    const auto reply = m_waiting.extract(number);
    reply.mapped()(std::move(served.response), served.isSignedIn);
}

LinkAnswer ServerProcess::hello() const
{
    LinkAnswer answer;
    answer.address = m_point.url();
    answer.version = ORVANE_VERSION;
    answer.pid = ::getpid();
    answer.key = m_linkKey;
    return answer;
}

void ServerProcess::sendCode(const LinkRequest &request, const ServerSocket::Reply &reply)
{
    const std::uint64_t number = ++m_lastNumber;
    m_waitingForCode.emplace(number, reply);
    m_core->localSignInCode(request.codeChallenge.value_or(""), request.timeZone.value_or(""), *m_executor,
                            [this, number](const ServerCore::Code &code) {
                                QMetaObject::invokeMethod(
                                    this, [this, number, code] { answerCode(number, code); },
                                    Qt::QueuedConnection);
                            });
}

void ServerProcess::answerCode(std::uint64_t number, const ServerCore::Code &code)
{
    const auto reply = m_waitingForCode.extract(number);
    if (!code)
        return reply.mapped()(LinkAnswer::refusal(code.error()));
    LinkAnswer answer;
    answer.address = m_point.url();
    answer.code = *code;
    reply.mapped()(answer);
}

/// A request that came this way is as good as a proved one: whoever sends it could have asked for the key.
void ServerProcess::passOn(const LinkRequest &request, const ServerSocket::Reply &reply)
{
    const auto method = methodNamed(request.method.value_or(""));
    if (!method || !request.path)
        return reply(LinkAnswer::refusal("the request is not understood"));
    HttpRequest passed{*method, *request.path, {}, request.body.value_or("")};
    for (const auto &[name, value] : request.headers.value_or(std::map<std::string, std::string>{}))
        passed.headers.set(name, value);
    passed.headers.set("Host", m_point.url().substr(std::string_view("http://").size()));
    passed.headers.set(linkProofHeader, requestProof(m_linkKey, newProofNonce(), passed));
    serve(passed, socketPeer, [reply](HttpResponse response, bool) {
        LinkAnswer answer;
        answer.status = response.status;
        answer.headers.emplace();
        for (const auto &[name, value] : response.headers.all())
            answer.headers->emplace(name, value);
        answer.body = std::move(response.body);
        reply(answer);
    });
}

Upgrades ServerProcess::hubUpgrades()
{
    return {hubPath, [this](const HttpRequest &request, const std::string &peer,
                            std::function<void(Upgrades::Decision)> decided) {
                restartIdleTimer();
                const std::uint64_t number = ++m_lastNumber;
                m_waitingForHub.emplace(number, std::move(decided));
                m_core->admitToHub(request, peer, *m_executor,
                                   [this, number](const ServerCore::Admission &admission) {
                                       QMetaObject::invokeMethod(
                                           this, [this, number, admission] { admit(number, admission); },
                                           Qt::QueuedConnection);
                                   });
            }};
}

void ServerProcess::admit(std::uint64_t number, ServerCore::Admission admission)
{
    const auto decided = m_waitingForHub.extract(number);
    if (!admission)
        return decided.mapped()(failure(std::move(admission.error())));
    if (auto refusal = m_hub.refuse(*admission))
        return decided.mapped()(failure(std::move(*refusal)));
    decided.mapped()(
        [this, guest = std::move(*admission)](QWebSocket *socket) { m_hub.take(socket, guest); });
}

void ServerProcess::askForHub(std::vector<HubQuestion> questions,
                              std::function<void(SyncHub::Standings)> done)
{
    const std::uint64_t number = ++m_lastNumber;
    m_waitingForStandings.emplace(number, std::move(done));
    m_core->askForHub(std::move(questions), *m_executor, [this, number](const SyncHub::Standings &standings) {
        const auto back = [this, number, standings] {
            m_waitingForStandings.extract(number).mapped()(standings);
        };
        QMetaObject::invokeMethod(this, back, Qt::QueuedConnection);
    });
}

void ServerProcess::idleTimeIsOver()
{
    if (m_hub.isEmpty())
        Q_EMIT idle();
}

void ServerProcess::restartIdleTimer()
{
    if (m_options.idleExit.count() > 0)
        m_idle.start(m_options.idleExit);
}

} // namespace orvane::server
