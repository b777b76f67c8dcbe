// SPDX-License-Identifier: GPL-3.0-or-later
#include "Process/ServerOptions.h"
#include "ServerFixture.h"

#include <regex>

namespace orvane::server {

using namespace std::chrono_literals;

/// Signing in by a name alone, as a browser and the program behind it do.
class DevProviderTest : public ServerFixture {
protected:
    DevProviderTest()
    {
        devProvider = true;
        openServer({});
    }

    HttpResponse start(const std::string &provider = "local",
                       const std::string &redirectUri = "orvane://auth/callback")
    {
        return call<operations::StartExternalSignIn>(
            {.provider = provider, .redirectUri = redirectUri, .codeChallenge = digestText(verifier)});
    }
    HttpResponse get(const std::string &address)
    {
        return send({HttpMethod::get, address.substr(address.find("/dev-provider")), {}, {}});
    }
    struct Form {
        std::string attempt;
        std::string token;
        std::string cookie;
    };
    static std::string firstIn(const std::string &text, const std::string &pattern)
    {
        std::smatch found;
        return std::regex_search(text, found, std::regex(pattern)) ? found[1].str() : std::string();
    }
    Form form()
    {
        const HttpResponse page = get(start().headers.find("Location").value_or("/dev-provider"));
        EXPECT_EQ(page.status, 200);
        return {firstIn(page.body, "name=\"attempt\" value=\"([^\"]*)\""),
                firstIn(page.body, "name=\"token\" value=\"([^\"]*)\""),
                firstIn(page.headers.find("Set-Cookie").value_or(""), "^([^;]*);")};
    }
    HttpResponse submit(const Form &form, const std::string &fields, const std::string &origin = {})
    {
        HttpRequest request{HttpMethod::post, "/dev-provider/sign-in", {}, {}};
        request.headers.set("Content-Type", "application/x-www-form-urlencoded");
        if (!form.cookie.empty())
            request.headers.set("Cookie", "other=1; " + form.cookie);
        if (!origin.empty())
            request.headers.set("Origin", origin);
        request.body = "attempt=" + form.attempt + "&token=" + form.token + "&" + fields;
        return send(std::move(request));
    }
    std::string codeFor(const std::string &name)
    {
        const HttpResponse back = submit(form(), "name=" + name);
        EXPECT_EQ(back.status, 303) << back.body;
        return firstIn(back.headers.find("Location").value_or(""),
                       "^orvane://auth/callback\\?code=([\\w-]+)$");
    }
    HttpResponse exchange(const std::string &code, const std::string &shown)
    {
        ExternalExchangeRequest body;
        body.code = code;
        body.codeVerifier = shown;
        return call<operations::ExchangeExternalSignIn>({body});
    }
    bool signsIn(const std::string &name)
    {
        const auto signedIn = decodeJson<ExternalSignInResponse>(exchange(codeFor(name), verifier).body);
        EXPECT_TRUE(signedIn);
        accessToken = signedIn ? signedIn->tokens.accessToken : "";
        return signedIn && signedIn->isNewAccount;
    }

