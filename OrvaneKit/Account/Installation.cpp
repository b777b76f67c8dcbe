// SPDX-License-Identifier: GPL-3.0-or-later
#include "Account/Installation.h"

#include "Support/FolderSafety.h"

#include <QDir>
#include <QFile>
#include <QSettings>
#include <QStandardPaths>
#include <QUrl>
#include <algorithm>
#include <filesystem>
#include <pwd.h>
#include <unistd.h>

namespace orvane {

namespace {

std::string rootFor(const std::string &folder)
{
    const QString place = folder.empty()
                              ? QStandardPaths::writableLocation(QStandardPaths::GenericDataLocation) +
                                    QStringLiteral("/Orvane")
                              : QDir(QString::fromStdString(folder)).absolutePath();
    return place.toStdString();
}

/// A key as it stands in the settings file: an address holds "/" and ":", which that format takes for
/// structure.
QString encoded(const std::string &key)
{
    return QString::fromLatin1(QUrl::toPercentEncoding(QString::fromStdString(key)));
}

/// Whether the folder is where the user's own installation lies, whatever HOME names just now.
bool isInUsersHome(const std::string &folder)
{
    const passwd *user = ::getpwuid(::geteuid());
    if (user == nullptr || user->pw_dir == nullptr)
        return false;
    std::error_code error;
    const auto place = std::filesystem::weakly_canonical(folder, error);
    for (const char *usual : {".local/share/Orvane", "Library/Application Support/Orvane"}) {
        if (place == std::filesystem::weakly_canonical(std::filesystem::path(user->pw_dir) / usual, error))
            return true;
    }
    return false;
}

} // namespace

bool Installation::hasUsualPlace()
{
    // Qt takes the root of the file system for a home folder that is not named.
    return !qEnvironmentVariableIsEmpty("HOME") || qEnvironmentVariable("XDG_DATA_HOME").startsWith(u'/');
}

Installation::Installation(const std::string &folder)
    : m_root(rootFor(folder)), m_hasOwnFolder(!folder.empty())
{
}

Installation::~Installation() = default;

bool Installation::makeFolder(std::string &problem) const
{
    std::error_code error;
    if (std::filesystem::is_directory(m_root, error)) {
        const std::string fault = folderFault(m_root);
        if (!fault.empty())
            problem = "The folder " + m_root + " is not safe to keep your time in. " + fault;
        return fault.empty();
    }
    std::filesystem::create_directories(m_root, error);
    if (!error)
        std::filesystem::permissions(m_root, std::filesystem::perms::owner_all, error);
    if (error)
        problem = "The folder " + m_root + " cannot be made: " + error.message() + ".";
    return !error;
}

PaletteUsage Installation::paletteUsage(const std::string &workspace) const
{
    return PaletteUsage::load(settings(), workspace);
}

void Installation::setPaletteUsage(const std::string &workspace, const PaletteUsage &usage)
{
    usage.save(settings(), workspace);
}

QSettings &Installation::settings() const
{
    if (!m_settings)
        m_settings = std::make_unique<QSettings>(QString::fromStdString(m_root + "/settings.ini"),
                                                 QSettings::IniFormat);
    return *m_settings;
}

std::optional<std::string> Installation::value(const std::string &key) const
{
    const QVariant value = settings().value(encoded(key));
    return value.isValid() ? std::optional{value.toString().toStdString()} : std::nullopt;
}

void Installation::setValue(const std::string &key, const std::optional<std::string> &value)
{
    if (this->value(key) == value)
        return;
    if (value)
        settings().setValue(encoded(key), QString::fromStdString(*value));
    else
        settings().remove(encoded(key));
    settings().sync();
    QFile::setPermissions(settings().fileName(), QFile::ReadOwner | QFile::WriteOwner);
}

std::optional<std::string> Installation::currentServer() const
{
    return value("server");
}

void Installation::setCurrentServer(const std::optional<std::string> &address)
{
    setValue("server", address);
    if (address)
        setValue("lastServer", address);
}

void Installation::noteSignIn(const std::string &server)
{
    setValue("keychain:" + server, "own");
    setValue("signedOut:" + server, std::nullopt);
    setCurrentServer(server);
}

void Installation::noteSignOut(const std::string &server)
{
    setValue("signedOut:" + server, "yes");
}

void Installation::forgetAccount(const std::string &server)
{
    setAccount(server, std::nullopt);
    setValue("signedOut:" + server, std::nullopt);
    if (currentServer() == server)
        setCurrentServer(std::nullopt);
}

bool Installation::isSignedOut(const std::string &server) const
{
    return value("signedOut:" + server).has_value();
}

std::optional<std::string> Installation::keychainFolder(const std::string &server, bool isForSignIn) const
{
    if (m_hasOwnFolder)
        return m_root;
    const bool isFromBefore = !isForSignIn && account(server) && !value("keychain:" + server);
    return isFromBefore || isInUsersHome(m_root) ? std::nullopt : std::optional(m_root);
}

std::optional<std::string> Installation::lastServer() const
{
    return value("lastServer");
}

std::optional<std::string> Installation::localServer() const
{
    return value("localServer");
}

void Installation::setLocalServer(const std::string &address)
{
    setValue("localServer", address);
}

std::optional<std::string> Installation::account(const std::string &server) const
{
    return value("account:" + server);
}

void Installation::setAccount(const std::string &server, const std::optional<std::string> &account)
{
    setValue("account:" + server, account);
}

std::vector<std::string> Installation::servers() const
{
    const std::string prefix = "account:";
    std::vector<std::string> servers;
    for (const QString &key : settings().childKeys()) {
        const std::string name = QUrl::fromPercentEncoding(key.toLatin1()).toStdString();
        if (name.starts_with(prefix))
            servers.push_back(name.substr(prefix.size()));
    }
    std::ranges::sort(servers);
    return servers;
}

std::optional<std::string> Installation::workspace(const std::string &server,
                                                   const std::string &account) const
{
    return value("workspace:" + account + "@" + server);
}

void Installation::setWorkspace(const std::string &server, const std::string &account,
                                const std::string &workspace)
{
    setValue("workspace:" + account + "@" + server, workspace);
}

} // namespace orvane
