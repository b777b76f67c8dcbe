// SPDX-License-Identifier: GPL-3.0-or-later
#include "Agents/AgentPage.h"

#include "Agents/AgentSignIn.h"
#include "Agents/AgentUris.h"
#include "OrvaneAPI/UriText.h"

namespace orvane::server {

namespace {

constexpr std::string_view pageStyle =
    R"(:root { color-scheme: light dark; --content: #fff; --chrome: #f2f5f5;
  --ink1: #131d1c; --ink2: #475251; --fill: #0e6e63; --accent: #0e6e63; --line: #c5cccb; --edge: #7d8988;
  --danger: #b6322d; }
@media (prefers-color-scheme: dark) { :root { --content: #1b1f20; --chrome: #141818; --ink1: #ebeff0;
  --ink2: #b2bbbc; --fill: #1d8174; --accent: #67c8b9; --line: #3f4747; --edge: #6e7879; --danger: #f28881; } }
* { box-sizing: border-box; }
body { margin: 0; padding: 40px 16px; background: var(--chrome); color: var(--ink1);
  font: 13px/20px Inter, system-ui, sans-serif; }
main { max-width: 440px; margin: auto; padding: 24px; background: var(--content);
  border: 1px solid var(--line); border-radius: 12px; }
h1 { margin: 0 0 12px; font-size: 20px; line-height: 28px; font-weight: 600; overflow-wrap: anywhere; }
h2 { margin: 24px 0 8px; font-size: 13px; font-weight: 600; }
p, ul { margin: 0 0 12px; overflow-wrap: anywhere; }
ul { padding-left: 20px; }
.hint { color: var(--ink2); }
.problem { color: var(--danger); }
label { display: block; margin-bottom: 12px; }
input[type=email], input[type=password] { display: block; width: 100%; height: 36px; margin-top: 4px;
  padding: 0 8px; font: inherit; color: inherit; background: var(--content); border: 1px solid var(--edge);
  border-radius: 6px; }
input[type=checkbox] { accent-color: var(--fill); margin: 0 8px 0 0; }
.row { display: flex; flex-wrap: wrap; gap: 8px; margin-top: 16px; }
button, .button { display: inline-block; min-height: 32px; padding: 5px 16px; font: inherit; font-weight: 500;
  color: var(--ink1); background: none; border: 1px solid var(--line); border-radius: 6px;
  text-decoration: none; cursor: pointer; }
.main { color: #fff; background: var(--fill); border-color: var(--fill); }
:focus-visible { outline: 2px solid var(--accent); outline-offset: 2px; }
hr { margin: 24px 0 0; border: 0; border-top: 1px solid var(--line); }
)";

/// Where a page's forms may end, as the policy names it. It has no form for an IPv6 address.
std::string formTarget(const std::string &uri)
{
    if (uri.empty())
        return {};
    const std::string scheme = uri.substr(0, uri.find(':') + 1);
    const std::string host = hostForPeople(uri);
    return " " + (host.find('[') == std::string::npos ? scheme + "//" + host : scheme);
}

/// `target` is the agent's address, to which the answer to a form leads on.
HttpResponse page(int status, const std::string &title, const std::string &content, const std::string &target)
{
    HttpResponse response{status, {}, {}};
    response.headers.set("Content-Type", "text/html; charset=utf-8");
    response.headers.set("Content-Security-Policy",
                         "default-src 'none'; style-src 'unsafe-inline'; form-action 'self'" +
                             formTarget(target) + "; frame-ancestors 'none'; base-uri 'none'");
    response.headers.set("X-Frame-Options", "DENY");
    response.headers.set("X-Content-Type-Options", "nosniff");
    // With "no-referrer" a browser would hide the form's origin from this server too, which is asked for it.
    response.headers.set("Referrer-Policy", "same-origin");
    response.body = "<!doctype html>\n<html lang=\"en\">\n<meta charset=\"utf-8\">\n"
                    "<meta name=\"viewport\" content=\"width=device-width\">\n<title>" +
                    title + "</title>\n<style>\n" + std::string(pageStyle) + "</style>\n<main>\n" + content +
                    "</main>\n</html>\n";
    return response;
}

std::string formStart(const std::string &attempt)
{
    return "<form method=\"post\" action=\"" + std::string(authorizePath) +
           "\">\n<input type=\"hidden\" name=\"attempt\" value=\"" + htmlText(attempt) + "\">\n";
}

std::string alert(const std::string &problem)
{
    return problem.empty() ? "" : "<p class=\"problem\" role=\"alert\">" + htmlText(problem) + "</p>\n";
}

/// Where it returns to is known; who it is, it alone says.
std::string origin(const AgentRequest &request)
{
    std::string text = "<p class=\"hint\">The name is what the agent says of itself.";
    if (request.client.uri)
        text += " So is its address, " + htmlText(*request.client.uri) + ".";
    return text + " Your answer goes to <b>" + htmlText(hostForPeople(request.redirectUri)) + "</b>" +
           (isOnThisComputer(request.redirectUri) ? ", a program on the computer of this browser" : "") +
           ".</p>\n";
}

std::string whoAsks(const AgentRequest &request)
{
    return "<h1>Allow “" + htmlText(request.client.name) + "” to use Orvane?</h1>\n" + origin(request) +
           "<p>It may:</p>\n<ul>\n<li>Read your projects and entries</li>\n" +
           (request.mayPropose ? "<li>Propose entries and changes, which wait for your answer</li>\n" : "") +
           "</ul>\n<p>Nothing changes without you. You can sign the agent out at any time in Orvane, under "
           "Settings, Connect Agents.</p>\n";
}

constexpr std::string_view refuseButton =
    "<button name=\"step\" value=\"refuse\" formnovalidate>Refuse</button>\n";

} // namespace

std::string htmlText(std::string_view text)
{
    std::string out;
    for (const char c : text) {
        switch (c) {
        case '&':
            out += "&amp;";
            break;
        case '<':
            out += "&lt;";
            break;
        case '>':
            out += "&gt;";
            break;
        case '"':
            out += "&quot;";
            break;
        case '\'':
            out += "&#39;";
            break;
        default:
            out += c;
        }
    }
    return out;
}

std::string programLink(const OAuthAuthorizationRequest &asked)
{
    std::string link = "orvane://agents/authorize?client_id=" + percentEncoded(asked.clientId) +
                       "&redirect_uri=" + percentEncoded(asked.redirectUri) +
                       "&response_type=" + percentEncoded(asked.responseType) +
                       "&code_challenge=" + percentEncoded(asked.codeChallenge) +
                       "&code_challenge_method=" + percentEncoded(asked.codeChallengeMethod);
    if (asked.state)
        link += "&state=" + percentEncoded(*asked.state);
    if (asked.scope)
        link += "&scope=" + percentEncoded(*asked.scope);
    if (asked.resource)
        link += "&resource=" + percentEncoded(*asked.resource);
    return link;
}

HttpResponse consentPage(int status, const ConsentPage &shown, const std::string &problem)
{
    const std::string link = htmlText(programLink(shown.asked));
    std::string content =
        whoAsks(shown.request) + "<div class=\"row\"><a class=\"button main\" href=\"" + link +
        "\">Allow in Orvane</a></div>\n"
        "<p class=\"hint\">Orvane asks you there once more. If nothing opens, <a href=\"" +
        link +
        "\">copy this link’s address</a> and paste it where Orvane waits for it.</p>\n<hr>\n"
        "<h2>With an E-Mail Address and a Password</h2>\n" +
        alert(problem) + formStart(shown.attempt) +
        "<label>E-mail address <input type=\"email\" name=\"email\" autocomplete=\"username\" "
        "required></label>\n"
        "<label>Password <input type=\"password\" name=\"password\" autocomplete=\"current-password\" "
        "required></label>\n<div class=\"row\"><button name=\"step\" value=\"sign-in\">Sign In and Choose "
        "Workspaces</button>\n" +
        std::string(refuseButton) + "</div>\n</form>\n";
    return page(status, "Allow an Agent to Use Orvane", content, shown.request.redirectUri);
}

HttpResponse workspacesPage(int status, const ConsentPage &shown, const std::string &account,
                            const std::vector<OrganizationAccess> &organizations, const std::string &problem)
{
    std::string content = whoAsks(shown.request) + "<p class=\"hint\">You are " + htmlText(account) +
                          ".</p>\n" + alert(problem) + formStart(shown.attempt);
    for (const OrganizationAccess &organization : organizations) {
        content += "<h2>" + htmlText(organization.name) + "</h2>\n";
        for (const WorkspaceSummary &workspace : organization.workspaces)
            content += "<label><input type=\"checkbox\" name=\"workspace\" value=\"" +
                       htmlText(workspace.id) + "\" checked>" + htmlText(workspace.name) + "</label>\n";
    }
    content += "<div class=\"row\"><button class=\"main\" name=\"step\" value=\"allow\">Allow</button>\n" +
               std::string(refuseButton) + "</div>\n</form>\n";
    return page(status, "Allow an Agent to Use Orvane", content, shown.request.redirectUri);
}

HttpResponse agentProblemPage(int status, const std::string &sentence, const std::string &back)
{
    std::string content = "<h1>This Sign-In Can’t Go On</h1>\n<p role=\"alert\">" + htmlText(sentence) +
                          "</p>\n<p class=\"hint\">Begin it again in your agent.</p>\n";
    if (!back.empty())
        content += "<div class=\"row\"><a class=\"button\" href=\"" + htmlText(back) +
                   "\">Go Back to the Agent</a></div>\n";
    return page(status, "Allow an Agent to Use Orvane", content, {});
}

HttpResponse backToAgent(const std::string &address)
{
    HttpResponse response =
        page(303, "Orvane", "<p><a href=\"" + htmlText(address) + "\">Go Back to the Agent</a></p>\n", {});
    response.headers.set("Location", address);
    return response;
}

} // namespace orvane::server
