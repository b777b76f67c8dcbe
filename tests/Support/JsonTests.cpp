// SPDX-License-Identifier: GPL-3.0-or-later
#include "Support/Json.h"
#include "Support/JsonImpl.h"

#include <gtest/gtest.h>
#include <limits>

namespace orvane {
namespace {

enum class Colour { red, blue, unrecognized };
enum class Shape { round, square };

struct Item {
    std::string id;
    std::optional<std::int64_t> weight;

    bool operator==(const Item &) const = default;
};

struct Moved {
    double distance = 0;

    bool operator==(const Moved &) const = default;
};
using Step = std::variant<Item, Moved>;

struct Wrapped {
    std::vector<Item> items;

    bool operator==(const Wrapped &) const = default;
};

struct Everything {
    bool flag = false;
    std::int64_t count = 0;
    double ratio = 0;
    std::string text;
    Instant when{};
    std::chrono::year_month_day day{std::chrono::year{2026}, std::chrono::March, std::chrono::day{1}};
    std::optional<std::string> note;
    std::vector<Item> items;
    std::map<std::string, Item> named;
    Colour colour = Colour::red;
    Shape shape = Shape::round;
    RawJson raw;
    Step step;
    Wrapped wrapped;
    std::vector<bool> bits;
    std::vector<std::string> tags{"kept"};

    bool operator==(const Everything &) const = default;
};

} // namespace

template <>
struct JsonEnum<Colour> {
    static constexpr auto list = std::array{std::pair{Colour::red, std::string_view("red")},
                                            std::pair{Colour::blue, std::string_view("blue")}};
    static constexpr auto unrecognized = Colour::unrecognized;
};
template <>
struct JsonEnum<Shape> {
    static constexpr auto list = std::array{std::pair{Shape::round, std::string_view("round")},
                                            std::pair{Shape::square, std::string_view("square")}};
};
template <>
struct JsonCases<Step> {
    static constexpr std::array<std::string_view, 2> names{"picked", "moved"};
};
template <>
struct JsonAlias<Wrapped> {
    static constexpr auto member = &Wrapped::items;
};
template <>
struct JsonFields<Item> {
    // The longer form of a list, which types written by hand may use.
    static constexpr auto list = std::tuple{jsonField<"id">(&Item::id), jsonField<"weight">(&Item::weight)};
};
template <>
struct JsonFields<Moved> {
    static constexpr auto list = JsonFieldList{jsonField<"distance">(&Moved::distance)};
};
template <>
struct JsonFields<Everything> {
    static constexpr auto list = JsonFieldList{jsonField<"flag">(&Everything::flag),
                                               jsonField<"count">(&Everything::count),
                                               jsonField<"ratio">(&Everything::ratio),
                                               jsonField<"text">(&Everything::text),
                                               jsonField<"when">(&Everything::when),
                                               jsonField<"day">(&Everything::day),
                                               jsonField<"note">(&Everything::note),
                                               jsonField<"items">(&Everything::items),
                                               jsonField<"named">(&Everything::named),
                                               jsonField<"colour">(&Everything::colour),
                                               jsonField<"shape">(&Everything::shape),
                                               jsonField<"raw">(&Everything::raw),
                                               jsonField<"step">(&Everything::step),
                                               jsonField<"wrapped">(&Everything::wrapped),
                                               jsonField<"bits">(&Everything::bits),
                                               jsonField<"tags">(&Everything::tags, JsonPresence::defaulted)};
};

} // namespace orvane

ORVANE_JSON(::orvane::Everything)
ORVANE_JSON(::orvane::Item)
ORVANE_JSON(std::vector<::orvane::Item>)
ORVANE_JSON(std::vector<double>)
ORVANE_JSON(std::vector<std::int64_t>)
ORVANE_JSON(std::vector<std::string>)
ORVANE_JSON(::orvane::RawJson)
ORVANE_JSON(::orvane::Instant)

namespace orvane {
namespace {

using namespace std::chrono;

Everything sample()
{
    Everything value;
    value.flag = true;
    value.count = std::numeric_limits<std::int64_t>::min();
    value.ratio = 0.1;
    value.text = "a\"b\\c\n\x01 \xC3\xA4 \xF0\x9F\x98\x80";
    value.when = sys_days{year{2026} / March / 1} + 9h + 123ms;
    value.note = "";
    value.items = {{"1", 7}, {"2", std::nullopt}};
    value.named = {{"\"k\"", {"3", 0}}};
    value.colour = Colour::blue;
    value.raw = {R"({"a":[1,{"b":null}]})"};
    value.step = Moved{1.5};
    value.wrapped = {{{"4", 1}}};
    value.bits = {true, false};
    value.tags = {};
    return value;
}

const std::string sampleText =
    R"({"flag":true,"count":-9223372036854775808,"ratio":0.1,"text":"a\"b\\c\n\u0001 ä 😀",)"
    R"("when":"2026-03-01T09:00:00.123Z","day":"2026-03-01","note":"","items":[{"id":"1","weight":7},{"id":"2"}],)"
    R"("named":{"\"k\"":{"id":"3","weight":0}},"colour":"blue","shape":"round","raw":{"a":[1,{"b":null}]},)"
    R"("step":{"moved":{"distance":1.5}},"wrapped":[{"id":"4","weight":1}],"bits":[true,false],"tags":[]})";

