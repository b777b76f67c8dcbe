// SPDX-License-Identifier: GPL-3.0-or-later
#include "Process/ServerOptions.h"

#include "Http/Forwarding.h"

#include <QHostAddress>
#include <QUrl>
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

/// Null for what is no address.
QHostAddress addressFrom(std::string_view text)
{
    if (text.starts_with('[') && text.ends_with(']'))
        text = text.substr(1, text.size() - 2);
    if (text == "localhost")
        text = "127.0.0.1";
    return QHostAddress(QString::fromUtf8(text.data(), static_cast<qsizetype>(text.size())));
}

/// "ADDRESS:PORT"; an IPv6 address stands in brackets.
std::optional<ListenPoint> listenPointFrom(std::string_view text)
{
    const std::size_t colon = text.rfind(':');
    if (colon == std::string_view::npos)
        return std::nullopt;
    const auto port = numberFrom<std::uint16_t>(text.substr(colon + 1));
    const QHostAddress address = addressFrom(text.substr(0, colon));
    if (!port || address.isNull())
        return std::nullopt;
    return ListenPoint{address.toString().toStdString(), *port};
}

std::optional<std::string> proxyFrom(std::string_view text)
{
    const QHostAddress address = addressFrom(text);
    return address.isNull() ? std::nullopt : std::optional{addressText(address)};
}

/// Without a slash at the end.
std::optional<std::string> publicAddressFrom(std::string_view text)
{
    const QUrl url(QString::fromUtf8(text.data(), static_cast<qsizetype>(text.size())), QUrl::StrictMode);
    const bool isWeb = url.scheme() == QLatin1String("https") || url.scheme() == QLatin1String("http");
    const bool isBare = (url.path().isEmpty() || url.path() == QLatin1String("/")) &&
                        url.userInfo().isEmpty() && !url.hasQuery() && !url.hasFragment();
    if (!url.isValid() || !isWeb || !isBare || url.host().isEmpty())
        return std::nullopt;
    return url.toString(QUrl::FullyEncoded | QUrl::RemovePath).toStdString();
}

bool takesValue(std::string_view name)
{
    return name == "--data-dir" || name == "--listen" || name == "--trusted-proxy" ||
           name == "--public-address" || name == "--idle-exit";
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
    if (name == "--trusted-proxy") {
        options.trustedProxy = proxyFrom(value);
        return options.trustedProxy ? "" : "--trusted-proxy takes an address, such as 127.0.0.1";
    }
    if (name == "--public-address") {
        options.publicAddress = publicAddressFrom(value);
        return options.publicAddress
                   ? ""
                   : "--public-address takes a web address, such as https://time.example.com";
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
        } else if (argument == "--dev-provider") {
            options.devProvider = true;
        } else if (argument == "--hosted") {
            options.isHosted = true;
        } else if (argument == "--help") {
            options.wantsHelp = true;
        } else if (argument == "--version") {
            options.wantsVersion = true;
        } else if (takesValue(argument)) {
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
    if (options.devProvider && (options.trustedProxy || (options.listen && !options.listen->isLoopback())))
        return failure(
            std::string("--dev-provider lets anybody in, so it is for a server that only this computer "
                        "reaches"));
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
           "  --trusted-proxy ADDRESS take that proxy's word for who sends a request and to which name\n"
           "                          (X-Forwarded-For and X-Forwarded-Host, or Forwarded). It must set one\n"
           "                          kind and should remove the other: where they differ, neither\n"
           "                          counts. Closes registration\n"
           "  --public-address URL    where people reach it, such as https://time.example.com; with https "
           "and a\n"
           "                          name it keeps passkeys for them\n"
           "  --dev-provider          let anybody on this computer sign in by a name alone, to try the "
           "browser\n"
           "                          sign-in out; on loopback only\n"
           "  --idle-exit SECONDS     end after that long without a request, 0 for never (default 600)\n"
           "  --foreground            stay with the terminal and say what happens\n"
           "  --version, --help\n";
}

} // namespace orvane::server
