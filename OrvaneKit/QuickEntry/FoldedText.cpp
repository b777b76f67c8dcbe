// SPDX-License-Identifier: GPL-3.0-or-later
#include "QuickEntry/FoldedText.h"

#include "Support/Require.h"

#include <algorithm>
#include <unicode/normalizer2.h>
#include <unicode/uchar.h>
#include <unicode/utf16.h>
#include <unicode/utf8.h>

namespace orvane {

namespace {

constexpr std::string_view ellipsis = "\xE2\x80\xA6";

// ICU's macros step an index inside of conditions.
// NOLINTBEGIN(bugprone-inc-dec-in-conditions)

/// The next character; what is no UTF-8 is U+FFFD.
UChar32 nextCharacter(std::string_view text, std::size_t &i)
{
    UChar32 c = 0;
    U8_NEXT_OR_FFFD(text.data(), i, text.size(), c);
    return c;
}

/// The next character or lone surrogate.
UChar32 nextCharacter(std::u16string_view text, std::size_t &i)
{
    UChar32 c = 0;
    U16_NEXT(text.data(), i, text.size(), c);
    return c;
}

/// The next character of folded text; below 0 for each byte of a lone surrogate.
UChar32 nextFolded(std::string_view text, std::size_t &i)
{
    UChar32 c = 0;
    U8_NEXT(text.data(), i, text.size(), c);
    return c;
}

// NOLINTEND(bugprone-inc-dec-in-conditions)

enum class Sort : std::uint8_t { other, letter, small, capital };

Sort sortOf(UChar32 c)
{
    if (c < 0x80) {
        if (c >= 'a' && c <= 'z')
            return Sort::small;
        if (c >= 'A' && c <= 'Z')
            return Sort::capital;
        return c >= '0' && c <= '9' ? Sort::letter : Sort::other;
    }
    if (u_isalnum(c) == 0)
        return Sort::other;
    if (u_isupper(c) != 0)
        return Sort::capital;
    return u_islower(c) != 0 ? Sort::small : Sort::letter;
}

bool isMark(UChar32 c)
{
    return c >= 0x300 && (U_GET_GC_MASK(c) & U_GC_M_MASK) != 0;
}

/// Accents and points. The vowel signs of Indic scripts are marks too, but without them words would be
/// others; those stand in a class of their own.
bool isDiacritic(UChar32 c)
{
    return c >= 0x300 && u_getCombiningClass(c) != 0;
}

bool isHangulSyllable(UChar32 c)
{
    return c >= 0xAC00 && c <= 0xD7A3;
}

/// A Hangul syllable, or the letter that one can begin with.
bool isHangul(UChar32 c)
{
    return isHangulSyllable(c) || (c >= 0x1100 && c <= 0x1112);
}

UChar32 plainLetter(UChar32 c)
{
    switch (c) {
    case 0x111:
        return 'd';
    case 0x142:
        return 'l';
    case 0xF8:
        return 'o';
    case 0x127:
        return 'h';
    default:
        return c;
    }
}

std::uint64_t letterBit(UChar32 c)
{
    // Letters and digits have bits of their own, the rest share what is left.
    if (c >= 'a' && c <= 'z')
        return std::uint64_t{1} << (c - 'a');
    if (c >= '0' && c <= '9')
        return std::uint64_t{1} << (26 + c - '0');
    return std::uint64_t{1} << (36 + c % 28);
}

using NormalizerOf = const icu::Normalizer2 *(UErrorCode &status);

const icu::Normalizer2 &required(NormalizerOf *instance)
{
    UErrorCode status = U_ZERO_ERROR;
    const icu::Normalizer2 *found = instance(status);
    ORVANE_REQUIRE(U_SUCCESS(status) != 0 && found != nullptr, "the normalization data is missing");
    return *found;
}

const icu::Normalizer2 &decomposition()
{
    static const icu::Normalizer2 &normalizer = required(&icu::Normalizer2::getNFDInstance);
    return normalizer;
}

const icu::Normalizer2 &composition()
{
    static const icu::Normalizer2 &normalizer = required(&icu::Normalizer2::getNFCInstance);
    return normalizer;
}

/// Of Hangul whole syllables are compared: the letters that follow and belong to this one are taken with it.
template <class Text>
void takeSyllable(Text text, std::size_t &i, UChar32 &c, std::uint32_t &units)
{
    while (isHangul(c) && i < text.size()) {
        std::size_t ahead = i;
        const UChar32 next = nextCharacter(text, ahead);
        const UChar32 pair = composition().composePair(c, next);
        if (pair < 0)
            return;
        c = pair;
        units += U16_LENGTH(next);
        i = ahead;
    }
}

} // namespace

class FoldedText::Builder {
public:
    explicit Builder(std::size_t size) { m_made.m_text.reserve(size); }

