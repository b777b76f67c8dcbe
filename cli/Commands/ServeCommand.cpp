// SPDX-License-Identifier: GPL-3.0-or-later
#include "Commands/Commands.h"

#include "CommandTree.h"
#include "Terminal/StandardStreams.h"

#include <QFileInfo>
#include <cerrno>
#include <cstring>
#include <filesystem>
#include <unistd.h>

namespace orvane {

namespace {

/// The folder of the running program, whatever link it was called by.
std::filesystem::path ownFolder()
{
    std::error_code error;
    const auto program = std::filesystem::read_symlink("/proc/self/exe", error);
    return error ? std::filesystem::path() : program.parent_path();
}

/// The server takes this process's place: its messages, its signals and its exit status are the caller's own.
CommandResult serve(const CommandTree &tree, const std::optional<std::string> &listen)
{
    const Installation installation(tree.options().dataFolder);
    const std::string program = (ownFolder() / "orvane-server").string();
    std::vector<std::string> arguments{program, "--foreground", "--idle-exit",
                                       "0",     "--data-dir",   installation.serverFolder()};
    if (listen) {
        arguments.emplace_back("--listen");
        arguments.push_back(*listen);
    }
    std::vector<char *> raw;
    for (std::string &argument : arguments)
        raw.push_back(argument.data());
    raw.push_back(nullptr);
    giveBackSignals();
    execv(program.c_str(), raw.data());
    const int reason = errno;
    takeOverSignals();
    return failure(
        CommandFailure::of("The server " + program + " could not be started: " + std::strerror(reason)));
}

} // namespace

void addServeCommand(CommandTree &tree)
{
    const auto listen = std::make_shared<std::optional<std::string>>();
    CLI::App *command = tree.add("serve", "Run the server on this computer in the foreground", "The program");
    CommandTree::addText(command, "--listen", *listen, "ADDRESS:PORT",
                         "Where others can reach it; closes registration");
    tree.onRunPlain(command, [listen](const CommandTree &whole) { return serve(whole, *listen); });
}

} // namespace orvane
