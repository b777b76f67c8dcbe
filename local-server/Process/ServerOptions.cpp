// SPDX-License-Identifier: GPL-3.0-or-later
#include "Process/ServerOptions.h"

#include <QHostAddress>
#include <charconv>
#include <string_view>

namespace orvane::server {

namespace {

template <class Number>
std::optional<Number> numberFrom(std::string_view text)
{
    Number number = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    return error == std::errc() && end == text.data() + text.size() ? std::optional{number} : std::nullopt;
}

/// "ADDRESS:PORT"; an IPv6 address stands in brackets.
std::optional<ListenPoint> listenPointFrom(std::string_view text)
{
    const std::size_t colon = text.rfind(':');
    if (colon == std::string_view::npos)
        return std::nullopt;
    const auto port = numberFrom<std::uint16_t>(text.substr(colon + 1));
    std::string_view address = text.substr(0, colon);
    if (address.starts_with('[') && address.ends_with(']'))
        address = address.substr(1, address.size() - 2);
    if (address == "localhost")
        address = "127.0.0.1";
    const QHostAddress parsed(QString::fromUtf8(address.data(), static_cast<qsizetype>(address.size())));
    if (!port || parsed.isNull())
        return std::nullopt;
    return ListenPoint{parsed.toString().toStdString(), *port};
}

std::string setOption(ServerOptions &options, std::string_view name, std::string_view value)
{
    if (name == "--data-dir") {
        options.dataDir = value;
        return value.empty() ? "--data-dir needs a folder" : "";
    }
    if (name == "--listen") {
        options.listen = listenPointFrom(value);
        return options.listen ? "" : "--listen takes ADDRESS:PORT, such as 0.0.0.0:8080";
    }
    const auto seconds = numberFrom<std::int64_t>(value);
    // A bound that a timer's milliseconds can hold.
    if (!seconds || *seconds < 0 || *seconds > 1'000'000)
        return "--idle-exit takes a number of seconds, 0 for never";
    options.idleExit = std::chrono::seconds{*seconds};
    return "";
}

} // namespace

Result<ServerOptions, std::string> readServerOptions(int argc, const char *const *argv)
{
    ServerOptions options;
    for (int i = 1; i < argc; ++i) {
        const std::string_view argument = argv[i];
        if (argument == "--foreground") {
            options.foreground = true;
        } else if (argument == "--help") {
            options.wantsHelp = true;
        } else if (argument == "--version") {
            options.wantsVersion = true;
        } else if (argument == "--data-dir" || argument == "--listen" || argument == "--idle-exit") {
            if (i + 1 == argc)
                return failure(std::string(argument) + " needs a value");
            if (auto fault = setOption(options, argument, argv[++i]); !fault.empty())
                return failure(std::move(fault));
        } else {
            return failure("unknown argument " + std::string(argument));
        }
    }
    if (options.dataDir.empty() && !options.wantsHelp && !options.wantsVersion)
        return failure(std::string("--data-dir DIR is needed"));
    return options;
}

std::string serverUsage()
{
    return "Usage: orvane-server --data-dir DIR [OPTIONS]\n"
           "The Orvane server of one user on their own computer.\n\n"
           "  --data-dir DIR          where its data lives; one server runs for a folder\n"
           "  --listen ADDRESS:PORT   listen there instead of on a loopback port of its own;\n"
           "                          off loopback it closes registration, and plain HTTP can be read on the "
           "way\n"
           "  --idle-exit SECONDS     end after that long without a request, 0 for never (default 600)\n"
           "  --foreground            stay with the terminal and say what happens\n"
           "  --version, --help\n";
}

} // namespace orvane::server
