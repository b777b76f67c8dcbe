// SPDX-License-Identifier: GPL-3.0-or-later
#include "AgentFixture.h"
#include "Http/Forms.h"

namespace orvane::server {

using namespace std::chrono_literals;

/// The page on which a person answers an agent, in a browser that keeps no cookies.
class AgentConsentTest : public AgentFixture {
protected:
    Fields query() const
    {
        return {{"response_type", "code"},          {"client_id", clientId},
                {"redirect_uri", redirect},         {"code_challenge", digestText(verifier)},
                {"code_challenge_method", "S256"},  {"state", "a state&b"},
                {"scope", "time:read time:propose"}};
    }
    HttpResponse open(const Fields &fields)
    {
        std::string text = form(fields);
        for (std::size_t at = text.find("%20"); at != std::string::npos; at = text.find("%20"))
            text.replace(at, 3, "+"); // as browsers and agents write a space
        return get("/oauth/authorize?" + text);
    }
    static std::string attemptOn(const HttpResponse &page)
    {
        return firstMatch(page.body, "name=\"attempt\" value=\"([\\w-]+)\"");
    }
    HttpResponse submit(const std::string &attempt, Fields fields, const std::string &origin = {})
    {
        fields.emplace_back("attempt", attempt);
        return postForm("/oauth/authorize", fields, origin);
    }
    HttpResponse signIn(const std::string &attempt, const std::string &password = "correct horse battery")
    {
        return submit(attempt, {{"step", "sign-in"}, {"email", "grace@example.org"}, {"password", password}});
    }
    static std::string location(const HttpResponse &response)
    {
        return response.headers.find("Location").value_or("");
    }

    std::string clientId = registerAgent("<b>Claude</b> & Co");
};

TEST_F(AgentConsentTest, TellsWhoAsksAndLeavesTheRestToTheProgram)
{
    const HttpResponse page = open(query());
    EXPECT_EQ(page.status, 200);
    EXPECT_TRUE(page.body.contains("&lt;b&gt;Claude&lt;/b&gt; &amp; Co"));
    EXPECT_FALSE(page.body.contains("<b>Claude"));
    EXPECT_TRUE(page.body.contains("127.0.0.1:51234"));
    EXPECT_TRUE(page.body.contains("Read your projects and entries"));
    EXPECT_TRUE(page.body.contains("Propose entries and changes, which wait for your answer"));
    EXPECT_FALSE(page.body.contains("<script"));
    const std::string policy = page.headers.find("Content-Security-Policy").value_or("");
    EXPECT_TRUE(policy.contains("default-src 'none'"));
    EXPECT_TRUE(policy.contains("frame-ancestors 'none'"));
    EXPECT_TRUE(policy.contains("form-action 'self' http://127.0.0.1:51234;")) << policy;
    EXPECT_EQ(page.headers.find("Cache-Control"), "no-store");
    EXPECT_EQ(page.headers.find("Set-Cookie"), std::nullopt);

    const std::string link = firstMatch(page.body, "href=\"orvane://agents/authorize\\?([^\"]*)\"");
    std::string plain = link;
    for (std::size_t at = plain.find("&amp;"); at != std::string::npos; at = plain.find("&amp;"))
        plain.replace(at, 5, "&");
    auto handed = parseQuery(plain).value_or(QueryPairs{});
    auto asked = query();
    std::ranges::sort(handed);
    std::ranges::sort(asked);
    EXPECT_EQ(handed, asked) << "the request goes on as it came";

    Fields reading = query();
    reading.back().second = "time:read";
    EXPECT_FALSE(open(reading).body.contains("Propose entries"));
}

TEST_F(AgentConsentTest, LetsInByAPasswordIntoTheChosenWorkspaces)
{
    (void)registerAccount();
    const std::string workspace = me().defaultWorkspaceId.value_or("");
    const std::string attempt = attemptOn(open(query()));
    const HttpResponse wrong = signIn(attempt, "a guess");
    EXPECT_EQ(wrong.status, 401);
    EXPECT_TRUE(wrong.body.contains("The e-mail address or the password is wrong."));
    EXPECT_EQ(submit(attempt, {{"step", "allow"}, {"workspace", workspace}}).status, 400)
        << "nobody signed in";
    const HttpResponse choice = signIn(attempt);
    ASSERT_EQ(choice.status, 200) << choice.body;
    EXPECT_TRUE(choice.body.contains("grace@example.org"));
    EXPECT_TRUE(choice.body.contains("value=\"" + workspace + "\" checked"));
    EXPECT_NE(attemptOn(choice), attempt);
    EXPECT_EQ(signIn(attempt).status, 404) << "that page was answered";

    const HttpResponse none = submit(attemptOn(choice), {{"step", "allow"}, {"workspace", "another"}});
    EXPECT_EQ(none.status, 400);
    EXPECT_TRUE(none.body.contains("Choose a workspace."));
    const HttpResponse back = submit(attemptOn(none), {{"step", "allow"}, {"workspace", workspace}});
    ASSERT_EQ(back.status, 303) << back.body;
    EXPECT_TRUE(location(back).ends_with("&state=a%20state%26b"));
    const std::string code =
        firstMatch(location(back), "^http://127\\.0\\.0\\.1:51234/callback\\?code=([\\w-]+)&");
    const auto opened = access(tokensIn(clientId, exchange(clientId, code)).access);
    ASSERT_TRUE(opened);
    EXPECT_EQ(opened->userId, me().id);
    EXPECT_EQ(submit(attemptOn(none), {{"step", "allow"}, {"workspace", workspace}}).status, 404);
}

TEST_F(AgentConsentTest, ForgetsWhoSignedInThereWhenTheOthersAreSignedOut)
{
    (void)registerAccount();
    const std::string workspace = me().defaultWorkspaceId.value_or("");
    const HttpResponse choice = signIn(attemptOn(open(query())));
    ASSERT_EQ(choice.status, 200) << choice.body;
    EXPECT_EQ(call<operations::RevokeOtherSessions>({}).status, 204);
    EXPECT_EQ(submit(attemptOn(choice), {{"step", "allow"}, {"workspace", workspace}}).status, 404);
}

TEST_F(AgentConsentTest, RefusesAndForgets)
{
    const std::string attempt = attemptOn(open(query()));
    const HttpResponse back = submit(attempt, {{"step", "refuse"}, {"email", ""}});
    EXPECT_EQ(back.status, 303);
    EXPECT_EQ(location(back), redirect + "?error=access_denied&state=a%20state%26b");
    EXPECT_EQ(submit(attempt, {{"step", "refuse"}}).status, 404);
    const std::string late = attemptOn(open(query()));
    now += 10min;
    EXPECT_EQ(submit(late, {{"step", "refuse"}}).status, 404);
}

TEST_F(AgentConsentTest, TakesFormsOfItsOwnPageAlone)
{
    const std::string attempt = attemptOn(open(query()));
    EXPECT_EQ(submit("", {{"step", "refuse"}}).status, 404);
    EXPECT_EQ(submit(randomText(32), {{"step", "refuse"}}).status, 404);
    EXPECT_EQ(submit(attempt, {{"step", "refuse"}}, "http://evil.example").status, 403);
    EXPECT_EQ(submit(attempt, {{"step", "refuse"}}, "null").status, 403);
    EXPECT_EQ(postJson("/oauth/authorize", R"({"attempt": ")" + attempt + "\"}").status, 404);
    EXPECT_EQ(submit(attempt, {{"step", "refuse"}}, "http://" + host).status, 303);
}

