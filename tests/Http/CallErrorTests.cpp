// SPDX-License-Identifier: GPL-3.0-or-later
#include "Http/CallError.h"

#include "Http/ProblemMiddleware.h"

#include <gtest/gtest.h>

namespace orvane {
namespace {

APIError errorOf(int status, std::string body)
{
    return apiError({.status = status, .headers = {}, .body = std::move(body)});
}

TEST(CallError, ShowsAFieldsMessageBeforeTheTitle)
{
    const auto error =
        errorOf(422, R"({"title":"Refused","errors":{"description":["Too long","Really"],"start":[]}})");
    EXPECT_EQ(error.errorDescription(), "Too long");
    EXPECT_EQ(error.fieldErrors.at("description").size(), 2U);
    // The first field without a message leaves it to the title.
    EXPECT_EQ(errorOf(422, R"({"title":"Refused","errors":{"a":[]}})").errorDescription(), "Refused");
}

TEST(CallError, JoinsTitleAndDetail)
{
    EXPECT_EQ(errorOf(404, R"({"title":"Not found","detail":"No such entry."})").errorDescription(),
              "Not found No such entry.");
    EXPECT_EQ(errorOf(404, R"({"detail":"No such entry."})").errorDescription(), "No such entry.");
    EXPECT_EQ(describe(CallError(errorOf(500, ""))), "Something went wrong (500). Please try again.");
    EXPECT_EQ(describe(CallError(ConnectionError{"refused"})),
              "Couldn't reach Orvane. Check your connection and try again.");
}

TEST(CallError, KeepsOnlyTheStatusOfABodyThatIsNoProblem)
{
    const std::string bodies[] = {"<html>Bad gateway</html>",
                                  "[]",
                                  "{\"title\":\"cut of",
                                  R"({"title":7})",
                                  R"({"title":"A","status":99999999999999999999})",
                                  R"({"title":"A","errors":{"a":"no list"}})",
                                  "\xff\xfe\x01",
                                  std::string(problemBodyLimit + 1, ' ') + R"({"title":"A"})"};
    for (const std::string &body : bodies)
        EXPECT_EQ(errorOf(502, body), APIError{.status = 502}) << body.substr(0, 40);
    const std::string padding(problemBodyLimit - 13, ' ');
    EXPECT_EQ(errorOf(502, padding + R"({"title":"A"})").title, "A");
}

constexpr auto changed = R"({"type":"urn:orvane:problem:entry-changed","title":"Changed",
    "current":{"id":"e","workspaceId":"w","description":"d","tagIds":[],"isBillable":true,
    "start":"2026-03-01T09:30:00.1234567Z","stop":"2026-03-01T10:30:00Z","shares":[],"version":"7"}})";

TEST(CallError, CarriesTheEntryThatChangedMeanwhile)
{
    const auto error = errorOf(412, changed);
    ASSERT_TRUE(error.current);
    EXPECT_EQ(error.current->version, "7");
    // A long fraction is read to its third digit.
    EXPECT_EQ(millisecondsSinceEpoch(error.current->start) % 1000, 123);
    EXPECT_EQ(error.current->start, millisecondsFloor(error.current->start));
}

TEST(CallError, TakesNoEntryFromAnotherProblemOrABrokenOne)
{
    std::string other = changed;
    other.replace(other.find("entry-changed"), 13, "something-els");
    EXPECT_FALSE(errorOf(409, other).current);
    std::string broken = changed;
    broken.replace(broken.find("2026-03-01T10"), 10, "2026-02-30");
    const auto error = errorOf(412, broken);
    EXPECT_FALSE(error.current);
    EXPECT_EQ(error.type, entryChangedProblemType);
}

} // namespace
} // namespace orvane
