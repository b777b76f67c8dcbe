// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "OrvaneAPI/HttpMessage.h"
#include "Support/Instant.h"

#include <map>
#include <mutex>
#include <optional>
#include <string>
#include <variant>

namespace orvane::server {

/// A provider for trying the browser sign-in out: a page that asks for a name and lets whoever is named in,
/// without a password. For a server that only this computer reaches.
///
/// Its accounts have "local:NAME" for an e-mail address, which nobody can register and no account has
/// otherwise: it never joins one that is there. Kept in memory alone. Any thread.
class DevProvider {
public:
    static constexpr std::string_view providerName = "local";
    static constexpr std::string_view displayName = "Development";
    /// Where the browser goes in the end; nothing else is accepted.
    static constexpr std::string_view callback = "orvane://auth/callback";

    /// `address` is the server's, without a slash at the end.
    explicit DevProvider(std::string address) : m_address(std::move(address)) {}

    /// The address of the page for a new attempt.
    std::string begin(std::string challenge, std::string timeZone, Instant now);

    /// Whether the page is at this path.
    static bool owns(std::string_view path);
    /// The account's address of a person; nothing for what cannot be a name.
    static std::optional<std::string> accountOf(const std::string &name);
    static bool isAccount(std::string_view email);
    /// Whoever filled the form in, and the attempt that is over with it.
    struct Person {
        std::string account;
        std::string name;
        std::string challenge;
        std::string timeZone;
    };
    using Answer = std::variant<HttpResponse, Person>;
    /// To the page itself, or what was sent from it.
    Answer answer(const HttpRequest &request, Instant now);
    /// Sends the browser back to the program.
    static HttpResponse backWithCode(const std::string &code);

private:
    struct Attempt {
        std::string challenge;
        std::string timeZone;
        Instant expiresAt;
    };

    bool isOpen(const std::string &attempt, Instant now);
    std::optional<Attempt> close(const std::string &attempt, Instant now);
    Answer submitted(const HttpRequest &request, Instant now);

    const std::string m_address;
    std::mutex m_lock;
    std::map<std::string, Attempt> m_attempts;
};

} // namespace orvane::server
