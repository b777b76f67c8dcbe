// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "QuickEntry/TextRange.h"

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace orvane {

/// A text in the form in which names and queries are compared: lower case, without diacritics ("Café" is
/// "cafe"), and with "đ", "ł", "ø" and "ħ", which have no plain letter inside, as "d", "l", "o" and "h".
/// Hangul is whole syllables, however they are encoded. A text is folded once and then searched many times. A
/// value; any thread.
///
/// Folding may change how long a text is, so every place of the folded text is known in the original too.
/// Places of the folded text are bytes, always at the beginning of a character.
class FoldedText {
public:
    FoldedText() = default;
    /// What is no UTF-8 becomes U+FFFD.
    static FoldedText of(std::string_view text);
    /// Lone surrogates are letters like others, equal to themselves alone.
    static FoldedText of(std::u16string_view text);
    /// Without a "…" at its end, which menus put behind a name and which is no part of it.
    static FoldedText ofName(std::string_view name);
    static FoldedText ofName(std::u16string_view name);

    /// UTF-8; a lone surrogate has the three bytes that its number would have.
    const std::string &text() const { return m_text; }
    /// Where words begin: at a letter or digit that has none before it, and at a capital after a small
    /// letter, so "timeTracker" has two. In order.
    const std::vector<std::uint32_t> &wordStarts() const { return m_wordStarts; }
    /// A bit for each character that occurs; different characters may share one. A text can only occur in
    /// another one whose letters hold all of its own.
    std::uint64_t letters() const { return m_letters; }
    /// The same of the characters at which words begin.
    std::uint64_t initials() const { return m_initials; }

    /// Which part of the original a part of the folded text stands for; marks belong to the letter below
    /// them.
    TextRange originalRange(std::size_t from, std::size_t to) const;

    /// The letters and digits alone: "Big Project" and "big-project" are the same without what parts them.
    std::string joined() const;

    /// Bytes of the character that begins here.
    static std::size_t characterSize(char first);

private:
    /// Where a character of the folded text lies in the original.
    struct Place {
        std::uint32_t folded = 0;
        TextRange original;
    };
    class Builder;

    std::string m_text;
    std::vector<std::uint32_t> m_wordStarts;
    std::vector<Place>
        m_places; ///< empty when each byte stands for the unit of the same number (plain ASCII)
    std::uint64_t m_letters = 0;
    std::uint64_t m_initials = 0;
};

/// Code units that the text has as UTF-16.
std::size_t utf16Length(std::string_view text);

/// The pieces between white space of any script, in order; none is empty. They point into the text.
std::vector<std::string_view> wordsOf(std::string_view text);
std::vector<std::u16string_view> wordsOf(std::u16string_view text);

/// Whether this is white space of any script or a line end; no surrogate is.
bool isSpace(char16_t unit);

} // namespace orvane
