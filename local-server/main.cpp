// SPDX-License-Identifier: GPL-3.0-or-later
#include "Process/ProcessSetup.h"
#include "Process/ServerLog.h"
#include "Process/ServerOptions.h"
#include "Process/ServerProcess.h"
#include "Support/FolderSafety.h"
#include "Support/StopSignals.h"

#include <QCoreApplication>
#include <cstdio>
#include <cstdlib>
#include <memory>

using namespace orvane;
using namespace orvane::server;

namespace {

/// The folder's real name, which stays right when the working folder changes.
std::string absolutePath(const std::string &path)
{
    const std::unique_ptr<char, decltype(&std::free)> real(::realpath(path.c_str(), nullptr), &std::free);
    return real ? real.get() : path;
}

int fail(const std::string &message)
{
    std::fprintf(stderr, "orvane-server: %s\n", message.c_str());
    return EXIT_FAILURE;
}

int serve(ServerOptions options, QCoreApplication &application)
{
    const bool foreground = options.foreground;
    const std::string dataDir = options.dataDir;
    const StopSignals signals;
    ServerProcess server(std::move(options));
    const auto outcome = server.start();
    if (!outcome) {
        // In the log for later, and for whoever started it.
        qWarning("%s", outcome.error().c_str());
        return foreground ? EXIT_FAILURE : fail(outcome.error());
    }
    if (*outcome == ServerProcess::Outcome::runsAlready) {
        std::fprintf(stderr, "orvane-server: a server for this folder runs already\n");
        return EXIT_SUCCESS;
    }
    std::printf("%s\n", server.listenPoint().url().c_str());
    std::fflush(stdout);
    if (!foreground)
        releaseStandardStreams();
    QObject::connect(&signals, &StopSignals::stopRequested, &application, &QCoreApplication::quit);
    QObject::connect(&server, &ServerProcess::idle, &application, &QCoreApplication::quit);
    return QCoreApplication::exec();
}

} // namespace

int main(int argc, char **argv)
{
    auto options = readServerOptions(argc, argv);
    if (!options) {
        std::fprintf(stderr, "orvane-server: %s\n%s", options.error().c_str(), serverUsage().c_str());
        return 2;
    }
    if (options->wantsHelp || options->wantsVersion) {
        std::fputs(options->wantsHelp ? serverUsage().c_str() : "orvane-server " ORVANE_VERSION "\n", stdout);
        return EXIT_SUCCESS;
    }
    leaveParentBehind(options->foreground);
    raiseDescriptorLimit();
    if (const auto fault = makePrivateFolder(options->dataDir); !fault.empty())
        return fail("the data folder cannot be made: " + fault);
    if (const auto fault = folderFault(options->dataDir); !fault.empty())
        return fail("the data folder is not safe to use. " + fault);
    options->dataDir = absolutePath(options->dataDir);
    QCoreApplication application(argc, argv);
    startServerLog(options->dataDir + "/server.log", options->foreground);
    return serve(std::move(*options), application);
}
