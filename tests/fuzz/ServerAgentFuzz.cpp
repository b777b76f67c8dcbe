// SPDX-License-Identifier: GPL-3.0-or-later
// Whatever an agent says of itself before anybody trusts it: what is taken can be shown on a page and sent
// back to without escaping from either, and a form comes apart as it was put together.
#include "Agents/AgentMessages.h"
#include "Agents/AgentPage.h"
#include "Agents/AgentUris.h"
#include "Http/Forms.h"
#include "Support/Require.h"

#include <algorithm>
#include <cstdint>
#include <string>

using namespace orvane;
using namespace orvane::server;

namespace {

void checkPage(AgentClient client, const std::string &text)
{
    const AgentRequest request{.client = client,
                               .redirectUri = client.redirectUris.front(),
                               .challenge = {},
                               .state = text,
                               .mayPropose = true};
    OAuthAuthorizationRequest asked;
    asked.clientId = text;
    asked.redirectUri = request.redirectUri;
    asked.state = text;
    const std::string attempt = "attempt";
    const HttpResponse page = consentPage(200, {request, asked, attempt}, text);
    AgentClient plain = client;
    plain.name = "a";
    const AgentRequest plainRequest{plain, request.redirectUri, {}, {}, true};
    OAuthAuthorizationRequest plainAsked;
    plainAsked.redirectUri = request.redirectUri;
    const HttpResponse plainPage =
        consentPage(200, {plainRequest, plainAsked, attempt}, text.empty() ? "" : "a");
    ORVANE_REQUIRE(std::ranges::count(page.body, '<') == std::ranges::count(plainPage.body, '<'),
                   "what an agent says became a part of the page");
    ORVANE_REQUIRE(page.headers.find("Content-Security-Policy") ==
                       plainPage.headers.find("Content-Security-Policy"),
                   "a policy that the name changes");
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    const std::string text(reinterpret_cast<const char *>(data), size);
    const auto client = readAgentRegistration(text);
    if (client) {
        ORVANE_REQUIRE(std::ranges::all_of(client->redirectUris, isRedirectUri), "nowhere to send back to");
        checkPage(*client, text);
    }
    ORVANE_REQUIRE(!isRedirectUri(text) || text.find_first_of(" \"<>\r\n") == std::string::npos,
                   "an address that needs escapes");
    (void)isOurResource("http://127.0.0.1:4711", text);
    (void)asksToPropose(text);
    if (const auto form = readForm(text)) {
        std::string again;
        for (const auto &[name, value] : *form)
            again += (again.empty() ? "" : "&") + percentEncoded(name) + "=" + percentEncoded(value);
        ORVANE_REQUIRE(form->empty() || readForm(again) == form, "a form that reads otherwise");
    }
    return 0;
}
