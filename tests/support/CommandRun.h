// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QJsonArray>
#include <QJsonObject>
#include <QTemporaryDir>
#include <chrono>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

class QProcess;

/// Runs the real `orvane` (and through it the real `orvane-server`) as a person or a script would: as a
/// process, with arguments and an environment that has neither bus nor display.
namespace orvane {

using Arguments = std::vector<std::string>;
/// Nothing as a value takes a variable away.
using Environment = std::map<std::string, std::optional<std::string>>;

struct CommandRun {
    /// -1 when it did not end by itself in time, or was ended by a signal.
    int exitStatus = -1;
    std::string output;
    std::string errors;

    /// The one JSON value on standard output; empty when there is anything else.
    QJsonObject object() const;
    QJsonArray array() const;
    /// For messages of failing tests.
    std::string all() const;
};

/// The path of a program of this build.
std::string builtProgram(const std::string &name);

/// `inChild` runs between fork and exec.
CommandRun runProgram(const std::string &program, const Arguments &arguments,
                      const Environment &environment = {}, const std::string &input = {},
                      const std::function<void()> &inChild = {});

/// A server as its socket introduces it.
struct ServerHello {
    std::string address;
    std::int64_t pid = 0;
};

/// An installation in a folder of its own that goes away with this object, together with a server that was
/// started for it and what it left in the kernel's keyring.
class TestInstallation {
public:
    TestInstallation();
    TestInstallation(const TestInstallation &) = delete;
    TestInstallation &operator=(const TestInstallation &) = delete;
    ~TestInstallation();

    std::string folder() const;
    std::string serverFolder() const { return folder() + "/server"; }
    /// Added to every run.
    Environment environment;
    /// Runs in each command's process between fork and exec.
    std::function<void()> inChild;

    /// `orvane --data-dir FOLDER ARGUMENTS`.
    CommandRun run(const Arguments &arguments, const std::string &input = {}) const;
    /// The same with `--json` in front.
    CommandRun json(const Arguments &arguments, const std::string &input = {}) const;
    /// Started but not waited for; standard output and error stay separate.
    std::unique_ptr<QProcess> start(const Arguments &arguments) const;

    /// Nothing when no server runs for this folder.
    std::optional<ServerHello> hello() const;
    /// Ends this folder's server the hard way and waits until it is gone. False when none ran.
    bool killServer() const;

private:
    Arguments withFolder(Arguments arguments) const;

    QTemporaryDir m_folder;
};

/// What a server listening on the socket in a server's folder answers to "hello".
std::optional<ServerHello> helloFrom(const std::string &serverFolder);
/// SIGKILL, then waits until the server's lock is free.
bool killServerOf(const std::string &serverFolder);

} // namespace orvane
