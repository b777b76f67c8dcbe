// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Http/HttpFront.h"
#include "Hub/SyncHub.h"
#include "HubWire/HubFrames.h"
#include "ServerFixture.h"
#include "support/Await.h"

#include <QTcpSocket>
#include <QTemporaryDir>
#include <QUrlQuery>
#include <QWebSocket>
#include <algorithm>

namespace orvane::server {

/// The hub behind real sockets, with a real database; the test sets both the server's time and the steady
/// one.
class HubFixture : public ServerFixture {
protected:
    explicit HubFixture(SyncHub::Options options = {})
        : front([](const HttpRequest &, const std::string &,
                   const HttpFront::Reply &reply) { reply({200, {}, "plain"}, false); },
                {},
                Upgrades{hubPath, [this](const HttpRequest &request, const std::string &from,
                                         const std::function<void(Upgrades::Decision)> &decided) {
                             decide(request, from, decided);
                         }})
    {
        port = front.listen({"127.0.0.1", 0}).value_or(0);
        host = "127.0.0.1:" + std::to_string(port);
        openServer({"127.0.0.1", port}, {}, folder.path().toStdString() + "/server.sqlite");
        database = Database::connect(databasePath).value();
        options.clock = [this] { return steady; };
        options.ask = [this](std::vector<HubQuestion> questions,
                             const std::function<void(SyncHub::Standings)> &done) {
            InPlaceExecutor inPlace(*database);
            if (isDatabaseAway)
                done(std::nullopt);
            else
                server->askForHub(std::move(questions), inPlace, done);
        };
        hub = std::make_unique<SyncHub>(std::move(options));
        alsoTold = [this](const ChangeNotice &notice) { hub->tell(notice); };
        signInLocally();
        userId = me().id;
    }

    void decide(const HttpRequest &request, const std::string &from,
                const std::function<void(Upgrades::Decision)> &decided)
    {
        InPlaceExecutor inPlace(*database);
        server->admitToHub(request, from, inPlace, [&](ServerCore::Admission admission) {
            if (!admission)
                return decided(failure(std::move(admission.error())));
            if (auto refusal = hub->refuse(*admission))
                return decided(failure(std::move(*refusal)));
            decided([this, guest = *admission](QWebSocket *socket) { hub->take(socket, guest); });
        });
    }

    /// What a client knows of a connection that it has negotiated.
    struct Negotiated {
        std::string connectionId;
        std::string connectionToken;
    };
    HttpResponse askToNegotiate(const std::string &token, const std::string &query = "?negotiateVersion=1")
    {
        return send({HttpMethod::post, hubNegotiatePath + query, {}, {}}, token);
    }
    Negotiated negotiate(const std::string &token)
    {
        const HttpResponse response = askToNegotiate(token);
        EXPECT_EQ(response.status, 200) << response.body;
        return {memberOf(response.body, "connectionId"), memberOf(response.body, "connectionToken")};
    }
    /// A text member's value.
    static std::string memberOf(const std::string &json, const std::string &name)
    {
        const auto begin = json.find("\"" + name + "\":\"") + name.size() + 4;
        return json.substr(begin, json.find('"', begin) - begin);
    }
    static std::string address(const std::string &ticket, const std::string &token = {})
    {
        return std::string(hubPath) + "?id=" + ticket + (token.empty() ? "" : "&access_token=" + token);
    }

    /// A client at the other end of a WebSocket.
    struct Client {
        std::string connectionId;
        QWebSocket socket;
        std::vector<std::string> heard;