/// The sample with one piece of its text put in the place of another.
std::string sampleWith(std::string_view piece, std::string_view other)
{
    std::string text = sampleText;
    const std::size_t place = text.find(piece);
    EXPECT_NE(place, std::string::npos) << piece;
    return place == std::string::npos ? text : text.replace(place, piece.size(), other);
}

JsonError errorOf(const std::string &text, JsonReading reading = {})
{
    const auto value = decodeJson<Everything>(text, reading);
    return value ? JsonError{"read", text} : value.error();
}

TEST(Json, writesAndReadsEveryKindOfMember)
{
    EXPECT_EQ(encodeJson(sample()), sampleText);
    EXPECT_EQ(decodeJson<Everything>(sampleText, {.strict = true}), sample());
}

TEST(Json, codesDatesAsSecondsForTheStore)
{
    const std::string text = encodeJson(sample(), {.dates = DateCoding::secondsSince2001});
    EXPECT_NE(text.find(R"("when":794048400.123,"day":"2026-03-01")"), std::string::npos) << text;
    EXPECT_EQ(decodeJson<Everything>(text, {.dates = DateCoding::secondsSince2001}), sample());
    EXPECT_EQ(errorOf(text), (JsonError{"when", "is not a date"}));
    EXPECT_EQ(errorOf(sampleText, {.dates = DateCoding::secondsSince2001}),
              (JsonError{"when", "is not a date"}));
}

TEST(Json, membersWithoutAValueAreLeftOutOrNull)
{
    EXPECT_EQ(encodeJson(Item{"1", {}}), R"({"id":"1"})");
    EXPECT_EQ(encodeJson(Item{"1", {}}, {.writeNulls = true}), R"({"id":"1","weight":null})");
    EXPECT_EQ(decodeJson<Item>(R"({"id":"1","weight":null})"), (Item{"1", {}}));

    Everything kept = sample();
    kept.tags = {"kept"};
    EXPECT_EQ(decodeJson<Everything>(sampleWith(R"("tags":[])", R"("tags":null)")), kept);
    EXPECT_EQ(decodeJson<Everything>(sampleWith(R"(,"tags":[])", "")), kept);
}

TEST(Json, acceptsAnyOrderUnknownMembersEscapedNamesAndSpace)
{
    const Item expected{"1", 7};
    for (const char *text :
         {R"({"weight":7,"id":"1"})", R"({"other":[{"id":3}],"id":"1","x":"}","weight":7})",
          R"({"\u0069d":"1","weigh\u0074":7})", " \r\n\t{ \"id\" : \"1\" , \"weight\" : 7 } \n",
          R"({"ID":"2","idx":"3","i":"4","":"5","\"":"6","id":"1","weight":7})"})
        EXPECT_EQ(decodeJson<Item>(text, {.strict = true}), expected) << text;
}

