// SPDX-License-Identifier: GPL-3.0-or-later
#include "Repositories/RepositoryIdentity.h"

#include <QCryptographicHash>
#include <algorithm>

namespace orvane {

namespace {

char lowerCased(char letter)
{
    return letter >= 'A' && letter <= 'Z' ? static_cast<char>(letter - 'A' + 'a') : letter;
}

std::string lowerCased(std::string_view text)
{
    std::string result(text);
    std::ranges::transform(result, result.begin(), [](char letter) { return lowerCased(letter); });
    return result;
}

bool isSchemeLetter(char letter)
{
    const char lower = lowerCased(letter);
    return (lower >= 'a' && lower <= 'z') || (lower >= '0' && lower <= '9') || lower == '+' || lower == '-' ||
           lower == '.';
}

std::string_view withoutUser(std::string_view host)
{
    // A password may hold an at sign, a host never does.
    const std::size_t at = host.rfind('@');
    return at == std::string_view::npos ? host : host.substr(at + 1);
}

std::string_view withoutSlashesBehind(std::string_view path)
{
    return path.substr(0, path.find_last_not_of('/') + 1);
}

std::optional<std::string> joined(std::string_view host, std::string_view path)
{
    std::string result = lowerCased(withoutUser(host));
    if (result.empty())
        return std::nullopt;
    path.remove_prefix(std::min(path.find_first_not_of('/'), path.size()));
    path = withoutSlashesBehind(path);
    if (path.ends_with(".git"))
        path = withoutSlashesBehind(path.substr(0, path.size() - 4));
    if (!path.empty())
        result.append("/").append(path);
    return result;
}

/// user@host:path. As git sees it, a colon behind a slash is part of a path; a host of one letter is a drive.
std::optional<std::string> shortFormAddress(std::string_view address)
{
    // An IPv6 address stands in brackets.
    const std::size_t bracket = address.find(']');
    const bool isBracketed =
        withoutUser(address.substr(0, std::min(bracket, address.size()))).starts_with('[');
    const std::size_t colon =
        address.find(':', isBracketed && bracket != std::string_view::npos ? bracket : 0);
    if (colon == std::string_view::npos || colon < 2 || address.find('/') < colon)
        return std::nullopt;
    const std::string_view path = address.substr(colon + 1);
    // "helper::address" is for a program of that name.
    if (path.empty() || path.starts_with(':'))
        return std::nullopt;
    return joined(address.substr(0, colon), path);
}

} // namespace

std::optional<std::string> RepositoryIdentity::remoteAddress(std::string_view address)
{
    const std::size_t mark = address.find("://");
    if (mark == std::string_view::npos)
        return shortFormAddress(address);
    const std::string_view scheme = address.substr(0, mark);
    if (!std::ranges::all_of(scheme, isSchemeLetter) || lowerCased(scheme) == "file")
        return std::nullopt;
    const std::string_view rest = address.substr(mark + 3);
    const std::size_t slash = std::min(rest.find('/'), rest.size());
    return joined(rest.substr(0, slash), rest.substr(slash));
}

std::string RepositoryIdentity::of(std::string_view origin, std::string_view folder)
{
    if (const auto address = remoteAddress(origin))
        return "origin:" + *address;
    const QByteArray digest = QCryptographicHash::hash(
        QByteArray::fromRawData(folder.data(), static_cast<qsizetype>(folder.size())),
        QCryptographicHash::Sha256);
    return "path:" + digest.first(16).toHex().toStdString();
}

} // namespace orvane