        explicit Client(std::string id) : connectionId(std::move(id))
        {
            QObject::connect(&socket, &QWebSocket::textMessageReceived, &socket,
                             [this, records = hub::Records(1 << 20)](const QString &frame) mutable {
                                 const auto complete = records.take(frame.toStdString());
                                 heard.insert(heard.end(), complete->begin(), complete->end());
                             });
        }
        void say(const std::string &record) { socket.sendTextMessage(QString::fromStdString(record)); }
        void invoke(const std::string &target, const std::string &workspaceId,
                    std::optional<std::string> id = "1")
        {
            say(hub::record(hub::Message::invocation(target, {{"\"" + workspaceId + "\""}}, std::move(id))));
        }
        bool hears(std::size_t count) const
        {
            return orvane::testing::eventually([&] { return heard.size() >= count; });
        }
        bool isClosed() const
        {
            return orvane::testing::eventually(
                [&] { return socket.state() == QAbstractSocket::UnconnectedState; });
        }
        /// Since the last call, once the client has heard an answer to a question that it asks now.
        std::vector<std::string> heardByNow()
        {
            invoke("Echo", "", "now");
            EXPECT_TRUE(orvane::testing::eventually(
                [&] { return !heard.empty() && heard.back().find("\"now\"") != std::string::npos; }));
            heard.pop_back();
            return std::exchange(heard, {});
        }
    };
    using ClientPointer = std::unique_ptr<Client>;

    /// Opens the socket; nothing is said over it yet.
    ClientPointer open(const std::string &token)
    {
        const auto [connectionId, ticket] = negotiate(token);
        auto client = std::make_unique<Client>(connectionId);
        client->socket.open(QUrl(QString::fromStdString("ws://" + host + address(ticket, token))));
        EXPECT_TRUE(orvane::testing::eventually(
            [&] { return client->socket.state() == QAbstractSocket::ConnectedState && !hub->isEmpty(); }));
        return client;
    }
    ClientPointer connectHub(const std::string &token)
    {
        ClientPointer client = open(token);
        client->say(hub::record(hub::Handshake{}));
        EXPECT_TRUE(client->hears(1));
        EXPECT_EQ(client->heard.front(), "{}");
        client->heard.clear();
        return client;
    }
    ClientPointer watching(const std::string &token, const std::string &workspace)
    {
        ClientPointer client = connectHub(token);
        client->invoke("Watch", workspace);
        EXPECT_TRUE(client->hears(1));
        EXPECT_EQ(client->heard.front(), R"({"type":3,"invocationId":"1","result":true})");
        client->heard.clear();
        return client;
    }

    /// The status of the answer to a head that is sent as it is.
    int statusOf(const std::string &head)
    {
        QTcpSocket socket;
        socket.connectToHost(QHostAddress::LocalHost, port);
        socket.write(QByteArray::fromStdString(head));
        return statusFrom(socket);
    }
    static int statusFrom(QTcpSocket &socket)
    {
        QByteArray answer;
        EXPECT_TRUE(orvane::testing::eventually([&] {
            answer += socket.readAll();
            return answer.contains("\r\n\r\n");
        }));
        return answer.mid(9, 3).toInt();
    }
    std::string head(const std::string &target, const std::string &more = {}) const
    {
        return "GET " + target + " HTTP/1.1\r\nHost: " + host +
               "\r\nUpgrade: websocket\r\nConnection: keep-alive, Upgrade\r\n"
               "Sec-WebSocket-Key: dGhlIHNhbXBsZSBub25jZQ==\r\nSec-WebSocket-Version: 13\r\n" +
               more + "\r\n";
    }

    void addTag(const std::string &name, const std::string &connectionId = {})
    {
        HttpRequest request = operations::CreateTag::request({workspaceId, {name}});
        if (!connectionId.empty())
            request.headers.set("X-Sync-Connection", connectionId);
        EXPECT_EQ(send(request, accessToken).status, 201);
    }
    static std::string changed(const std::string &topic, const std::string &workspace,
                               const std::string &user)
    {
        return R"({"type":1,"target":"Changed","arguments":[{"topic":")" + topic + R"(","workspaceId":")" +
               workspace + R"(","userId":")" + user + "\"}]}";
    }
    void passSteadily(SteadyTime time)
    {
        steady += time;
        hub->keepAlive();
    }

    QTemporaryDir folder;
    std::uint16_t port = 0;
    std::unique_ptr<Database> database;
    SteadyTime steady{1'000'000};
    bool isDatabaseAway = false;
    std::string userId;
    std::unique_ptr<SyncHub> hub;
    HttpFront front;
};

} // namespace orvane::server
