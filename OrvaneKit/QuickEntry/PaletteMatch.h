// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "QuickEntry/FoldedText.h"

#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace orvane {

/// What the user typed to find something, folded and taken apart once. A value; any thread.
class PaletteQuery {
public:
    /// A piece of the query to look for, folded.
    struct Term {
        std::string text;
        std::uint64_t letters = 0; ///< see FoldedText
        std::size_t count = 1;     ///< how often it stands in the query
        std::size_t characters = 0;
        std::vector<std::uint32_t>
            borders; ///< of a long term: for each beginning, how much of it comes again

        Term(std::string folded, std::uint64_t letters);
    };

    explicit PaletteQuery(std::string_view text);
    explicit PaletteQuery(std::u16string_view text);

    /// The words of the query, each once.
    const std::vector<Term> &terms() const { return m_terms; }
    /// All words with one space between, when there are several.
    const std::optional<Term> &joined() const { return m_joined; }
    bool isEmpty() const { return m_terms.empty(); }
    /// More different words than anyone types (64) are not looked for: such a query matches nothing.
    bool isTooLong() const { return m_isTooLong; }
    /// Those of all its terms together.
    std::uint64_t letters() const { return m_letters; }

private:
    void take(const std::vector<FoldedText> &words);

    std::vector<Term> m_terms;
    std::optional<Term> m_joined;
    std::uint64_t m_letters = 0;
    bool m_isTooLong = false;
};

/// How well a name answers a query, and which parts of it to highlight. Pure; any thread.
///
/// A term scores 100 when it is the whole name, 80 when the name's first word begins with it, 70 when a later
/// one does, 55 when its characters (two at least) are initials of words in their order, and 35 when it
/// occurs anywhere; of these the first that fits. (A term may reach over the end of a word.) Several words
/// are first tried as one term, which counts when it scores above 55; else each must match, and the score is
/// their average.
///
/// The time is linear in the lengths of name and query, whatever they hold.
class PaletteMatch {
public:
    struct Match {
        double score = 0;              ///< 0 to 100; 0 for a query without words
        std::vector<TextRange> ranges; ///< in the name as it was given; sorted, merged, none empty

        bool operator==(const Match &) const = default;
    };

    /// A matched row: its number in the list that was ranked, and its match.
    struct Ranked {
        std::size_t row = 0;
        Match match;

        double score() const { return match.score; }
        bool operator==(const Ranked &) const = default;
    };

    static std::optional<Match> match(std::string_view name, std::string_view query);
    static std::optional<Match> match(const FoldedText &name, const PaletteQuery &query);

    /// Also looks at other texts that the thing is known by, such as a project's client. One of those counts
    /// for 0.8 of its score and highlights nothing. When no text has all the words, each word may be in any
    /// of them: the average of their best scores, times 0.8.
    static std::optional<Match> match(std::string_view name, const std::vector<std::string> &alternatives,
                                      std::string_view query);
    static std::optional<Match> match(const FoldedText &name, std::span<const FoldedText> alternatives,
                                      const PaletteQuery &query);

    /// The scores alone, which are quicker to find.
    static std::optional<double> score(const FoldedText &name, const PaletteQuery &query);
    static std::optional<double> score(const FoldedText &name, std::span<const FoldedText> alternatives,
                                       const PaletteQuery &query);

    /// The rows that match, best first; equal ones in the order of the list. `matches` has one member a row.
    static std::vector<Ranked> rank(std::vector<std::optional<Match>> matches);
};

} // namespace orvane
