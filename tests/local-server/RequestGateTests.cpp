// SPDX-License-Identifier: GPL-3.0-or-later
#include "ServerFixture.h"

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
    EXPECT_EQ(raw(HttpMethod::Get, "/").status, 404);
    EXPECT_EQ(raw(HttpMethod::Get, "/api/nothing").status, 404);
    EXPECT_EQ(raw(HttpMethod::Get, "/api/%zz").status, 404);
    const HttpResponse wrongMethod = raw(HttpMethod::Put, "/api/auth/login");
    EXPECT_EQ(wrongMethod.status, 405);
    EXPECT_EQ(wrongMethod.headers.find("Allow"), "POST");
    const HttpResponse notServed = raw(HttpMethod::Get, "/api/me/export");
    EXPECT_EQ(notServed.status, 501);
    const auto problem = decodeJson<ProblemDetails>(notServed.body);
    ASSERT_TRUE(problem);
    EXPECT_EQ(problem->status, 501);
    EXPECT_EQ(raw(HttpMethod::Get, "/api/me").status, 401);
}

TEST_F(Requests, BrokenInputIsRefusedWithTheFieldAtFault)
{
    signInLocally();
    const std::string path = "/api/workspaces/" + workspaceId + "/time-entries";
    const std::string deep = std::string(100'000, '[');
    for (const std::string &body : {std::string(), std::string("{"), std::string("[]"), std::string("null"),
                                    std::string("\xff\xfe"), deep, std::string("{}{}")})
        EXPECT_EQ(raw(HttpMethod::Post, path, body).status, 400) << body.substr(0, 20);

    const auto create = [&](const std::string &start, const std::string &percent) {
        return raw(HttpMethod::Post, path,
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
    EXPECT_EQ(fieldErrors(raw(HttpMethod::Get, path + "?from=x&to=2026-03-01T09:00:00Z")).count("from"), 1U);
    EXPECT_EQ(raw(HttpMethod::Get, path + "?from=%zz").status, 400);
}

} // namespace orvane::server
