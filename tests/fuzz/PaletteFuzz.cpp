// SPDX-License-Identifier: GPL-3.0-or-later
// A query in the first line and names in the others, as UTF-8 and as any UTF-16: scores and highlights keep
// to their bounds, a text finds itself, and further texts only help.
#include "QuickEntry/Palette.h"
#include "Support/Require.h"

namespace {

using namespace orvane;

template <class Text>
std::vector<Text> linesOf(Text text)
{
    std::vector<Text> lines;
    for (;;) {
        const auto end = text.find('\n');
        lines.push_back(text.substr(0, end));
        if (end == Text::npos)
            return lines;
        text.remove_prefix(end + 1);
    }
}

std::size_t unitsOf(std::string_view text)
{
    return utf16Length(text);
}

std::size_t unitsOf(std::u16string_view text)
{
    return text.size();
}

void checkMatch(const PaletteMatch::Match &match, std::size_t length)
{
    ORVANE_REQUIRE(match.score >= 0 && match.score <= 100, "a score out of bounds");
    std::size_t before = 0;
    bool isFirst = true;
    for (const TextRange &range : match.ranges) {
        ORVANE_REQUIRE(range.start < range.end && (isFirst || range.start > before), "ranges not merged");
        before = range.end;
        isFirst = false;
    }
    ORVANE_REQUIRE(before <= length, "a range outside the name");
}

template <class Text>
void check(const std::vector<Text> &lines)
{
    const PaletteQuery query(lines.front());
    std::vector<FoldedText> names;
    names.reserve(lines.size());
    for (const Text &line : lines)
        names.push_back(FoldedText::ofName(line));
    for (std::size_t i = 0; i < lines.size(); ++i) {
        const auto alone = PaletteMatch::match(names[i], query);
        const auto helped = PaletteMatch::match(names[i], std::span(names).subspan(i), query);
        if (alone)
            checkMatch(*alone, unitsOf(lines[i]));
        if (helped)
            checkMatch(*helped, unitsOf(lines[i]));
        ORVANE_REQUIRE(!alone || (helped && helped->score >= alone->score), "more texts found less");
        ORVANE_REQUIRE(alone.has_value() == PaletteMatch::score(names[i], query).has_value(), "two answers");
        const FoldedText whole = FoldedText::of(lines[i]);
        const PaletteQuery itself(lines[i]);
        ORVANE_REQUIRE(itself.isTooLong() || PaletteMatch::match(whole, itself), "does not find itself");
    }
}

void checkPalette(const std::vector<std::string_view> &lines)
{
    std::vector<PaletteItem> items;
    items.reserve(lines.size());
    for (const std::string_view line : lines)
        items.push_back({PaletteItem::Kind::tag, "id", std::string(line), {}, std::string(line)});
    const Palette palette(items);
    const auto found = palette.find(lines.front(), {}, Instant{});
    for (std::size_t i = 1; i < found.size(); ++i)
        ORVANE_REQUIRE(!comesBefore(found[i].standing, found[i - 1].standing), "out of order");
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    const std::string_view text(reinterpret_cast<const char *>(data), size);
    const auto lines = linesOf(text);
    check(lines);
    checkPalette(lines);
    std::u16string wide;
    for (std::size_t i = 0; i + 1 < size; i += 2)
        wide += static_cast<char16_t>(data[i] | data[i + 1] << 8);
    check(linesOf(std::u16string_view(wide)));
    const auto usage = PaletteUsage::fromJson(text);
    ORVANE_REQUIRE(PaletteUsage::fromJson(usage.json()) == usage, "usage read back differently");
    return 0;
}
