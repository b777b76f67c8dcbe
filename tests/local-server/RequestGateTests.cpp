// SPDX-License-Identifier: GPL-3.0-or-later
#include "Http/Forwarding.h"
#include "ServerFixture.h"

#include <QHostAddress>

namespace orvane::server {

using namespace operations;

class Requests : public ServerFixture {
protected:
    HttpResponse raw(HttpMethod method, std::string path, std::string body = {})
    {
        HttpRequest request{method, std::move(path), {}, std::move(body)};
        if (!request.body.empty())
            request.headers.set("Content-Type", "application/json");
        return send(std::move(request), accessToken);
    }
    HttpResponse withHeader(std::string_view name, std::string value)
    {
        HttpRequest request = GetServer::request({});
        request.headers.set(name, std::move(value));
        return send(std::move(request));
    }
};

TEST_F(Requests, OnlyTheServersOwnNamesAreAnswered)
{
    openServer({"127.0.0.1", 4711});
    for (const char *host : {"127.0.0.1:4711", "localhost:4711", "LOCALHOST:4711"})
        EXPECT_EQ(withHeader("Host", host).status, 200) << host;
    for (const char *host : {"127.0.0.1", "127.0.0.1:4712", "evil.example:4711",
                             "127.0.0.1.evil.example:4711", "192.0.2.1:4711", "", ":4711", "[::1]:4711"})
        EXPECT_EQ(withHeader("Host", host).status, 421) << host;

    openServer({"0.0.0.0", 8080});
    EXPECT_EQ(withHeader("Host", "192.0.2.1:8080").status, 200);
    EXPECT_EQ(withHeader("Host", "evil.example:8080").status, 421);
    openServer({"::1", 80});
    EXPECT_EQ(withHeader("Host", "[::1]").status, 200);
}

TEST(Forwarding, AddressesHaveOneForm)
{
    const auto form = [](const char *text) { return addressText(QHostAddress(QString::fromLatin1(text))); };
    EXPECT_EQ(form("::1"), "::1") << "not the other family's loopback";
    EXPECT_EQ(form("::ffff:127.0.0.1"), "127.0.0.1");
    EXPECT_EQ(form("2001:DB8:0::1"), form("2001:db8::1"));
}

class BehindAProxy : public Requests {
protected:
    BehindAProxy() { openServer({"127.0.0.1", 4711}, "127.0.0.1"); }

