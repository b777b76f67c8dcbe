// SPDX-License-Identifier: GPL-3.0-or-later
#include "Terminal/TextWidth.h"

#include <algorithm>
#include <span>
#include <unicode/uchar.h>
#include <unicode/utf8.h>
#include <utility>
#include <vector>

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

/// What a shell takes for a command that goes on in the next line.
constexpr std::string_view goesOn = " \\";

/// Whether a quote is open behind the text.
bool leavesQuoteOpen(std::string_view text)
{
    char open = 0;
    for (const char c : text) {
        const bool isQuote = c == '"' || c == '\'';
        if (isQuote && (open == 0 || open == c))
            open = open == 0 ? c : char{0};
    }
    return open != 0;
}

/// How many of the words are the command that they begin with: up to punctuation, or to what leads to another
/// one.
std::size_t wordsOfCommand(std::span<const std::string_view> words)
{
    std::string text;
    for (std::size_t i = 0; i < words.size(); ++i) {
        text.append(i > 0 ? " " : "").append(words[i]);
        if (leavesQuoteOpen(text))
            continue;
        constexpr std::string_view ends = ".,;";
        const bool isLast = i + 1 == words.size() || words[i + 1] == "or" || words[i + 1] == "or:";
        if (isLast || ends.find(words[i].back()) != std::string_view::npos)
            return i + 1;
    }
    return 1; // an apostrophe, not a quote
}

/// A piece of a line that is not broken.
struct LinePiece {
    std::string text;
    /// The command whose words it is one of; 0: none.
    int command = 0;
    /// It goes on with an argument that is wider than a line: a backslash would become part of it.
    bool isWithinArgument = false;
};

std::string joinedWords(std::span<const std::string_view> words)
{
    std::string text;
    for (const std::string_view word : words)
        text.append(text.empty() ? "" : " ").append(word);
    return text;
}

/// The arguments of a command that is wider than a line.
void addArguments(std::vector<LinePiece> &pieces, std::span<const std::string_view> words, int command,
                  int width)
{
    for (std::size_t at = 0; at < words.size();) {
        std::size_t count = 1;
        while (at + count < words.size() && leavesQuoteOpen(joinedWords(words.subspan(at, count))))
            ++count;
        const auto argument = words.subspan(at, count);
        std::string whole = joinedWords(argument);
        at += count;
        if (shownWidth(whole) <= width) {
            pieces.push_back({std::move(whole), command});
            continue;
        }
        for (const std::string_view &word : argument)
            pieces.push_back({std::string(word), command, &word != argument.data()});
    }
}

/// Ours, and those of the agents that it is connected with.
bool isProgram(std::string_view word)
{
    return word == "orvane" || word == "claude" || word == "codex";
}

/// The words of a line, those of a command together when they fit, else each of its arguments that fits.
std::vector<LinePiece> piecesOf(std::string_view line, int width)
{
    std::vector<std::string_view> all;
    forEachWord(line, [&all](std::string_view word) { all.push_back(word); });
    const std::span<const std::string_view> words = all;
    std::vector<LinePiece> pieces;
    int commands = 0;
    for (std::size_t at = 0; at < words.size(); ++at) {
        const bool isCommand =
            isProgram(words[at]) && (at == 0 || words[at - 1].ends_with(':') || words[at - 1] == "or");
        const std::size_t count = isCommand ? wordsOfCommand(words.subspan(at)) : 1;
        const auto command = words.subspan(at, count);
        at += count - 1;
        std::string whole = joinedWords(command);
        if (!isCommand || shownWidth(whole) <= width) {
            pieces.push_back({std::move(whole)});
            continue;
        }
        addArguments(pieces, command, ++commands, width - static_cast<int>(goesOn.size()));
    }
    return pieces;
}

void appendWrapped(std::string &out, std::string_view line, int width)
{
    if (shownWidth(line) <= width) {
        out += line;
        return;
    }
    const std::string_view indent = line.substr(0, std::min(line.find_first_not_of(' '), line.size()));
    const auto margin = static_cast<int>(indent.size());
    const std::vector<LinePiece> pieces = piecesOf(line, width - margin);
    int column = 0;
    for (std::size_t i = 0; i < pieces.size(); ++i) {
        const auto isPartOf = [&](std::size_t other) {
            return pieces[i].command != 0 && other < pieces.size() &&
                   pieces[other].command == pieces[i].command;
        };
        const int wide = shownWidth(pieces[i].text);
        const int kept = isPartOf(i + 1) ? static_cast<int>(goesOn.size()) : 0;
        const bool isFirst = column == 0;
        const bool breaks =
            isFirst || column + 1 + wide + kept > width || (pieces[i].command != 0 && !isPartOf(i - 1));
        if (breaks && !isFirst)
            out.append(isPartOf(i - 1) && !pieces[i].isWithinArgument ? goesOn : "").append("\n");
        out.append(breaks ? indent : " ").append(pieces[i].text);
        column = (breaks ? margin : column + 1) + wide;
    }
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
