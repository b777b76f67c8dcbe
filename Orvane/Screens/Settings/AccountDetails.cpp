// SPDX-License-Identifier: GPL-3.0-or-later
#include "Screens/Settings/AccountDetails.h"

#include "AppModel/AppModel.h"
#include "Client/OrvaneClient.h"
#include "Screens/Settings/SettingsWriter.h"
#include "Time/AppClock.h"

#include <QDir>
#include <QSaveFile>
#include <QStandardPaths>
#include <QUrl>
#include <algorithm>

namespace orvane {

namespace {

constexpr int shortestPassword = 8;

QString dayAndTime(const UserTime &time, Instant instant)
{
    const QString day = QString::fromStdString(time.dayLabel(time.dayKey(instant)));
    return AccountDetails::tr("%1, %2").arg(day, QString::fromStdString(time.clockLabel(instant)));
}

/// A name in the folder that nothing has yet.
QString freeName(const QDir &folder, const QString &name)
{
    QString file = name + QStringLiteral(".zip");
    for (int i = 2; folder.exists(file); ++i)
        file = QStringLiteral("%1 (%2).zip").arg(name).arg(i);
    return file;
}

/// The file's name, or nothing where it could not be written.
std::optional<QString> saveArchive(const std::string &bytes)
{
    const QDir folder(QStandardPaths::writableLocation(QStandardPaths::DownloadLocation));
    if (!folder.mkpath(QStringLiteral(".")))
        return std::nullopt;
    const auto today = QDateTime::fromMSecsSinceEpoch(
        std::chrono::floor<std::chrono::milliseconds>(AppClock::now()).time_since_epoch().count());
    const QString name =
        freeName(folder, AccountDetails::tr("Orvane data %1").arg(today.date().toString(Qt::ISODate)));
    QSaveFile file(folder.filePath(name));
    const auto length = static_cast<qint64>(bytes.size());
    if (!file.open(QIODevice::WriteOnly) ||
        !file.setPermissions(QFileDevice::ReadOwner | QFileDevice::WriteOwner) ||
        file.write(bytes.data(), length) != length || !file.commit())
        return std::nullopt;
    return name;
}

} // namespace

AccountDetails::AccountDetails(AppModel &app, SettingsWriter &writer) : m_app(&app), m_writer(&writer)
{
    connect(m_app, &AppModel::trackerChanged, this, &AccountDetails::follow);
    connect(m_app->sync(), &SyncStatus::changed, this, &AccountDetails::changed);
    connect(m_writer, &SettingsWriter::changed, this, &AccountDetails::changed);
    follow();
}

void AccountDetails::follow()
{
    if (m_account == m_app->account())
        return;
    m_account = m_app->account();
    m_isChangingPassword = m_isExporting = m_isDeleting = false;
    forgetProblems();
    setSessions({}, {});
    look();
}

void AccountDetails::forgetProblems()
{
    m_passwordProblem.clear();
    m_deletionProblem.clear();
    Q_EMIT changed();
}

// Who one is

bool AccountDetails::hasSignIn() const
{
    return m_account && !m_account->isAutomatic();
}

bool AccountDetails::isAway() const
{
    return !m_account || !m_account->isReachable();
}

QString AccountDetails::place() const
{
    return m_app->placeName();
}

QString AccountDetails::fullName() const
{
    const auto &shown = m_writer->shown();
    return shown ? QString::fromStdString(shown->profile.fullName) : QString();
}

QString AccountDetails::email() const
{
    return m_account ? m_account->email() : QString();
}

bool AccountDetails::isConfirmed() const
{
    return m_account && m_account->me().emailConfirmed;
}

QString AccountDetails::zone() const
{
    return m_account ? QString::fromStdString(m_account->time().timeZone()) : QString();
}

bool AccountDetails::hasPassword() const
{
    return m_account && m_account->me().hasPassword;
}

int AccountDetails::waiting() const
{
    return m_account ? static_cast<int>(m_account->outbox().pending().size()) : 0;
}

void AccountDetails::setFullName(const QString &name)
{
    m_writer->change([name = name.trimmed().toStdString()](AccountSettings &settings) {
        settings.profile.fullName = name;
    });
}

// The password

void AccountDetails::changePassword(const QString &current, const QString &next)
{
    if (!m_account || m_isChangingPassword)
        return;
    m_passwordProblem.clear();
    if (current.isEmpty())
        m_passwordProblem = tr("Type your current password.");
    else if (next.size() < shortestPassword)
        m_passwordProblem = tr("The new password needs at least %1 characters.").arg(shortestPassword);
    else
        doChangePassword({current.toStdString(), next.toStdString()});
    Q_EMIT changed();
}

Task<> AccountDetails::doChangePassword(ChangePasswordRequest request)
{
    const QPointer<AccountDetails> self(this);
    const QPointer<Account> account = m_account;
    m_isChangingPassword = true;
    const auto done = co_await account->client().changePassword(std::move(request));
    if (!self || account != m_account)
        co_return;
    m_isChangingPassword = false;
    if (done) {
        m_app->notices()->tell(tr("Password changed. Your other devices are signed out."));
        Q_EMIT passwordChanged();
        loadSessions();
    } else {
        m_passwordProblem = QString::fromStdString(describe(done.error()));
    }
    Q_EMIT changed();
}

// Sessions

void AccountDetails::setLookedAt(bool isLookedAt)
{
    m_isLookedAt = isLookedAt;
    look();
}

void AccountDetails::look()
{
    if (m_isLookedAt && hasSignIn())
        loadSessions();
}

Task<> AccountDetails::loadSessions()
{
    const QPointer<AccountDetails> self(this);
    const QPointer<Account> account = m_account;
    auto found = co_await account->client().listSessions();
    if (!self || account != m_account)
        co_return;
    if (found)
        setSessions(std::move(*found), {});
    else
        setSessions(std::move(m_sessions), QString::fromStdString(describe(found.error())));
}

void AccountDetails::setSessions(std::vector<SessionResponse> sessions, const QString &problem)
{
    m_sessions = std::move(sessions);
    // Agents have a list of their own.
    std::erase_if(m_sessions, [](const SessionResponse &session) { return session.agent.has_value(); });
    m_sessionsProblem = problem;
    std::ranges::sort(m_sessions, [](const SessionResponse &a, const SessionResponse &b) {
        return std::tuple(!a.isCurrent, b.lastUsedAt, a.id) < std::tuple(!b.isCurrent, a.lastUsedAt, b.id);
    });
    Q_EMIT sessionsChanged();
}

QVariantList AccountDetails::sessions() const
{
    QVariantList rows;
    if (!m_account)
        return rows;
    const UserTime &time = m_account->time();
    for (const SessionResponse &session : m_sessions) {
        const QString device = QString::fromStdString(session.deviceName.value_or(""));
        const QString since = QString::fromStdString(time.dayLabel(time.dayKey(session.createdAt)));
        rows << QVariantMap{
            {QStringLiteral("id"), QString::fromStdString(session.id)},
            {QStringLiteral("device"), device.isEmpty() ? tr("Unnamed device") : device},
            {QStringLiteral("isCurrent"), session.isCurrent},
            {QStringLiteral("since"), tr("since %1").arg(since)},
            {QStringLiteral("used"),
             session.isCurrent ? tr("in use now") : tr("used %1").arg(dayAndTime(time, session.lastUsedAt))},
        };
    }
    return rows;
}

void AccountDetails::signOutSession(const QString &id)
{
    if (m_account)
        doSignOutSession(id.toStdString());
}

Task<> AccountDetails::doSignOutSession(std::string id)
{
    const QPointer<AccountDetails> self(this);
    const QPointer<Account> account = m_account;
    const auto done = co_await account->client().revokeSession(std::move(id));
    if (!self || account != m_account)
        co_return;
    if (!done)
        m_app->notices()->tellFailure(QString::fromStdString(describe(done.error())));
    co_await loadSessions();
}

void AccountDetails::signOutOthers()
{
    if (m_account)
        doSignOutOthers();
}

Task<> AccountDetails::doSignOutOthers()
{
    const QPointer<AccountDetails> self(this);
    const QPointer<Account> account = m_account;
    const auto done = co_await account->client().revokeOtherSessions();
    if (!self || account != m_account)
        co_return;
    if (!done)
        m_app->notices()->tellFailure(QString::fromStdString(describe(done.error())));
    co_await loadSessions();
}

// One's data

void AccountDetails::exportData()
{
    if (m_account && !m_isExporting)
        doExport();
}

Task<> AccountDetails::doExport()
{
    const QPointer<AccountDetails> self(this);
    const QPointer<Account> account = m_account;
    m_isExporting = true;
    Q_EMIT changed();
    const auto archive = co_await account->client().exportMyData();
    if (!self || account != m_account)
        co_return;
    m_isExporting = false;
    Q_EMIT changed();
    const auto saved = archive ? saveArchive(*archive) : std::nullopt;
    if (saved)
        m_app->notices()->tell(tr("“%1” is in your folder for downloads.").arg(*saved));
    else if (archive)
        m_app->notices()->tellFailure(tr("The archive could not be saved in your folder for downloads."));
    else
        m_app->notices()->tellFailure(QString::fromStdString(describe(archive.error())));
}

void AccountDetails::deleteAccount(const QString &email, const QString &password)
{
    if (!m_account || m_isDeleting)
        return;
    DeleteAccountRequest request;
    request.email = hasSignIn() ? email.trimmed().toStdString() : m_account->me().email;
    if (!password.isEmpty())
        request.password = password.toStdString();
    m_deletionProblem.clear();
    if (request.email.empty())
        m_deletionProblem = tr("Type your email address to confirm.");
    else if (hasPassword() && !request.password)
        m_deletionProblem = tr("Type your password to confirm.");
    else
        doDelete(std::move(request));
    Q_EMIT changed();
}

Task<> AccountDetails::doDelete(DeleteAccountRequest request)
{
    const QPointer<AccountDetails> self(this);
    const QPointer<Account> account = m_account;
    m_isDeleting = true;
    const auto done = co_await account->client().deleteAccount(std::move(request));
    if (!self || account != m_account)
        co_return;
    m_isDeleting = false;
    if (done)
        m_app->forgetAccount();
    else
        m_deletionProblem = QString::fromStdString(describe(done.error()));
    Q_EMIT changed();
}

} // namespace orvane
