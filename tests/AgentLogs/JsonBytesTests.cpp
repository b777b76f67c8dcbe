// SPDX-License-Identifier: GPL-3.0-or-later
#include "AgentLogs/JsonBytes.h"

#include <gtest/gtest.h>
#include <memory>
#include <random>

namespace orvane::jsonbytes {
namespace {

const char *plainTextEnd(const char *at, const char *end)
{
    for (; at < end; ++at) {
        if (*at == '"')
            return at;
        if (*at == '\\')
            ++at;
    }
    return nullptr;
}

const char *plainBracketsEnd(const char *at, const char *end, int depth)
{
    for (bool isInText = false; at < end; ++at) {
        if (*at == '"')
            isInText = !isInText;
        else if (isInText && *at == '\\')
            ++at;
        else if (!isInText && (*at == '{' || *at == '['))
            ++depth;
        else if (!isInText && (*at == '}' || *at == ']') && --depth == 0)
            return at + 1;
    }
    return nullptr;
}

TEST(JsonBytesTest, FindsEndsWhereverTheyFallInABlock)
{
    std::mt19937 random(7);
    const auto below = [&](std::size_t limit) { return random() % limit; };
    constexpr std::string_view bytes = "\"\\{}[]ab:,\x5C\x22\x7F\x80\xDB\xFD\xA2\x02";
    for (int round = 0; round < 60'000; ++round) {
        // Memory of just this size, so that the sanitizer sees a step too far.
        const std::size_t size = below(round % 10 == 0 ? 300 : 80);
        const std::unique_ptr<char[]> text(new char[size]);
        const std::size_t rare = 1 + below(40);
        for (std::size_t i = 0; i < size; ++i)
            text[i] = below(rare) == 0 ? bytes[below(bytes.size())] : (below(3) == 0 ? '\\' : 'x');
        const char *const end = text.get() + size;
        const char *const at = text.get() + (size == 0 ? 0 : below(std::min<std::size_t>(size, 9)));
        const int depth = 1 + static_cast<int>(below(3));
        for (const Scanner &tried : {scanner, plainScanner}) {
            ASSERT_EQ(tried.textEnd(at, end), plainTextEnd(at, end)) << std::string(at, end);
            ASSERT_EQ(tried.bracketsEnd(at, end, depth), plainBracketsEnd(at, end, depth))
                << std::string(at, end);
        }
    }
}

std::string walked(std::string_view text)
{
    std::string out;
    ObjectWalk walk(text);
    while (walk.next()) {
        out += std::string(walk.name()) + walk.first();
        if (walk.first() != '[')
            continue;
        ListWalk list(walk.value(), walk.limit());
        while (list.next()) {
            ObjectWalk inner(list.object(), walk.limit());
            out += inner.next() ? "<" + std::string(inner.name()) + ">" : "<>";
            list.taken(inner.finish());
        }
        walk.taken(list.end());
    }
    const char *end = walk.finish();
    return out + (end == nullptr ? "!" : "|" + std::string(end, text.data() + text.size()));
}

TEST(JsonBytesTest, WalksObjectsAndListsOfThem)
{
    EXPECT_EQ(walked(R"({})"), "|");
    EXPECT_EQ(
        walked(R"( { "a" : "}\"" , "b":[1,{"x":[{}]}, "{", {}] ,"c":{"d":{}},"e":-1e3 ,"f\"":true}  rest)"),
        "a\"b[<x><>c{e-f\\\"t|  rest");
    EXPECT_EQ(walked("{\"a\":1,\n\t\"b\":\r null}"), "a1bn|");
    for (const std::string_view broken :
         {"", " ", "[]", "\"a\"", "{", "{\"a", "{\"a\"", "{\"a\" 1}", "{,\"a\":1}", "{1:2}"})
        EXPECT_EQ(walked(broken), "!") << broken;
    EXPECT_EQ(walked(R"({"a":1 "b":2})"), "a1!");
    EXPECT_EQ(walked(R"({"a":})"), "a}!");
    EXPECT_EQ(walked(R"({"a":"x)"), "a\"!");
    EXPECT_EQ(walked(R"({"a":[{"x":1})"), "a[<x>!");
    EXPECT_EQ(walked(R"({"a":[{"x":1}})"), "a[<x>!");
}

TEST(JsonBytesTest, ReadsEscapes)
{
    EXPECT_EQ(unescaped(R"(a\"\\\/\b\f\n\r\tz)"), "a\"\\/\b\f\n\r\tz");
    EXPECT_EQ(unescaped("\\u0041\\u00e9\\u20AC\\ud83c\\udfe0\\u0000."),
              std::string("A\xC3\xA9\xE2\x82\xAC\xF0\x9F\x8F\xA0\0.", 12));
    EXPECT_EQ(unescaped("\\ud83cx\\udfe0\\ud83c\\u0041\\ud83c"), "\xEF\xBF\xBDx\xEF\xBF\xBD\xEF\xBF\xBD"
                                                                 "A\xEF\xBF\xBD");
    for (const std::string_view broken : {"\\", "a\\x", "\\u", "\\u12", "\\u12g4", "\\U0041"})
        EXPECT_EQ(unescaped(broken), std::nullopt) << broken;
    EXPECT_EQ(withWholeCharacters(R"({"\\ud83c":"\ud83c\udfe0\udfe0\\\ud83c","a":"\u12"} \)"),
              R"({"\\ud83c":"\ud83c\udfe0\ufffd\\\ufffd","a":"\u12"} \)");
}

} // namespace
} // namespace orvane::jsonbytes