TEST_F(AgentConsentTest, SlowsDownWhoGuessesLikeAnySignIn)
{
    (void)registerAccount();
    const std::string attempt = attemptOn(open(query()));
    for (int i = 0; i < 5; ++i)
        (void)signIn(attempt, "a guess");
    EXPECT_EQ(signIn(attempt).status, 429) << "though it is right";
    LoginRequest login;
    login.email = "grace@example.org";
    login.password = "correct horse battery";
    EXPECT_EQ(call<operations::Login>({login}).status, 429) << "one guard for both";
}

TEST_F(AgentConsentTest, SaysWhatIsWrongAndSendsNobodyToStrangers)
{
    const auto with = [&](const std::string &name, const std::string &value) {
        Fields fields = query();
        std::ranges::find(fields, name, &Fields::value_type::first)->second = value;
        return open(fields);
    };
    for (const auto &[name, value] :
         Fields{{"client_id", "nobody"}, {"redirect_uri", "https://evil.example/"}}) {
        const HttpResponse page = with(name, value);
        EXPECT_EQ(page.status, 400);
        EXPECT_EQ(location(page), "");
        EXPECT_FALSE(page.body.contains("href")) << "no way to a place that nobody registered";
    }
    const HttpResponse plain = with("code_challenge_method", "plain");
    EXPECT_EQ(plain.status, 400);
    EXPECT_EQ(location(plain), "");
    EXPECT_TRUE(plain.body.contains("href=\"" + redirect + "?error=invalid_request&amp;state="));
    Fields twice = query();
    twice.emplace_back("redirect_uri", "https://evil.example/");
    EXPECT_EQ(open(twice).status, 400);
    EXPECT_EQ(with("state", std::string(2001, 'a')).status, 400);
}

} // namespace orvane::server
