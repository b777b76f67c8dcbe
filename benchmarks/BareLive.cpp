// SPDX-License-Identifier: GPL-3.0-or-later
// The measure for live sync: a server that does nothing but take a POST, commit its body durably and hand it
// to a WebSocket, before it answers. BareLive DATABASE prints the ports of both.
#include <QCoreApplication>
#include <QHttpServer>
#include <QWebSocket>
#include <QWebSocketServer>
#include <cstdio>
#include <cstdlib>
#include <sqlite3.h>

namespace {

class Kept {
public:
    explicit Kept(const char *path)
    {
        if (sqlite3_open(path, &m_database) != SQLITE_OK)
            giveUp();
        for (const char *statement : {"PRAGMA journal_mode = WAL", "PRAGMA synchronous = FULL",
                                      "CREATE TABLE bodies (id INTEGER PRIMARY KEY, body TEXT)"}) {
            if (sqlite3_exec(m_database, statement, nullptr, nullptr, nullptr) != SQLITE_OK)
                giveUp();
        }
        if (sqlite3_prepare_v2(m_database, "INSERT INTO bodies (body) VALUES (?)", -1, &m_insert, nullptr) !=
            SQLITE_OK)
            giveUp();
    }
    Kept(const Kept &) = delete;
    Kept &operator=(const Kept &) = delete;
    ~Kept()
    {
        sqlite3_finalize(m_insert);
        sqlite3_close(m_database);
    }

    void add(const QByteArray &body)
    {
        sqlite3_bind_text(m_insert, 1, body.constData(), static_cast<int>(body.size()), SQLITE_STATIC);
        if (sqlite3_step(m_insert) != SQLITE_DONE)
            giveUp();
        sqlite3_reset(m_insert);
    }

private:
    [[noreturn]] void giveUp() const
    {
        std::fprintf(stderr, "%s\n", sqlite3_errmsg(m_database));
        std::exit(1);
    }

    sqlite3 *m_database = nullptr;
    sqlite3_stmt *m_insert = nullptr;
};

} // namespace

int main(int argc, char **argv)
{
    const QCoreApplication application(argc, argv);
    if (argc != 2) {
        std::fputs("DATABASE is needed\n", stderr);
        return 2;
    }
    Kept kept(argv[1]);
    QWebSocketServer echoes(QStringLiteral("bare"), QWebSocketServer::NonSecureMode);
    QWebSocket *listener = nullptr;
    QObject::connect(&echoes, &QWebSocketServer::newConnection,
                     [&] { listener = echoes.nextPendingConnection(); });
    QHttpServer posts;
    posts.route(QStringLiteral("/post"), QHttpServerRequest::Method::Post,
                [&](const QHttpServerRequest &request) {
                    kept.add(request.body());
                    if (listener)
                        listener->sendTextMessage(QString::fromUtf8(request.body()));
                    return QHttpServerResponse(QHttpServerResponder::StatusCode::Created);
                });
    const auto port = posts.listen(QHostAddress::LocalHost);
    if (port == 0 || !echoes.listen(QHostAddress::LocalHost))
        return 1;
    std::printf("%d %d\n", port, echoes.serverPort());
    std::fflush(stdout);
    return QCoreApplication::exec();
}
