// SPDX-License-Identifier: GPL-3.0-or-later
#include "Session/TokenStoreChoice.h"

#include "Client/NetworkThread.h"
#include "Session/Keychain.h"
#include "Session/MemoryTokenStore.h"

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

Task<bool> keychainWorks()
{
    enum Probe { Unknown, Works, Fails };
    static std::atomic<Probe> probe = Unknown;
    if (probe == Unknown)
        probe = co_await Keychain::works() ? Works : Fails;
    co_return probe == Works;
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
    const bool works = co_await thread.run([] { return keychainWorks(); });
    if (works)
        co_return TokenStoreChoice{std::make_shared<Keychain>(keychainService(dataFolder)), {}};
    co_return TokenStoreChoice{
        std::make_shared<MemoryTokenStore>(),
        "Sign-ins will last only until this command ends, because no keychain is available."};
}

} // namespace orvane
