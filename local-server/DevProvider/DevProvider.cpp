// SPDX-License-Identifier: GPL-3.0-or-later
#include "DevProvider/DevProvider.h"

#include "OrvaneAPI/UriText.h"
#include "Security/RandomText.h"

#include <algorithm>

namespace orvane::server {

namespace {

constexpr std::string_view pagePath = "/dev-provider/sign-in";
constexpr std::string_view accountPrefix = "local:";
constexpr std::string_view cookieName = "orvane-dev-sign-in";
constexpr std::size_t mostAttempts = 64;
constexpr std::size_t longestName = 64;
constexpr std::chrono::minutes lifetime{10};

HttpResponse page(int status, const std::string &content)
{
    HttpResponse response{status, {}, {}};
    response.headers.set("Content-Type", "text/html; charset=utf-8");
    response.headers.set(
        "Content-Security-Policy",
        "default-src 'none'; form-action 'self' orvane:; frame-ancestors 'none'; base-uri 'none'");
    response.headers.set("X-Frame-Options", "DENY");
    response.headers.set("X-Content-Type-Options", "nosniff");
    // With "no-referrer" a browser would hide the form's origin from this server too, which is asked for it.
    response.headers.set("Referrer-Policy", "same-origin");
    response.body = "<!doctype html>\n<html lang=\"en\">\n<meta charset=\"utf-8\">\n"
                    "<meta name=\"viewport\" content=\"width=device-width\">\n"
                    "<title>Sign In to Orvane</title>\n<h1>Sign In to Orvane</h1>\n" +
                    content + "</html>\n";
    return response;
}

HttpResponse over()
{
    return page(404, "<p>This sign-in is over. Begin it again in Orvane.</p>\n");
}

/// What ties the form to the browser that it was shown in.
std::string formToken(const std::string &attempt, const std::string &cookie)
{
    return digestText(attempt + ":" + cookie);
}

/// `attempt` is one of ours: it needs no escapes.
HttpResponse form(int status, const std::string &attempt, const std::string &problem)
{
    const std::string cookie = randomText(32);
    HttpResponse response = page(
        status,
        "<p>This is for trying things out: whoever is named here is signed in, without a password.</p>\n" +
            (problem.empty() ? "" : "<p role=\"alert\">" + problem + "</p>\n") +
            "<form method=\"post\" action=\"" + std::string(pagePath) +
            "\">\n<input type=\"hidden\" name=\"attempt\" value=\"" + attempt +
            "\">\n<input type=\"hidden\" name=\"token\" value=\"" + formToken(attempt, cookie) +
            "\">\n<label>Name <input name=\"name\" maxlength=\"64\" autofocus></label>\n"
            "<button>Sign In</button>\n<button name=\"cancel\" value=\"yes\">Cancel</button>\n</form>\n");
    response.headers.set("Set-Cookie", std::string(cookieName) + "=" + cookie +
                                           "; Path=" + std::string(pagePath) + "; HttpOnly; SameSite=Strict");
    return response;
}

/// For a browser that does not know the program's addresses, the page says where it wanted to go.
HttpResponse back(const std::string &query)
{
    const std::string address = std::string(DevProvider::callback) + "?" + query;
    HttpResponse response =
        page(303, "<p><a href=\"" + address +
                      "\">Go Back to Orvane</a></p>\n<p>Or paste this address there: <code>" + address +
                      "</code></p>\n");
    response.headers.set("Location", address);
    return response;
}

std::string valueIn(const QueryPairs &pairs, std::string_view name)
{
    const auto found =
        std::ranges::find(pairs, name, [](const auto &pair) -> const auto & { return pair.first; });
    return found == pairs.end() ? std::string() : found->second;
}

/// Empty when the browser sent none.
std::string cookieOf(const HttpHeaders &headers)
{
    const std::string all = "; " + headers.find("Cookie").value_or("");
    const std::string before = "; " + std::string(cookieName) + "=";
    const std::size_t at = all.find(before);
    if (at == std::string::npos)
        return {};
    const std::size_t begin = at + before.size();
    return all.substr(begin, all.find(';', begin) - begin);
}

bool isForm(const HttpHeaders &headers)
{
    const std::string type = headers.find("Content-Type").value_or("");
    return type.substr(0, type.find(';')) == "application/x-www-form-urlencoded";
}

} // namespace

std::string DevProvider::begin(std::string challenge, std::string timeZone, Instant now)
{
    const std::lock_guard lock(m_lock);
    std::erase_if(m_attempts, [&](const auto &item) { return item.second.expiresAt <= now; });
    if (m_attempts.size() >= mostAttempts)
        m_attempts.erase(
            std::ranges::min_element(m_attempts, {}, [](const auto &item) { return item.second.expiresAt; }));
    const std::string attempt = randomText(16);
    m_attempts[attempt] = {std::move(challenge), std::move(timeZone), now + lifetime};
    return m_address + std::string(pagePath) + "?attempt=" + attempt;
}

bool DevProvider::owns(std::string_view path)
{
    return path.substr(0, path.find('?')) == pagePath;
}

std::optional<std::string> DevProvider::accountOf(const std::string &name)
{
    const bool isName = !name.empty() && name.size() <= longestName && std::ranges::all_of(name, [](char c) {
        return (c >= 'a' && c <= 'z') || (c >= '0' && c <= '9') || c == '.' || c == '_' || c == '-';
    });
    return isName ? std::optional(std::string(accountPrefix) + name) : std::nullopt;
}

bool DevProvider::isAccount(std::string_view email)
{
    return email.starts_with(accountPrefix);
}

bool DevProvider::isOpen(const std::string &attempt, Instant now)
{
    const std::lock_guard lock(m_lock);
    const auto found = m_attempts.find(attempt);
    return found != m_attempts.end() && found->second.expiresAt > now;
}

std::optional<DevProvider::Attempt> DevProvider::close(const std::string &attempt, Instant now)
{
    const std::lock_guard lock(m_lock);
    const auto found = m_attempts.extract(attempt);
    if (!found || found.mapped().expiresAt <= now)
        return std::nullopt;
    return found.mapped();
}

DevProvider::Answer DevProvider::answer(const HttpRequest &request, Instant now)
{
    if (request.method == HttpMethod::post)
        return submitted(request, now);
    const std::size_t mark = std::min(request.path.find('?'), request.path.size() - 1);
    const auto query = parseQuery(std::string_view(request.path).substr(mark + 1));
    const std::string attempt = query ? valueIn(*query, "attempt") : std::string();
    return isOpen(attempt, now) ? form(200, attempt, {}) : over();
}

DevProvider::Answer DevProvider::submitted(const HttpRequest &request, Instant now)
{
    const auto fields = isForm(request.headers) ? parseQuery(request.body) : std::nullopt;
    const std::string attempt = fields ? valueIn(*fields, "attempt") : std::string();
    if (!isOpen(attempt, now))
        return over();
    const std::string cookie = cookieOf(request.headers);
    if (cookie.empty() || !sameSecret(valueIn(*fields, "token"), formToken(attempt, cookie)))
        return form(403, attempt, "The form was not filled in here. Try again.");
    const bool isCancelled = !valueIn(*fields, "cancel").empty();
    const std::string person = valueIn(*fields, "name");
    const auto account = accountOf(person);
    if (!isCancelled && !account)
        return form(400, attempt, "A name has small letters, digits, dots, dashes and underscores.");
    auto closed = close(attempt, now);
    if (!closed)
        return over();
    if (isCancelled)
        return back("error=cancelled");
    return Person{*account, person, std::move(closed->challenge), std::move(closed->timeZone)};
}

HttpResponse DevProvider::backWithCode(const std::string &code)
{
    return back("code=" + code);
}

} // namespace orvane::server
