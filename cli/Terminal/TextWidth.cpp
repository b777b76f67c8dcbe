// SPDX-License-Identifier: GPL-3.0-or-later
#include "Terminal/TextWidth.h"

#include <algorithm>
#include <unicode/uchar.h>
#include <unicode/utf8.h>
#include <utility>

namespace orvane {

namespace {

constexpr UChar32 zeroWidthJoiner = 0x200D;
constexpr UChar32 emojiVariant = 0xFE0F;

UChar32 nextCharacter(std::string_view text, std::size_t &at)
{
    UChar32 character = 0;
    auto index = static_cast<std::int32_t>(at);
    U8_NEXT_OR_FFFD(text.data(), index, static_cast<std::int32_t>(text.size()), character);
    at = static_cast<std::size_t>(index);
    return character;
}

bool isAscii(std::string_view text)
{
    return std::ranges::all_of(text, [](char c) { return static_cast<unsigned char>(c) < 0x80; });
}

/// Adds up columns character by character; an emoji that is put together of several counts as one.
class ColumnCounter {
public:
    /// The columns that this character adds.
    int add(UChar32 character)
    {
        const bool joined = std::exchange(m_afterJoiner, character == zeroWidthJoiner);
        const bool pairsUp = isRegional(character) && std::exchange(m_openRegional, !m_openRegional);
        if (!isRegional(character))
            m_openRegional = false;
        const int columns = joined || pairsUp ? 0 : width(character);
        if (columns > 0)
            m_last = columns;
        return columns;
    }

private:
    static bool isRegional(UChar32 character) { return character >= 0x1F1E6 && character <= 0x1F1FF; }

    int width(UChar32 character) const
    {
        if (character >= 0x20 && character < 0x7F)
            return 1;
        // An emoji variant widens the narrow sign before it.
        if (character == emojiVariant)
            return m_last == 1 ? 1 : 0;
        if (m_last == 2 && u_hasBinaryProperty(character, UCHAR_EMOJI_MODIFIER))
            return 0;
        switch (u_charType(character)) {
        case U_NON_SPACING_MARK:
        case U_ENCLOSING_MARK:
        case U_FORMAT_CHAR:
        case U_CONTROL_CHAR:
            return 0;
        default:
            break;
        }
        if (isRegional(character))
            return 2;
        const auto kind = u_getIntPropertyValue(character, UCHAR_EAST_ASIAN_WIDTH);
        return kind == U_EA_WIDE || kind == U_EA_FULLWIDTH ? 2 : 1;
    }

    int m_last = 0;
    bool m_afterJoiner = false;
    bool m_openRegional = false;
};

bool turnsDirection(UChar32 character)
{
    return (character >= 0x202A && character <= 0x202E) || (character >= 0x2066 && character <= 0x2069) ||
           character == 0x200E || character == 0x200F || character == 0x061C;
}

bool breaksLine(UChar32 character)
{
    return u_charType(character) == U_CONTROL_CHAR || character == 0x2028 || character == 0x2029;
}

void append(std::string &out, UChar32 character)
{
    char bytes[U8_MAX_LENGTH];
    std::int32_t length = 0;
    U8_APPEND_UNSAFE(bytes, length, character);
    out.append(bytes, static_cast<std::size_t>(length));
}

template <class Function>
void forEachWord(std::string_view text, const Function &function)
{
    for (std::size_t at = 0; at < text.size();) {
        const std::size_t end = std::min(text.find(' ', at), text.size());
        if (end > at)
            function(text.substr(at, end - at));
        at = end + 1;
    }
}

/// The columns that the text takes beside what switches styles on and off.
int shownWidth(std::string_view text)
{
    std::string shown;
    for (std::size_t at = 0; at < text.size();) {
        const std::size_t code = std::min(text.find("\x1b[", at), text.size());
        shown += text.substr(at, code - at);
        at = code == text.size() ? code : std::min(text.find('m', code), text.size() - 1) + 1;
    }
    return displayWidth(shown);
}

void appendWrapped(std::string &out, std::string_view line, int width)
{
    if (shownWidth(line) <= width) {
        out += line;
        return;
    }
    const std::string_view indent = line.substr(0, std::min(line.find_first_not_of(' '), line.size()));
    const auto margin = static_cast<int>(indent.size());
    int column = 0;
    forEachWord(line, [&](std::string_view word) {
        const int wide = shownWidth(word);
        const bool isFirst = column == 0;
        if (isFirst || column + 1 + wide > width) {
            out.append(isFirst ? "" : "\n").append(indent);
            column = margin + wide;
        } else {
            out += ' ';
            column += 1 + wide;
        }
        out += word;
    });
}

} // namespace

int displayWidth(std::string_view text)
{
    if (isAscii(text))
        return static_cast<int>(text.size());
    ColumnCounter counter;
    int columns = 0;
    for (std::size_t at = 0; at < text.size();)
        columns += counter.add(nextCharacter(text, at));
    return columns;
}

std::string truncatedToWidth(std::string_view text, int width)
{
    if (displayWidth(text) <= width)
        return std::string(text);
    if (width <= 0)
        return {};
    ColumnCounter counter;
    int columns = 0;
    // Where a character of its own begins, so that a cut keeps it and its marks together.
    std::size_t cut = 0;
    for (std::size_t at = 0; at < text.size();) {
        const std::size_t begin = at;
        const int added = counter.add(nextCharacter(text, at));
        if (added > 0)
            cut = begin;
        if (columns + added > width - 1)
            break;
        columns += added;
    }
    std::string_view kept = text.substr(0, cut);
    while (!kept.empty() && kept.back() == ' ')
        kept.remove_suffix(1);
    return std::string(kept) + "…";
}

std::vector<std::string> wordLines(std::string_view text, int width)
{
    std::vector<std::string> lines;
    forEachWord(text, [&](std::string_view word) {
        const std::string cut = truncatedToWidth(word, width);
        if (!lines.empty() && displayWidth(lines.back()) + 1 + displayWidth(cut) <= width)
            lines.back() += " " + cut;
        else
            lines.push_back(cut);
    });
    return lines;
}

std::string wrapped(std::string_view text, int width)
{
    std::string out;
    while (width > 0 && !text.empty()) {
        const std::size_t end = std::min(text.find('\n'), text.size());
        appendWrapped(out, text.substr(0, end), width);
        if (end < text.size())
            out += '\n';
        text.remove_prefix(std::min(end + 1, text.size()));
    }
    return width > 0 ? out : std::string(text);
}

std::string printable(std::string_view text)
{
    std::string out;
    out.reserve(text.size());
    for (std::size_t at = 0; at < text.size();) {
        const UChar32 character = nextCharacter(text, at);
        if (breaksLine(character))
            out += ' ';
        else if (!turnsDirection(character))
            append(out, character);
    }
    return out;
}

} // namespace orvane