    const std::string verifier = randomText(32);
};

TEST_F(DevProviderTest, LetsWhoeverIsNamedIn)
{
    const auto offered = expect<operations::GetServer, Ok<ServerResponse>>({}).body.signInProviders;
    ASSERT_EQ(offered.size(), 1U);
    EXPECT_EQ(offered[0].name, "local");
    EXPECT_TRUE(signsIn("grace"));
    EXPECT_EQ(me().email, "local:grace");
    EXPECT_FALSE(me().hasPassword);
    ASSERT_EQ(me().workspaces.size(), 1U);
    const std::string id = me().id;
    EXPECT_FALSE(signsIn("grace")) << "the account is there now";
    EXPECT_EQ(me().id, id);
    EXPECT_TRUE(signsIn("ada"));
    EXPECT_NE(me().id, id);
    const auto logins =
        expect<operations::ListExternalLogins, Ok<std::vector<ExternalLoginResponse>>>({}).body;
    ASSERT_EQ(logins.size(), 1U);
    EXPECT_EQ(logins[0].provider, "local");
    EXPECT_EQ(call<operations::RemoveExternalLogin>({logins[0].id}).status, 409);
    EXPECT_EQ(call<operations::RemoveExternalLogin>({"another"}).status, 404);
    now += 48h;
    EXPECT_EQ(call<operations::GetMe>({}).status, 401) << "the access token is over";
}

TEST_F(DevProviderTest, NeverJoinsAnAccountThatIsThere)
{
    registerAccount("grace@example.org");
    const std::string before = me().id;
    for (const char *name : {"grace%40example.org", "Grace", "", "a+b", "%00", "gr%C3%A4ce"}) {
        const HttpResponse refused = submit(form(), std::string("name=") + name);
        EXPECT_EQ(refused.status, 400) << name;
        EXPECT_EQ(refused.headers.find("Location"), std::nullopt);
    }
    EXPECT_TRUE(signsIn("grace"));
    EXPECT_NE(me().id, before);
    EXPECT_EQ(fieldErrors(call<operations::Register>({registration("local:ada")})).count("email"), 1U);
    (void)signInLocally();
    EXPECT_TRUE(call<operations::ListExternalLogins>({}).body == "[]");
}

TEST_F(DevProviderTest, CodesAreGoodOnceForAMinuteAndForTheirVerifier)
{
    const std::string code = codeFor("grace");
    EXPECT_EQ(exchange(code, randomText(32)).status, 400);
    EXPECT_EQ(exchange(code, verifier).status, 400) << "spent by the attempt on it";
    const std::string late = codeFor("grace");
    now += 60s;
    EXPECT_EQ(exchange(late, verifier).status, 400);
    const std::string good = codeFor("grace");
    now += 59s;
    EXPECT_EQ(exchange(good, verifier).status, 200);
    EXPECT_EQ(exchange(good, verifier).status, 400);
}

TEST_F(DevProviderTest, TakesItsFormFromTheBrowserThatItWasShownIn)
{
    Form shown = form();
    Form forged = shown;
    forged.cookie = form().cookie;
    EXPECT_EQ(submit(forged, "name=grace").status, 403) << "the cookie of another page";
    forged.cookie = {};
    EXPECT_EQ(submit(forged, "name=grace").status, 403);
    EXPECT_EQ(submit(shown, "name=grace", "http://evil.example").status, 403);
    EXPECT_EQ(submit(shown, "name=grace", "http://127.0.0.1:0").status, 303);
    EXPECT_EQ(submit(shown, "name=grace").status, 404) << "an attempt ends with its code";
    shown = form();
    now += 10min;
    EXPECT_EQ(submit(shown, "name=grace").status, 404);
    EXPECT_EQ(submit(form(), "name=&cancel=yes").headers.find("Location"),
              "orvane://auth/callback?error=cancelled");
    EXPECT_EQ(get("/dev-provider/sign-in?attempt=unknown").status, 404);
    EXPECT_EQ(get("/dev-provider/sign-in").status, 404);
}

TEST_F(DevProviderTest, StartsForItselfAndForThisProgramAlone)
{
    EXPECT_EQ(start("google").status, 404);
    EXPECT_EQ(start("local", "https://evil.example/callback").status, 400);
    EXPECT_EQ(call<operations::StartExternalSignIn>(
                  {.provider = "local", .redirectUri = "orvane://auth/callback", .codeChallenge = "short"})
                  .status,
              400);
    devProvider = false;
    openServer({});
    EXPECT_EQ(start().status, 404);
    const auto offered = expect<operations::GetServer, Ok<ServerResponse>>({}).body.signInProviders;
    EXPECT_TRUE(offered.empty());
    EXPECT_EQ(get("/dev-provider/sign-in?attempt=x").status, 404);
    const auto accepted = [](std::vector<const char *> arguments) {
        arguments.insert(arguments.begin(), {"orvane-server", "--data-dir", "/d", "--dev-provider"});
        return readServerOptions(static_cast<int>(arguments.size()), arguments.data()).has_value();
    };
    EXPECT_TRUE(accepted({}));
    EXPECT_TRUE(accepted({"--listen", "127.0.0.1:8080"}));
    EXPECT_FALSE(accepted({"--listen", "0.0.0.0:8080"}));
    EXPECT_FALSE(accepted({"--trusted-proxy", "127.0.0.1"}));
}

} // namespace orvane::server