    FoldedText made() &&
    {
        if (m_isPlain)
            m_made.m_places = {};
        return std::move(m_made);
    }

    template <class Text>
    void addAll(Text text)
    {
        for (std::size_t i = 0; i < text.size();) {
            UChar32 c = nextCharacter(text, i);
            std::uint32_t units = U16_LENGTH(c);
            takeSyllable(text, i, c, units);
            add(c, units);
        }
    }

    void addAscii(std::string_view text)
    {
        for (const char c : text) {
            begin(sortOf(c));
            const char lower = c >= 'A' && c <= 'Z' ? static_cast<char>(c + ('a' - 'A')) : c;
            addLetter(lower);
            m_made.m_text.push_back(lower);
        }
    }

private:
    /// The next character of the original; `size` is how many UTF-16 units it has there.
    void add(UChar32 c, std::uint32_t size)
    {
        const std::uint32_t start = m_end;
        m_end += size;
        if (c < 0x80) {
            begin(sortOf(c));
            append(c >= 'A' && c <= 'Z' ? c + ('a' - 'A') : c, start);
            return;
        }
        m_isPlain = false;
        if (isDiacritic(c)) {
            coverMark();
            return;
        }
        if (!isMark(c))
            begin(sortOf(c));
        decompose(c, start);
    }

    void begin(Sort sort)
    {
        if (sort != Sort::other &&
            (m_before == Sort::other || (m_before == Sort::small && sort == Sort::capital)))
            m_made.m_wordStarts.push_back(static_cast<std::uint32_t>(m_made.m_text.size()));
        m_before = sort;
    }

    void decompose(UChar32 c, std::uint32_t start)
    {
        if (isHangulSyllable(c) || U_IS_SURROGATE(c)) {
            append(c, start);
            return;
        }
        icu::UnicodeString parts;
        if (decomposition().getDecomposition(c, parts) == 0)
            parts = c;
        for (std::int32_t i = 0; i < parts.length(); i = parts.moveIndex32(i, 1)) {
            const UChar32 part = parts.char32At(i);
            if (!isDiacritic(part))
                append(plainLetter(u_foldCase(part, U_FOLD_CASE_DEFAULT)), start);
        }
    }

    void append(UChar32 c, std::uint32_t start)
    {
        m_made.m_places.push_back({static_cast<std::uint32_t>(m_made.m_text.size()), {start, m_end}});
        addLetter(c);
        if (U_IS_SURROGATE(c)) {
            m_made.m_text += {static_cast<char>(0xED), static_cast<char>(0x80 | ((c >> 6) & 0x3F)),
                              static_cast<char>(0x80 | (c & 0x3F))};
            return;
        }
        char bytes[U8_MAX_LENGTH];
        std::int32_t length = 0;
        U8_APPEND_UNSAFE(bytes, length, c);
        m_made.m_text.append(bytes, static_cast<std::size_t>(length));
    }

    /// Before the character is part of the text.
    void addLetter(UChar32 c)
    {
        const std::uint64_t bit = letterBit(c);
        m_made.m_letters |= bit;
        const auto &starts = m_made.m_wordStarts;
        if (!starts.empty() && starts.back() == m_made.m_text.size())
            m_made.m_initials |= bit;
    }

