// SPDX-License-Identifier: GPL-3.0-or-later
#include "Passkeys/linux/SecurityKeys.h"
#include "PictureAlbum.h"
#include "PictureWorld.h"
#include "support/Await.h"
#include "support/HostedServer.h"
#include "support/SoftwareKey.h"

#include <QQuickWindow>

namespace orvane::testing {

namespace {

const QString accountPassword = QStringLiteral("a good password");
const QString keyPin = QStringLiteral("123456");

class PasskeyPictures {
public:
    explicit PasskeyPictures(Album &album) : m_album(album) {}

    void draw()
    {
        if (!opens(m_desktop, [&] { return m_desktop.app().phase() == AppModel::Phase::Open; }))
            m_album.complain(QStringLiteral("The window did not open"));
        meet();
        enter([&] {
            m_desktop.signIn().setRegistering(true);
            m_desktop.signIn().setEmail(QStringLiteral("robin@fernhill.example"));
            m_desktop.signIn().submit(accountPassword);
        });
        drawAdding();
        drawList();
        m_desktop.app().signOut(false);
        await([&] { return isOpenAt(true); }, "Nobody was signed out");
        meet();
        m_album.take(m_desktop, QStringLiteral("signin-hosted"));
        drawPin();
        await(m_desktop.close());
    }

private:
    AppModel::Options options()
    {
        AppModel::Options made{.folder = m_world.folder(), .startsServer = false};
        made.passkeys = [this] {
            return std::make_unique<SecurityKeys>([this] {
                std::vector<SecurityKey> found;
                found.emplace_back(m_key.open());
                return found;
            });
        };
        return made;
    }
    template <class Condition>
    void await(Condition condition, const char *complaint)
    {
        if (!eventually(condition))
            m_album.complain(QString::fromUtf8(complaint));
    }
    void await(Task<> task) { testing::await(std::move(task)); }
    void meet()
    {
        m_desktop.app().askForSignIn(QString::fromStdString(m_server.address()));
        await([&] { return m_desktop.signIn().isMet(); }, "The hosted server does not answer");
    }
    bool isOpenAt(bool isLocal)
    {
        const AppModel &app = m_desktop.app();
        return app.phase() == AppModel::Phase::Open && app.account() != nullptr &&
               app.account()->isLocal() == isLocal && app.tracker() != nullptr &&
               app.tracker()->state() == LoadState::loaded;
    }
    template <class SignIn>
    void enter(SignIn signIn)
    {
        signIn();
        await([&] { return isOpenAt(false); }, "Nobody could sign in");
        m_desktop.app().notices()->dismiss();
    }
    void ask(const char *question)
    {
        m_desktop.window()
            ->findChild<QObject *>(QStringLiteral("accountPage"))
            ->setProperty("question", QLatin1String(question));
    }
    AccountLogins &logins() { return *m_desktop.settings().logins(); }

    void drawAdding()
    {
        m_desktop.window()->setProperty("section", QStringLiteral("settings"));
        m_desktop.settings().setPage(QStringLiteral("account"));
        await([&] { return logins().offersPasskeys(); }, "No passkeys are offered");
        ask("passkey");
        logins().addPasskey({}, {});
        m_album.take(m_desktop, QStringLiteral("passkey-add"));
        logins().addPasskey(QStringLiteral("Blue key"), accountPassword);
        await([&] { return logins().prompt()->wantsPin(); }, "The key wants no PIN");
        logins().prompt()->givePin(QStringLiteral("a guess"));
        await([&] { return logins().prompt()->isWrong(); }, "Any PIN will do");
        m_album.take(m_desktop, QStringLiteral("passkey-pin"));
        Album::withLongTexts(m_desktop.window(),
                             [&] { m_album.take(m_desktop, QStringLiteral("passkey-pin-long")); });
        logins().prompt()->givePin(keyPin);
        await([&] { return logins().passkeys().size() == 1; }, "No passkey was made");
    }
    void drawList()
    {
        m_album.take(m_desktop, QStringLiteral("passkeys"));
        QObject *table = m_desktop.window()->findChild<QObject *>(QStringLiteral("passkeyTable"));
        table->setProperty("asked", logins().passkeys()[0].toMap()[QStringLiteral("id")]);
        m_album.take(m_desktop, QStringLiteral("passkeys-remove"));
        Album::withLongTexts(m_desktop.window(),
                             [&] { m_album.take(m_desktop, QStringLiteral("passkeys-remove-long")); });
        table->setProperty("asked", QString());
    }
    void drawPin()
    {
        m_desktop.signIn().usePasskey();
        await([&] { return m_desktop.signIn().passkey()->wantsPin(); }, "The key wants no PIN");
        m_album.take(m_desktop, QStringLiteral("signin-passkey"));
        enter([&] { m_desktop.signIn().passkey()->givePin(keyPin); });
    }

    Album &m_album;
    const PictureWorld m_world{PictureWorld::Contents::nothing};
    HostedServer m_server;
    SoftwareKey m_key;
    DesktopWindow m_desktop{options()};
};

} // namespace

/// Making a passkey, the list of them, and signing in with one.
void drawPasskeys(Album &album)
{
    PasskeyPictures(album).draw();
}

} // namespace orvane::testing
