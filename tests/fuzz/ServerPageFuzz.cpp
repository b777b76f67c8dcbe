// SPDX-License-Identifier: GPL-3.0-or-later
// Whatever a browser sends to the page for signing in by a name: nobody gets in without the form's own token
// and cookie, and nothing of what was sent is in the page. An input is a line of cookies and a form's body;
// "{a}" and
// "{t}" in the body stand for a real attempt and its token, "{c}" in the cookies for its cookie.
#include "DevProvider/DevProvider.h"
#include "Security/RandomText.h"
#include "Support/Require.h"

#include <cstdint>
#include <string>
#include <string_view>

using namespace orvane;
using namespace orvane::server;

namespace {

const Instant now = instantFromMilliseconds(1'772'355'600'000);

std::string between(const std::string &text, std::string_view before, char after)
{
    const std::size_t at = text.find(before);
    ORVANE_REQUIRE(at != std::string::npos, "the page has no form");
    const std::size_t begin = at + before.size();
    return text.substr(begin, text.find(after, begin) - begin);
}

void replace(std::string &text, std::string_view mark, const std::string &value)
{
    if (const std::size_t at = text.find(mark); at != std::string::npos)
        text.replace(at, mark.size(), value);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    const std::string text(reinterpret_cast<const char *>(data), size);
    DevProvider provider("http://127.0.0.1:1");
    const std::string address = provider.begin(digestText("v"), "UTC", now);
    HttpRequest shown{HttpMethod::get, address.substr(address.find("/dev-provider")), {}, {}};
    const HttpResponse page = std::get<HttpResponse>(provider.answer(shown, now));
    const std::string token = between(page.body, "name=\"token\" value=\"", '"');

    const std::size_t end = std::min(text.find('\n'), text.size());
    std::string cookies = text.substr(0, end);
    std::string body = text.substr(std::min(end + 1, text.size()));
    replace(cookies, "{c}", between(page.headers.find("Set-Cookie").value_or(""), "=", ';'));
    replace(body, "{a}", address.substr(address.find('=') + 1));
    replace(body, "{t}", token);
    HttpRequest sent{HttpMethod::post, "/dev-provider/sign-in", {}, body};
    sent.headers.set("Content-Type", "application/x-www-form-urlencoded");
    sent.headers.set("Cookie", cookies);
    const auto answer = provider.answer(sent, now);
    if (const auto *person = std::get_if<DevProvider::Person>(&answer)) {
        ORVANE_REQUIRE(body.contains(token), "somebody got in without the form's token");
        ORVANE_REQUIRE(DevProvider::accountOf(person->name) == person->account, "a name that is none");
    }
    HttpRequest query{HttpMethod::get, "/dev-provider/sign-in?" + body, {}, {}};
    (void)provider.answer(query, now);
    return 0;
}
