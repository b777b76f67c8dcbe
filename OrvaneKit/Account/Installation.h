// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "QuickEntry/PaletteUsage.h"

#include <memory>
#include <optional>
#include <string>
#include <vector>

class QSettings;

namespace orvane {

/// Where one installation keeps its files, and its small settings. The default installation lives in the
/// platform's place for application data; a folder of its own (`--data-dir`) is an installation of its own.
/// Folders are made 0700. Used from the main thread.
class Installation {
public:
    /// Whether the platform has a place for who names no folder: without a home folder it has none.
    static bool hasUsualPlace();
    /// Empty: the platform's place.
    explicit Installation(const std::string &folder = {});
    ~Installation();

    const std::string &root() const { return m_root; }
    bool hasOwnFolder() const { return m_hasOwnFolder; }
    /// Makes the folder, for its user alone, when it is missing. One that others can write to is refused,
    /// since files are opened there by names that they know. On failure `problem` is a sentence for the user.
    bool makeFolder(std::string &problem) const;
    std::string serverFolder() const { return m_root + "/server"; }

    /// The server signed in to; none before the first sign-in (then it is the one on this computer).
    std::optional<std::string> currentServer() const;
    void setCurrentServer(const std::optional<std::string> &address);
    /// Somebody signed in there: it is the current server from now on.
    void noteSignIn(const std::string &server);
    /// The folder whose name sets this installation's sign-in at the server apart in the keychain, which all
    /// of a user's installations share. None for the one in the home folder that the system knows of its
    /// user, and for a sign-in from before those of other home folders were set apart; a new one is.
    std::optional<std::string> keychainFolder(const std::string &server, bool isForSignIn) const;
    /// The server signed in to last, also after signing out.
    std::optional<std::string> lastServer() const;
    /// Somebody signed out there, or the server ended the session; what waits for that account stays.
    void noteSignOut(const std::string &server);
    bool isSignedOut(const std::string &server) const;
    /// The account there is no more.
    void forgetAccount(const std::string &server);
    /// The last known address of the server on this computer.
    std::optional<std::string> localServer() const;
    void setLocalServer(const std::string &address);

    std::optional<std::string> account(const std::string &server) const;
    void setAccount(const std::string &server, const std::optional<std::string> &account);
    /// The servers with an account, in the order of their addresses.
    std::vector<std::string> servers() const;
    std::optional<std::string> workspace(const std::string &server, const std::string &account) const;
    void setWorkspace(const std::string &server, const std::string &account, const std::string &workspace);

    /// What was picked in a workspace's palette.
    PaletteUsage paletteUsage(const std::string &workspace) const;
    void setPaletteUsage(const std::string &workspace, const PaletteUsage &usage);

private:
    QSettings &settings() const;
    std::optional<std::string> value(const std::string &key) const;
    void setValue(const std::string &key, const std::optional<std::string> &value);

    std::string m_root;
    bool m_hasOwnFolder;
    mutable std::unique_ptr<QSettings> m_settings;
};

} // namespace orvane
