// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Session/Pkce.h"

#include <optional>
#include <string>
#include <string_view>
#include <variant>

namespace orvane {

/// Why a sign-in through the browser came to nothing.
enum class ExternalSignInError { cancelled, failed };

std::string describe(ExternalSignInError error);

/// Signing in through a provider in the browser: the browser is sent to the server's start address, and comes
/// back to the program with a one-time code, which only who has this attempt's verifier can exchange for
/// tokens. Pure functions; any thread.
namespace ExternalSignIn {

using PKCE = Pkce;

/// Where the server sends the browser in the end.
inline constexpr std::string_view callbackAddress = "orvane://auth/callback";

// What the browser came back with.
struct Code {
    std::string value;
    bool operator==(const Code &) const = default;
};
struct Cancelled {
    bool operator==(const Cancelled &) const = default;
};
/// With the server's word for it, or nothing.
struct Failed {
    std::string reason;
    bool operator==(const Failed &) const = default;
};
using Callback = std::variant<Code, Cancelled, Failed>;

/// Of which the browser is to be told. `server` is its address; `provider` the name that the server gives it;
/// `timeZone` may be empty, and so may `invitation`. It says that the user accepts the server's terms, whose
/// address has to be shown before.
std::string startAddress(const std::string &server, const std::string &provider, const PKCE &pkce,
                         const std::string &timeZone, const std::string &invitation = {});

/// None for an address that is no answer to a sign-in.
std::optional<Callback> readCallback(const std::string &address);

} // namespace ExternalSignIn

} // namespace orvane
