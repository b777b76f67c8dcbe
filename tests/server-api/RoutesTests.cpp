// SPDX-License-Identifier: GPL-3.0-or-later
#include "OrvaneAPI/Routes.h"
#include "OrvaneAPI/UriText.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace orvane {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::UnorderedElementsAre;

constexpr OperationInfo someOperations[]{
    {"List", HttpMethod::get, "/things", 1},
    {"Read", HttpMethod::get, "/things/{id}", 2},
    {"Write", HttpMethod::put, "/things/{id}", 3},
    {"Current", HttpMethod::get, "/things/current", 4},
    {"Parts", HttpMethod::get, "/things/{id}/parts/{part}", 5},
    {"Refresh", HttpMethod::post, "/things/current/refresh", 6},
};

std::string nameOf(HttpMethod method, std::string_view path)
{
    static const RouteTable table(someOperations);
    const auto match = table.match(method, path);
    if (!match)
        return "";
    std::string name(match->operation->name);
    for (const std::string &argument : match->pathArguments)
        name += " [" + argument + "]";
    return name;
}

TEST(Routes, decodeArgumentsAndPreferFixedSegments)
{
    EXPECT_EQ(nameOf(HttpMethod::get, "/things"), "List");
    EXPECT_EQ(nameOf(HttpMethod::get, "/things?x=/y"), "List");
    EXPECT_EQ(nameOf(HttpMethod::get, "/things/a%2Fb%20%C3%A4+"), "Read [a/b \xC3\xA4+]");
    EXPECT_EQ(nameOf(HttpMethod::get, "/things/current"), "Current");
    EXPECT_EQ(nameOf(HttpMethod::get, "/%74hings/curren%74"), "Current");
    EXPECT_EQ(nameOf(HttpMethod::get, "/things/1/parts/2"), "Parts [1] [2]");
}

TEST(Routes, goBackToAnArgumentWhereAFixedSegmentLeadsNowhere)
{
    EXPECT_EQ(nameOf(HttpMethod::put, "/things/current"), "Write [current]");
    EXPECT_EQ(nameOf(HttpMethod::get, "/things/current/parts/2"), "Parts [current] [2]");
    EXPECT_EQ(nameOf(HttpMethod::post, "/things/other/refresh"), "");
}

TEST(Routes, refuseOtherPathsAndBadEncodings)
{
    for (const char *path :
         {"", "things", "/", "/thing", "/things/", "//things", "/things//parts/2", "/things/1/parts",
          "/things/1/parts/2/", "/things/%", "/things/%4", "/things/%zz", "/things/%FF", "/things/%C3",
          "/things/%ED%A0%80", "/Things", "?/things"})
        EXPECT_EQ(nameOf(HttpMethod::get, path), "") << path;
}

TEST(Routes, tellTheMethodsOfAPath)
{
    const RouteTable table(someOperations);
    EXPECT_THAT(table.methods("/things/1"), ElementsAre(HttpMethod::get, HttpMethod::put));
    EXPECT_THAT(table.methods("/things/current"), UnorderedElementsAre(HttpMethod::get, HttpMethod::put));
    EXPECT_THAT(table.methods("/things/current/refresh"), ElementsAre(HttpMethod::post));
    EXPECT_THAT(table.methods("/nothing"), IsEmpty());
    EXPECT_THAT(table.methods("/things/%"), IsEmpty());
    EXPECT_THAT(routeMethods("/api/workspaces/w/time-entries"),
                UnorderedElementsAre(HttpMethod::get, HttpMethod::post));
}

TEST(UriText, everyByteOfTextSurvives)
{
    std::string all;
    for (unsigned c = 0; c < 0x80; ++c)
        all += static_cast<char>(c);
    all += "\xC3\xA4\xF0\x9F\x98\x80";
    EXPECT_EQ(percentDecoded(percentEncoded(all)), all);
    EXPECT_EQ(percentEncoded("aZ09-._~/%+ "), "aZ09-._~%2F%25%2B%20");
    EXPECT_EQ(percentDecoded("%c3%A4"), "\xC3\xA4");
}

TEST(UriText, readsQueriesPairByPair)
{
    EXPECT_EQ(parseQuery("a=1&b=x%20y%3D&a=&c&=d&&e=f=g+h"),
              (QueryPairs{{"a", "1"}, {"b", "x y="}, {"a", ""}, {"c", ""}, {"", "d"}, {"e", "f=g+h"}}));
    EXPECT_EQ(parseQuery(""), QueryPairs{});
    EXPECT_EQ(parseQuery("a=%"), std::nullopt);
    EXPECT_EQ(parseQuery("%FF=1"), std::nullopt);
}

} // namespace
} // namespace orvane
