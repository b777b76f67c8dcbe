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

/// As they are handed to the server.
struct ServeOptions {
    std::optional<std::string> listen;
    std::optional<std::string> trustedProxy;
    std::optional<std::string> publicAddress;
    bool devProvider = false;
};

/// The server takes this process's place: its messages, its signals and its exit status are the caller's own.
CommandResult serve(const CommandTree &tree, const ServeOptions &options)
{
    if (const auto place = tree.checkPlace(); !place)
        return failure(place.error());
    const Installation installation(tree.options().dataFolder);
    const std::string program = (ownFolder() / "orvane-server").string();
    std::vector<std::string> arguments{program, "--foreground", "--idle-exit",
                                       "0",     "--data-dir",   installation.serverFolder()};
    if (options.listen)
        arguments.insert(arguments.end(), {"--listen", *options.listen});
    if (options.trustedProxy)
        arguments.insert(arguments.end(), {"--trusted-proxy", *options.trustedProxy});
    if (options.publicAddress)
        arguments.insert(arguments.end(), {"--public-address", *options.publicAddress});
    if (options.devProvider)
        arguments.emplace_back("--dev-provider");
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
    const auto options = std::make_shared<ServeOptions>();
    CLI::App *command = tree.add("serve", "Run the server on this computer in the foreground", "The program");
    CommandTree::addText(command, "--listen", options->listen, "ADDRESS:PORT",
                         "Where others can reach it; closes registration");
    CommandTree::addText(command, "--trusted-proxy", options->trustedProxy, "ADDRESS",
                         "A proxy in front that says for whom it speaks; closes registration");
    CommandTree::addText(command, "--public-address", options->publicAddress, "URL",
                         "Where people reach it, as https://time.example.com; passkeys need one");
    CommandTree::addFlag(command, "--dev-provider", options->devProvider,
                         "Let anybody on this computer sign in by a name alone, to try that out");
    tree.onRunPlain(command, [options](const CommandTree &whole) { return serve(whole, *options); });
}

} // namespace orvane