    void coverMark()
    {
        auto &places = m_made.m_places;
        if (places.empty())
            return;
        const std::size_t reached = places.back().original.end;
        // One character may have become several, which all lie in the same place.
        for (auto place = places.rbegin(); place != places.rend() && place->original.end == reached; ++place)
            place->original.end = m_end;
    }

    FoldedText m_made;
    Sort m_before = Sort::other;
    std::uint32_t m_end = 0;
    bool m_isPlain = true;
};

FoldedText FoldedText::of(std::string_view text)
{
    Builder builder(text.size());
    if (std::ranges::none_of(text, [](char c) { return static_cast<signed char>(c) < 0; })) {
        builder.addAscii(text);
        return std::move(builder).made();
    }
    builder.addAll(text);
    return std::move(builder).made();
}

FoldedText FoldedText::of(std::u16string_view text)
{
    Builder builder(text.size());
    builder.addAll(text);
    return std::move(builder).made();
}

FoldedText FoldedText::ofName(std::string_view name)
{
    if (name.ends_with(ellipsis))
        name.remove_suffix(ellipsis.size());
    return of(name);
}

FoldedText FoldedText::ofName(std::u16string_view name)
{
    if (name.ends_with(u'…'))
        name.remove_suffix(1);
    return of(name);
}

TextRange FoldedText::originalRange(std::size_t from, std::size_t to) const
{
    ORVANE_REQUIRE(from < to && to <= m_text.size(), "a range outside the text");
    if (m_places.empty())
        return {from, to};
    const auto last = std::ranges::lower_bound(m_places, to, {}, &Place::folded) - 1;
    return {std::ranges::lower_bound(m_places, from, {}, &Place::folded)->original.start, last->original.end};
}

std::string FoldedText::joined() const
{
    std::string kept;
    kept.reserve(m_text.size());
    for (std::size_t i = 0; i < m_text.size();) {
        const std::size_t start = i;
        const UChar32 c = nextFolded(m_text, i);
        if (c < 0 || sortOf(c) != Sort::other || isMark(c))
            kept.append(m_text, start, i - start);
    }
    return kept;
}

std::size_t FoldedText::characterSize(char first)
{
    const auto byte = static_cast<std::uint8_t>(first);
    return byte < 0x80 ? 1 : byte < 0xE0 ? 2 : byte < 0xF0 ? 3 : 4;
}

std::size_t utf16Length(std::string_view text)
{
    std::size_t length = 0;
    for (std::size_t i = 0; i < text.size();) {
        const UChar32 c = nextCharacter(text, i);
        length += U16_LENGTH(c);
    }
    return length;
}

bool isSpace(char16_t unit)
{
    return u_isUWhiteSpace(unit) != 0;
}

std::vector<std::u16string_view> wordsOf(std::u16string_view text)
{
    std::vector<std::u16string_view> words;
    for (auto rest = text; !rest.empty();) {
        const auto end = static_cast<std::size_t>(std::ranges::find_if(rest, isSpace) - rest.begin());
        if (end > 0)
            words.push_back(rest.substr(0, end));
        rest.remove_prefix(std::min(end + 1, rest.size()));
    }
    return words;
}

std::vector<std::string_view> wordsOf(std::string_view text)
{
    std::vector<std::string_view> words;
    std::size_t wordStart = 0;
    const auto endWord = [&](std::size_t end) {
        if (end > wordStart)
            words.push_back(text.substr(wordStart, end - wordStart));
    };
    for (std::size_t i = 0; i < text.size();) {
        const std::size_t start = i;
        const UChar32 c = nextCharacter(text, i);
        if (u_isUWhiteSpace(c) != 0) {
            endWord(start);
            wordStart = i;
        }
    }
    endWord(text.size());
    return words;
}

} // namespace orvane