    using Headers = std::vector<HttpHeader>;
    int statusWith(HttpRequest request, const Headers &headers)
    {
        request.headers.set("Host", "127.0.0.1:4711");
        for (const auto &[name, value] : headers)
            request.headers.set(name, value);
        return send(request).status;
    }
    int login(const std::string &email, const Headers &headers)
    {
        LoginRequest body;
        body.email = email;
        body.password = "guess";
        return statusWith(Login::request({body}), headers);
    }
};

TEST_F(BehindAProxy, TheNameIsTheOneThatTheProxyWasAskedBy)
{
    const HttpHeader forwarded{"X-Forwarded-Host", "time.example.org"};
    const HttpRequest request = GetServer::request({});
    EXPECT_EQ(statusWith(request, {}), 200) << "from this computer, past the proxy";
    EXPECT_EQ(statusWith(request, {forwarded, {"Host", "upstream"}}), 200);
    EXPECT_EQ(statusWith(request, {{"Forwarded", "for=192.0.2.9;Host=\"time.example.org\""}, {"Host", "x"}}),
              200);
    EXPECT_EQ(statusWith(request, {forwarded, {"Origin", "https://time.example.org"}}), 200);
    EXPECT_EQ(statusWith(request, {forwarded, {"Origin", "https://evil.example"}}), 403);
    EXPECT_EQ(statusWith(request, {forwarded, {"Origin", "http://127.0.0.1:4711"}}), 403);
    EXPECT_EQ(statusWith(request, {{"Host", "time.example.org"}}), 421);
    peer = "127.0.0.2";
    EXPECT_EQ(statusWith(request, {forwarded, {"Host", "time.example.org"}}), 421) << "not the proxy's word";
    EXPECT_EQ(statusWith(request, {forwarded, {"Origin", "https://time.example.org"}}), 403);
}

TEST_F(BehindAProxy, GuessesCountForWhoeverSentThem)
{
    const auto from = [](const char *hops) { return Headers{{"X-Forwarded-For", hops}}; };
    for (int i = 0; i < 5; ++i)
        EXPECT_EQ(login("grace@example.org", from("198.51.100.1, 192.0.2.9")), 401);
    EXPECT_EQ(login("grace@example.org", from("192.0.2.9")), 429);
    EXPECT_EQ(login("grace@example.org", from("198.51.100.2,192.0.2.9:5005")), 429)
        << "what comes before is theirs";
    EXPECT_EQ(
        login("grace@example.org", {{"Forwarded", "for=198.51.100.1, for=\"192.0.2.9:99\";proto=https"}}),
        429);
    EXPECT_EQ(login("grace@example.org", from("::ffff:192.0.2.9")), 429);
    EXPECT_EQ(login("grace@example.org", from("192.0.2.10")), 401) << "somebody else";
    EXPECT_EQ(login("grace@example.org", {{"Forwarded", "for=\"[2001:db8::1]:4711\""}}), 401);
    EXPECT_EQ(login("grace@example.org", from("unknown")), 401) << "the proxy itself";
    peer = "127.0.0.2";
    EXPECT_EQ(login("grace@example.org", from("192.0.2.9")), 401) << "only the proxy says for whom it speaks";
}

TEST_F(BehindAProxy, AClientCannotNameItselfInTheHeaderThatTheProxyLeavesAlone)
{
    const auto guess = [&](const std::string &theirs, const std::string &proxys) {
        return login("grace@example.org", {{"X-Forwarded-For", theirs}, {"Forwarded", proxys}});
    };
    for (int i = 0; i < 5; ++i)
        EXPECT_EQ(guess("198.51.100." + std::to_string(i), "for=192.0.2.9"), 401);
    EXPECT_EQ(guess("198.51.100.9", "for=192.0.2.9"), 429) << "all of them count for the proxy";
    EXPECT_EQ(guess("192.0.2.9", "proto=https"), 429) << "a hop that names nobody agrees with nobody";
    EXPECT_EQ(guess("192.0.2.9", "for=\"192.0.2.9:99\""), 401) << "both name the same";
    EXPECT_EQ(statusWith(GetServer::request({}), {{"X-Forwarded-Host", "time.example.org"},
                                                  {"Forwarded", "for=192.0.2.9;host=other.example"},
                                                  {"Host", "upstream"}}),
              421);
}

TEST_F(BehindAProxy, RegistrationIsClosed)
{
    EXPECT_EQ(statusWith(Register::request({registration()}), {}), 403);
    EXPECT_EQ(statusWith(Register::request({registration()}), {{"X-Forwarded-For", "127.0.0.1"}}), 403);
}

TEST_F(Requests, PagesOfOtherOriginsAreTurnedAway)
{
    EXPECT_EQ(withHeader("Origin", "http://127.0.0.1:0").status, 200);
    for (const char *origin :
         {"https://evil.example", "null", "http://127.0.0.1:1", "http://localhost:0", ""})
        EXPECT_EQ(withHeader("Origin", origin).status, 403) << origin;
    EXPECT_FALSE(withHeader("Origin", "null").headers.find("Access-Control-Allow-Origin"));
}

TEST_F(Requests, BodiesAreJsonOfABoundedSize)
{
    HttpRequest login = Login::request({});
    for (const char *type : {"text/plain", "application/x-www-form-urlencoded", "application/jsonp", ""}) {
        login.headers.set("Content-Type", type);
        EXPECT_EQ(send(login).status, 415) << type;
    }
    login.headers.set("Content-Type", "Application/JSON; charset=utf-8");
    EXPECT_EQ(send(login).status, 400);
    login.body = std::string(longestBody, ' ');
    EXPECT_EQ(send(login).status, 400);
    login.body += ' ';
    EXPECT_EQ(send(login).status, 413);
}

TEST_F(Requests, WhatThereIsNotIsSaidPlainly)
{
    EXPECT_EQ(raw(HttpMethod::get, "/").status, 404);
    EXPECT_EQ(raw(HttpMethod::get, "/api/nothing").status, 404);
    EXPECT_EQ(raw(HttpMethod::get, "/api/%zz").status, 404);
    const HttpResponse wrongMethod = raw(HttpMethod::put, "/api/auth/login");
    EXPECT_EQ(wrongMethod.status, 405);
    EXPECT_EQ(wrongMethod.headers.find("Allow"), "POST");
    const HttpResponse notServed = raw(HttpMethod::post, "/api/auth/web/passkeys/options");
    EXPECT_EQ(notServed.status, 501);
    const auto problem = decodeJson<ProblemDetails>(notServed.body);
    ASSERT_TRUE(problem);
    EXPECT_EQ(problem->status, 501);
    EXPECT_EQ(raw(HttpMethod::get, "/api/me").status, 401);
}

TEST_F(Requests, BrokenInputIsRefusedWithTheFieldAtFault)
{
    signInLocally();
    const std::string path = "/api/workspaces/" + workspaceId + "/time-entries";
    const std::string deep = std::string(100'000, '[');
    for (const std::string &body : {std::string(), std::string("{"), std::string("[]"), std::string("null"),
                                    std::string("\xff\xfe"), deep, std::string("{}{}")})
        EXPECT_EQ(raw(HttpMethod::post, path, body).status, 400) << body.substr(0, 20);

    const auto create = [&](const std::string &start, const std::string &percent) {
        return raw(HttpMethod::post, path,
                   R"({"id":"a","description":"","tagIds":[],"isBillable":false,"describeParts":false,)"
                   R"("start":)" +
                       start + R"(,"shares":[{"isBillable":true,"description":"","percent":)" + percent +
                       "}]}");
    };
    EXPECT_EQ(fieldErrors(create(R"("1800-01-01T00:00:00Z")", "100")).count("start"), 1U);
    EXPECT_EQ(fieldErrors(create(R"("2026-02-30T00:00:00Z")", "100")).count("start"), 1U);
    EXPECT_EQ(fieldErrors(create("1e999", "100")).count("start"), 1U);
    EXPECT_EQ(fieldErrors(create(R"("2026-03-01T09:00:00Z")", "1e400")).count("shares[0].percent"), 1U);
    EXPECT_EQ(
        fieldErrors(create(R"("2026-03-01T09:00:00Z")", "99999999999999999999")).count("shares[0].percent"),
        1U);
    EXPECT_EQ(fieldErrors(create(R"("2026-03-01T09:00:00Z")", "101")).count("shares[0].percent"), 1U);
    EXPECT_EQ(create(R"("2026-03-01T09:00:00Z")", "100").status, 201);
    EXPECT_EQ(fieldErrors(raw(HttpMethod::get, path + "?from=x&to=2026-03-01T09:00:00Z")).count("from"), 1U);
    EXPECT_EQ(raw(HttpMethod::get, path + "?from=%zz").status, 400);
}

} // namespace orvane::server
