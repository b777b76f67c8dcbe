// SPDX-License-Identifier: GPL-3.0-or-later
#include "Session/TokenStoreChoice.h"

#include "Http/NetworkThread.h"
#include "Session/KernelKeyring.h"
#include "Session/Keychain.h"
#include "Session/MemoryTokenStore.h"
#include "Session/SparedKeychain.h"

#include <QCryptographicHash>
#include <QDir>
#include <QFileInfo>
#include <atomic>

namespace orvane {

namespace {

/// A folder that is yet to be made has no canonical path; its nearest ancestor that exists has.
QString canonicalPath(const QString &folder)
{
    QString absolute = QDir::cleanPath(QFileInfo(folder).absoluteFilePath());
    QString missing;
    for (QString existing = absolute;;) {
        const QString canonical = QFileInfo(existing).canonicalFilePath();
        if (!canonical.isEmpty())
            return QDir::cleanPath(canonical + missing);
        const QString parent = QFileInfo(existing).path();
        if (parent == existing)
            return absolute;
        missing.prepend(QLatin1Char('/') + QFileInfo(existing).fileName());
        existing = parent;
    }
}

constexpr std::string_view inKeyring =
    "The sign-in lies in the kernel's keyring, at most until this computer restarts.";

/// Silence is no answer to keep: the next one who asks may get one.
Task<Keychain::Health> keychainHealth()
{
    static std::atomic<Keychain::Health> health = Keychain::Health::silent;
    if (health == Keychain::Health::silent)
        health = co_await Keychain::probe();
    co_return health.load();
}

} // namespace

QString keychainService(const std::optional<std::string> &dataFolder)
{
    QString service = QStringLiteral("com.orvanetrack.refresh-token");
    if (!dataFolder)
        return service;
    const QByteArray path = canonicalPath(QString::fromStdString(*dataFolder)).toUtf8();
    const QByteArray digest = QCryptographicHash::hash(path, QCryptographicHash::Sha256).toHex();
    return service + QLatin1Char('.') + QString::fromLatin1(digest.left(16));
}

Task<TokenStoreChoice> makeTokenStore(NetworkThread &thread, std::optional<std::string> dataFolder)
{
    // QtKeychain's queue is the network thread's alone.
    const auto health = co_await thread.run([] { return keychainHealth(); });
    const QString service = keychainService(dataFolder);
    std::shared_ptr<TokenStore> keyring = makeKernelKeyring(service.toStdString());
    if (health == Keychain::Health::fails && keyring)
        co_return TokenStoreChoice{std::move(keyring), TokenPlace::kernelKeyring,
                                   "No keychain can be used here. " + std::string(inKeyring)};
    if (health == Keychain::Health::fails)
        co_return TokenStoreChoice{
            std::make_shared<MemoryTokenStore>(), TokenPlace::memory,
            "Sign-ins will last only until this command ends, because no keychain is available."};
    const auto keychain = std::make_shared<Keychain>(service);
    TokenStoreChoice choice{keychain, TokenPlace::keychain, {}};
    // It holds what was signed in to before; another place would know nothing of that.
    if (health == Keychain::Health::silent) {
        choice.place = TokenPlace::silentKeychain;
        choice.notice = "The keychain does not answer. " +
                        std::string(keyring ? inKeyring : "A sign-in made now may not be kept.");
    }
    if (keyring)
        choice.store = std::make_shared<SparedKeychain>(keychain, std::move(keyring));
    co_return choice;
}

} // namespace orvane