TEST(Json, namesThePlaceAndTheFault)
{
    const struct {
        const char *piece;
        const char *other;
        JsonError error;
    } cases[] = {
        {"\"flag\":true", "\"flag\":1", {"flag", "is not true or false"}},
        {"-9223372036854775808", "-9223372036854775809", {"count", "is not a whole number"}},
        {"-9223372036854775808", "9223372036854775808", {"count", "is not a whole number"}},
        {"-9223372036854775808", "1.0", {"count", "is not a whole number"}},
        {"-9223372036854775808", "1e3", {"count", "is not a whole number"}},
        {"-9223372036854775808", "\"1\"", {"count", "is not a whole number"}},
        {"0.1", "\"0.1\"", {"ratio", "is not a number"}},
        {"0.1", "1e999", {"ratio", "is not a number"}},
        {"\"2026-03-01T09:00:00.123Z\"", "\"soon\"", {"when", "Not an ISO 8601 date: soon"}},
        {"\"2026-03-01T09:00:00.123Z\"", "7", {"when", "is not a date"}},
        {"\"day\":\"2026-03-01\"", "\"day\":\"2026-02-30\"", {"day", "is not a day"}},
        {"\"note\":\"\"", "\"note\":1", {"note", "is not a text"}},
        {"{\"id\":\"2\"}", "{}", {"items[1].id", "is missing"}},
        {"{\"id\":\"2\"}", "{\"id\":null}", {"items[1].id", "is not a text"}},
        {"{\"id\":\"2\"}", "[]", {"items[1]", "is not an object"}},
        {"{\"id\":\"2\"}", "{\"id\":\"2\",\"id\":\"3\"}", {"items[1].id", "is given twice"}},
        {"{\"id\":\"2\"}", "{\"id\":\"2\",\"i\\u0064\":\"3\"}", {"items[1].id", "is given twice"}},
        {"[true,false]", "{}", {"bits", "is not a list"}},
        {"[true,false]", "[true,0]", {"bits[1]", "is not true or false"}},
        {"{\"id\":\"3\",\"weight\":0}", "3", {"named.\"k\"", "is not an object"}},
        {"\"named\":{", "\"named\":{\"\\\"k\\\"\":{\"id\":\"0\"},", {"named.\"k\"", "is given twice"}},
        {"\"weight\":1}]", "\"weight\":\"1\"}]", {"wrapped[0].weight", "is not a whole number"}},
        {"\"round\"", "\"oval\"", {"shape", "is none of the known values"}},
        {"{\"moved\":{\"distance\":1.5}}", "{}", {"step", "is not one known case"}},
        {"{\"moved\":{\"distance\":1.5}}", "{\"flown\":1}", {"step", "is not one known case"}},
        {"{\"moved\":{\"distance\":1.5}}",
         "{\"moved\":{\"distance\":1},\"a\":1}",
         {"step", "is not one known case"}},
        {"\"distance\":1.5", "\"distance\":true", {"step.moved.distance", "is not a number"}},
    };
    for (const auto &[piece, other, error] : cases) {
        const JsonError found = errorOf(sampleWith(piece, other));
        EXPECT_EQ(found, error) << other << ": " << found.path << ": " << found.message;
    }
    EXPECT_EQ(decodeJson<Everything>("[]").error(), (JsonError{"", "is not an object"}));
}

TEST(Json, aBrokenDateIsQuotedByWholeCharactersOnly)
{
    const std::string text = std::string(39, 'x') + "\xC3\xA4 and more";
    EXPECT_EQ(decodeJson<Instant>('"' + text + '"').error().message,
              "Not an ISO 8601 date: " + std::string(39, 'x'));
}

TEST(Json, unknownEnumerationTextsAreReadUnlessStrict)
{
    const std::string text = sampleWith("\"blue\"", "\"green\"");
    ASSERT_TRUE(decodeJson<Everything>(text));
    EXPECT_EQ(decodeJson<Everything>(text)->colour, Colour::unrecognized);
    EXPECT_EQ(errorOf(text, {.strict = true}), (JsonError{"colour", "is none of the known values"}));
}

TEST(Json, everyTruncationIsRefusedAsBroken)
{
    for (std::size_t length = 0; length < sampleText.size(); ++length) {
        const JsonError error = errorOf(sampleText.substr(0, length));
        ASSERT_EQ(error, (JsonError{"", "is broken JSON"})) << length << error.path << error.message;
    }
}

TEST(Json, whatFollowsTheValueIsRefused)
{
    for (const char *tail : {"x", "{}", ",", "]", "}", "\"", "1", "null", "//"})
        EXPECT_EQ(errorOf(sampleText + tail), (JsonError{"", "is broken JSON"})) << tail;
    EXPECT_EQ(errorOf(sampleText + std::string(1, '\0')), (JsonError{"", "is broken JSON"}));
}

TEST(Json, brokenJsonHasNoPlaceEvenWhereAValueIsWrongToo)
{
    EXPECT_EQ(decodeJson<Item>(R"({"id":1,"weight":})").error(), (JsonError{"", "is broken JSON"}));
    EXPECT_EQ(decodeJson<Item>(R"({'id':"1"})").error(), (JsonError{"", "is broken JSON"}));
    EXPECT_EQ(decodeJson<Item>("{\"id\":\"a\nb\"}").error(), (JsonError{"", "is broken JSON"}));
    EXPECT_EQ(decodeJson<Item>("{\"id\":\"\\ud800\"}").error(), (JsonError{"", "is broken JSON"}));
    EXPECT_EQ(decodeJson<Item>("{\"id\":\"\xFF\"}").error(), (JsonError{"", "is broken JSON"}));
    // Only strict reading looks into what it passes over.
    EXPECT_EQ(decodeJson<Item>(R"({"id":"1","x":[1,,2]})", {.strict = true}).error(),
              (JsonError{"", "is broken JSON"}));
}

