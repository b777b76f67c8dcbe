// SPDX-License-Identifier: GPL-3.0-or-later
// The user's programs in the trial of a stranger on the port (scripts/check stranger): many requests at once
// to the server of a folder, which is started whenever it is away, until standard input ends. Then a line of
// JSON says what they came to.
//
//     stranger-load FOLDER SERVER-PROGRAM PASSWORD FORGED-TEXT
#include "Client/OrvaneClient.h"
#include "Http/NetworkThread.h"
#include "LocalServer/LocalAccount.h"
#include "Session/MemoryTokenStore.h"

#include <QCoreApplication>
#include <QJsonDocument>
#include <QJsonObject>
#include <QTimer>
#include <QUuid>
#include <cstdio>
#include <map>
#include <thread>

using namespace orvane;

namespace {

constexpr int workersAtOnce = 12;

struct Load {
    std::shared_ptr<NetworkThread> network = std::make_shared<NetworkThread>();
    std::shared_ptr<LocalServerLink> link;
    std::shared_ptr<HttpTransport> transport;
    std::shared_ptr<OrvaneClient> client;
    std::string workspace;
    std::string password;
    std::string forged;
    bool isOver = false;
    int running = 0;
    int answered = 0;
    int unreachable = 0;
    /// By status.
    std::map<std::int64_t, int> refused;
    int believed = 0;
};

std::shared_ptr<AuthSession> makeSession(const std::shared_ptr<Load> &load, bool signsInByItself)
{
    AuthSessionOptions options{.server = "http://this-computer",
                               .tokenStore = std::make_shared<MemoryTokenStore>(),
                               .deviceName = "trial"};
    if (signsInByItself)
        options.reauthenticator = localReauthenticator(load->link, "UTC", true);
    return AuthSession::make(*load->network, load->transport, std::move(options));
}

void countFailure(Load &load, const CallError &error)
{
    if (const auto *refusal = std::get_if<APIError>(&error))
        ++load.refused[refusal->status];
    else
        ++load.unreachable;
}

void count(Load &load, const CallResult<std::vector<TagResponse>> &tags)
{
    if (!tags)
        return countFailure(load, tags.error());
    ++load.answered;
    for (const TagResponse &tag : *tags)
        load.believed += tag.name == load.forged ? 1 : 0;
}

Task<> workAsUser(std::shared_ptr<Load> load)
{
    for (int i = 0; !load->isOver; ++i) {
        if (i % 8 == 0) {
            const auto tag = co_await load->client->createTag(
                load->workspace, {.name = QUuid::createUuid().toString().toStdString()});
            if (!tag)
                countFailure(*load, tag.error());
        } else {
            count(*load, co_await load->client->listTags(load->workspace));
        }
    }
    if (--load->running == 0)
        QCoreApplication::quit();
}

/// Signs in with a password that no account has, again and again: it must never be seen on the port.
Task<> guess(std::shared_ptr<Load> load)
{
    const auto session = makeSession(load, false);
    while (!load->isOver) {
        const auto signedIn = co_await session->login("nobody@example.org", load->password);
        load->believed += signedIn ? 1 : 0;
    }
    if (--load->running == 0)
        QCoreApplication::quit();
}

Task<> begin(std::shared_ptr<Load> load)
{
    const auto me = co_await load->client->getMe();
    if (!me || me->workspaces.empty()) {
        std::fprintf(stderr, "the account cannot be used\n");
        QCoreApplication::exit(EXIT_FAILURE);
        co_return;
    }
    load->workspace = me->workspaces.front().id;
    load->running = workersAtOnce + 1;
    for (int i = 0; i < workersAtOnce; ++i)
        workAsUser(load);
    guess(load);
    std::puts("ready");
    std::fflush(stdout);
}

void report(const Load &load)
{
    QJsonObject refused;
    for (const auto &[status, times] : load.refused)
        refused[QString::number(status)] = times;
    const QJsonObject result{{QStringLiteral("answered"), load.answered},
                             {QStringLiteral("unreachable"), load.unreachable},
                             {QStringLiteral("refused"), refused},
                             {QStringLiteral("believed"), load.believed}};
    std::puts(QJsonDocument(result).toJson(QJsonDocument::Compact).constData());
}

} // namespace

int main(int argc, char **argv)
{
    QCoreApplication application(argc, argv);
    if (argc != 5) {
        std::fprintf(stderr, "usage: stranger-load FOLDER SERVER-PROGRAM PASSWORD FORGED-TEXT\n");
        return 2;
    }
    const auto load = std::make_shared<Load>();
    load->link = LocalServerLink::make(*load->network, {.folder = argv[1], .program = argv[2]});
    load->transport = std::make_shared<LocalServerTransport>(load->link, load->network->transport(), true);
    load->client = std::make_shared<OrvaneClient>(load->network, makeSession(load, true), load->transport);
    load->password = argv[3];
    load->forged = argv[4];
    QTimer::singleShot(0, &application, [load] { begin(load); });
    std::thread untilInputEnds([load, &application] {
        while (std::getchar() != EOF) {
        }
        QMetaObject::invokeMethod(&application, [load] { load->isOver = true; });
    });
    const int status = QCoreApplication::exec();
    untilInputEnds.join();
    report(*load);
    return status;
}