TEST(Json, readsEscapesAndMendsTextThatIsNotUtf8)
{
    EXPECT_EQ(decodeJson<std::vector<std::string>>(R"(["\u00e4\ud83d\ude00\/\b\f\r\t\u0000"])"),
              (std::vector{std::string("\xC3\xA4\xF0\x9F\x98\x80/\b\f\r\t\0", 12)}));
    const struct {
        std::string broken;
        std::string written;
    } cases[] = {
        {"\xFF", "\xEF\xBF\xBD"},
        {"a\xC3", "a\xEF\xBF\xBD"},
        {"\xF0\x9F\x98z", "\xEF\xBF\xBD\xEF\xBF\xBD\xEF\xBF\xBDz"},
        {"\xC3\xA4\xED\xA0\x80", "\xC3\xA4\xEF\xBF\xBD\xEF\xBF\xBD\xEF\xBF\xBD"},
        {"\xC0\xAF\"\n", "\xEF\xBF\xBD\xEF\xBF\xBD\\\"\\n"},
    };
    for (const auto &[broken, written] : cases) {
        const std::string text = encodeJson(std::vector{broken});
        EXPECT_EQ(text, "[\"" + written + "\"]");
        EXPECT_TRUE(decodeJson<std::vector<std::string>>(text));
    }
}

TEST(Json, numbersComeBackAsTheyWere)
{
    const std::vector<double> numbers{
        0.1, -0.0, 1e-320, 5e-324, std::numeric_limits<double>::max(), 123456789012345680.0, 1.0 / 3};
    const auto again = decodeJson<std::vector<double>>(encodeJson(numbers));
    ASSERT_TRUE(again);
    EXPECT_EQ(*again, numbers);
    EXPECT_EQ(decodeJson<std::vector<double>>("[1,-2,3e2]"), (std::vector{1.0, -2.0, 300.0}));
    EXPECT_EQ(decodeJson<std::vector<std::int64_t>>("[9223372036854775807,-0]"),
              (std::vector<std::int64_t>{std::numeric_limits<std::int64_t>::max(), 0}));
    EXPECT_FALSE(decodeJson<std::vector<double>>("[" + std::string(10'000, '9') + "]"));
    EXPECT_FALSE(decodeJson<std::vector<double>>("[01]"));
    EXPECT_FALSE(decodeJson<std::vector<double>>("[NaN]"));
    // An unknown member may hold a number that nothing here could, as long as it is one.
    for (const char *number : {"123456789012345678901234567890", "-1.5e+99999", "[1e999,\"\\\"01\",-0E-9]"})
        EXPECT_EQ(decodeJson<Item>("{\"x\":" + std::string(number) + R"(,"id":"1"})", {.strict = true}),
                  (Item{"1", {}}))
            << number;
    for (const char *number :
         {"[1e999,01]", "[1e999,1.]", "[1e999,-]", "[1e999,1e+]", "[1e999,.5]", "[1e999,+1]"})
        EXPECT_FALSE(decodeJson<Item>("{\"x\":" + std::string(number) + R"(,"id":"1"})", {.strict = true}))
            << number;
}

TEST(Json, freeFormJsonIsKeptAsItsText)
{
    for (const char *text : {"null", "true", "-1.50e+3", R"("a\u0041")", "[]", R"({"a" : [1, {"b":"}"}]})"})
        EXPECT_EQ(encodeJson(decodeJson<RawJson>(text).value_or(RawJson{"none"})), text);
    EXPECT_EQ(decodeJson<RawJson>(" [1] \n").value_or(RawJson{}).text, "[1]");
    for (const char *text : {"", "[1,,2]", "{\"a\"}", "tru", "1.", "nul", "[\"\\x\"]", "{\"a\":1}}"})
        EXPECT_EQ(decodeJson<RawJson>(text).value_or(RawJson{"refused"}).text, "refused") << text;
}

TEST(Json, deepNestingIsRefusedWithoutHarm)
{
    const std::string deep = std::string(200'000, '[') + std::string(200'000, ']');
    EXPECT_EQ(decodeJson<RawJson>(deep).value_or(RawJson{"refused"}).text, "refused");
    EXPECT_EQ(decodeJson<Item>("{\"x\":" + deep + ",\"id\":\"1\"}", {.strict = true}).error().message,
              "is broken JSON");
    const std::string fair = std::string(500, '[') + std::string(500, ']');
    EXPECT_EQ(decodeJson<RawJson>(fair).value_or(RawJson{}).text, fair);
}

TEST(Json, textsOfEverySizeAreRead)
{
    // Around a parser's block of 64 bytes, and above the size from which it is not kept.
    for (const std::size_t size :
         std::initializer_list<std::size_t>{0, 1, 31, 32, 33, 63, 64, 65, 127, 128, 129, 300'000}) {
        const std::vector<Item> items{{std::string(size, 'x'), 1}, {"after", {}}};
        EXPECT_EQ(decodeJson<std::vector<Item>>(encodeJson(items), {.strict = true}), items) << size;
    }
}

} // namespace
} // namespace orvane
