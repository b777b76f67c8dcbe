// SPDX-License-Identifier: GPL-3.0-or-later
#include "QuickEntry/PaletteMatch.h"

#include <algorithm>
#include <unordered_map>

namespace orvane {

namespace {

using Match = PaletteMatch::Match;
using Term = PaletteQuery::Term;

constexpr double whole = 100;
constexpr double firstWord = 80;
constexpr double laterWord = 70;
constexpr double initials = 55;
constexpr double anywhere = 35;
constexpr double alternativeShare = 0.8;

constexpr std::size_t mostTerms = 64;
/// Up to here a search may look at each place anew; beyond, that would take a product of two lengths.
constexpr std::size_t shortTerm = 32;

constexpr std::size_t nowhere = std::string::npos;

/// Where each beginning of the text has an end that is a beginning again: the table of Knuth, Morris and
/// Pratt.
std::vector<std::uint32_t> bordersOf(std::string_view text)
{
    std::vector<std::uint32_t> borders(text.size());
    std::uint32_t length = 0;
    for (std::size_t i = 1; i < text.size(); ++i) {
        while (length > 0 && text[i] != text[length])
            length = borders[length - 1];
        if (text[i] == text[length])
            ++length;
        borders[i] = length;
    }
    return borders;
}

/// All the places where a long term occurs, one after the other.
class Occurrences {
public:
    Occurrences(std::string_view text, const Term &term) : m_text(text), m_term(term) {}

    /// `nowhere` at the end.
    std::size_t next()
    {
        const std::string_view term = m_term.text;
        while (m_read < m_text.size()) {
            const char c = m_text[m_read++];
            while (m_matched > 0 && (m_matched == term.size() || c != term[m_matched]))
                m_matched = m_term.borders[m_matched - 1];
            if (c == term[m_matched])
                ++m_matched;
            if (m_matched == term.size())
                return m_read - term.size();
        }
        return nowhere;
    }

private:
    std::string_view m_text;
    const Term &m_term;
    std::size_t m_read = 0;
    std::size_t m_matched = 0;
};

/// Where the ranges of a match go; none are wanted when only the score is.
using Ranges = std::vector<TextRange> *;

void highlight(Ranges ranges, const FoldedText &name, std::size_t from, std::size_t to)
{
    if (ranges != nullptr && to > from)
        ranges->push_back(name.originalRange(from, to));
}

struct Place {
    std::size_t first = nowhere; ///< of all; where words begin, that place may stand for it
    std::size_t word = nowhere;  ///< the first at which a word begins
};

/// Most names are decided where their words begin, without a search.
Place placeOfShort(const FoldedText &name, const Term &term)
{
    const std::string_view text = name.text();
    for (const std::uint32_t start : name.wordStarts()) {
        if (text[start] == term.text.front() && text.substr(start).starts_with(term.text))
            return {start, start};
    }
    return {text.find(term.text), nowhere};
}

Place placeOfLong(const FoldedText &name, const Term &term)
{
    Place place;
    Occurrences occurrences(name.text(), term);
    auto start = name.wordStarts().begin();
    const auto end = name.wordStarts().end();
    for (std::size_t at = occurrences.next(); at != nowhere; at = occurrences.next()) {
        place.first = std::min(place.first, at);
        while (start != end && *start < at)
            ++start;
        if (start == end)
            break;
        if (*start == at) {
            place.word = at;
            break;
        }
    }
    return place;
}

/// Whether initials of the name spell the term.
bool isSpelledByInitials(const FoldedText &name, const Term &term, Ranges ranges)
{
    const auto &starts = name.wordStarts();
    if (term.characters < 2 || starts.size() < term.characters || (term.letters & ~name.initials()) != 0)
        return false;
    const std::size_t before = ranges == nullptr ? 0 : ranges->size();
    const std::string_view text = name.text();
    auto start = starts.begin();
    for (std::size_t i = 0; i < term.text.size();) {
        const std::size_t size = FoldedText::characterSize(term.text[i]);
        const std::string_view character = std::string_view(term.text).substr(i, size);
        start = std::find_if(start, starts.end(),
                             [&](std::uint32_t at) { return text.substr(at, size) == character; });
        if (start == starts.end()) {
            if (ranges != nullptr)
                ranges->resize(before);
            return false;
        }
        highlight(ranges, name, *start, *start + size);
        ++start;
        i += size;
    }
    return true;
}

std::optional<double> termScore(const FoldedText &name, const Term &term, Ranges ranges)
{
    if ((term.letters & ~name.letters()) != 0)
        return std::nullopt;
    const std::size_t size = term.text.size();
    const Place place = term.borders.empty() ? placeOfShort(name, term) : placeOfLong(name, term);
    if (place.first == 0 && size == name.text().size()) {
        highlight(ranges, name, 0, size);
        return whole;
    }
    if (place.word != nowhere) {
        highlight(ranges, name, place.word, place.word + size);
        return place.word == name.wordStarts().front() ? firstWord : laterWord;
    }
    if (isSpelledByInitials(name, term, ranges))
        return initials;
    if (place.first == nowhere)
        return std::nullopt;
    highlight(ranges, name, place.first, place.first + size);
    return anywhere;
}

void sortAndMerge(std::vector<TextRange> &ranges)
{
    std::ranges::sort(ranges, {}, &TextRange::start);
    std::vector<TextRange> merged;
    for (const TextRange &range : ranges) {
        if (!merged.empty() && range.start <= merged.back().end)
            merged.back().end = std::max(merged.back().end, range.end);
        else
            merged.push_back(range);
    }
    ranges = std::move(merged);
}

class Average {
public:
    void add(double score, std::size_t times)
    {
        m_sum += score * static_cast<double>(times);
        m_count += static_cast<double>(times);
    }
    double value() const { return m_sum / m_count; }

private:
    double m_sum = 0;
    double m_count = 0;
};

/// The score of a query against one text; the ranges are not sorted yet.
std::optional<double> textScore(const FoldedText &name, const PaletteQuery &query, Ranges ranges)
{
    if (query.isEmpty())
        return 0;
    if (query.isTooLong() || (query.letters() & ~name.letters()) != 0)
        return std::nullopt;
    if (query.joined()) {
        std::vector<TextRange> found;
        const auto score = termScore(name, *query.joined(), ranges == nullptr ? nullptr : &found);
        if (score && *score > initials) {
            if (ranges != nullptr)
                *ranges = std::move(found);
            return score;
        }
    }
    Average average;
    for (const Term &term : query.terms()) {
        const auto score = termScore(name, term, ranges);
        if (!score)
            return std::nullopt;
        average.add(*score, term.count);
    }
    return average.value();
}

/// Each word in whichever text has it best.
std::optional<double> scatteredScore(const FoldedText &name, std::span<const FoldedText> alternatives,
                                     const PaletteQuery &query, Ranges ranges)
{
    if (query.isTooLong())
        return std::nullopt;
    Average average;
    for (const Term &term : query.terms()) {
        auto best = termScore(name, term, ranges);
        for (const FoldedText &alternative : alternatives)
            best = std::max(best, termScore(alternative, term, nullptr));
        if (!best)
            return std::nullopt;
        average.add(*best, term.count);
    }
    return average.value() * alternativeShare;
}

/// The score against a name and its alternatives; the ranges are not sorted yet.
std::optional<double> bestScore(const FoldedText &name, std::span<const FoldedText> alternatives,
                                const PaletteQuery &query, Ranges ranges)
{
    auto best = textScore(name, query, ranges);
    // Of a name that does not match as a whole, some words may have left theirs.
    if (!best && ranges != nullptr)
        ranges->clear();
    for (const FoldedText &alternative : alternatives) {
        const auto score = textScore(alternative, query, nullptr);
        if (score && (!best || *score * alternativeShare > *best)) {
            best = *score * alternativeShare;
            if (ranges != nullptr)
                ranges->clear();
        }
    }
    return best || !query.joined() ? best : scatteredScore(name, alternatives, query, ranges);
}

} // namespace

PaletteQuery::Term::Term(std::string folded, std::uint64_t lettersOfIt)
    : text(std::move(folded)), letters(lettersOfIt)
{
    for (std::size_t i = 0; i < text.size(); i += FoldedText::characterSize(text[i]))
        ++characters;
    if (text.size() > shortTerm)
        borders = bordersOf(text);
}

PaletteQuery::PaletteQuery(std::string_view text)
{
    std::vector<FoldedText> words;
    for (const std::string_view word : wordsOf(text))
        words.push_back(FoldedText::of(word));
    take(words);
}

PaletteQuery::PaletteQuery(std::u16string_view text)
{
    std::vector<FoldedText> words;
    for (const std::u16string_view word : wordsOf(text))
        words.push_back(FoldedText::of(word));
    take(words);
}

void PaletteQuery::take(const std::vector<FoldedText> &words)
{
    static const FoldedText space = FoldedText::of(" ");
    std::unordered_map<std::string_view, std::size_t> known;
    std::string joined;
    std::size_t count = 0;
    for (const FoldedText &word : words) {
        if (word.text().empty())
            continue;
        if (count++ > 0)
            joined += space.text();
        joined += word.text();
        m_letters |= word.letters();
        const auto [term, isNew] = known.try_emplace(word.text(), m_terms.size());
        if (!isNew) {
            ++m_terms[term->second].count;
        } else if (m_terms.size() < mostTerms) {
            m_terms.emplace_back(word.text(), word.letters());
        } else {
            m_isTooLong = true;
            return;
        }
    }
    if (count > 1)
        m_joined.emplace(std::move(joined), m_letters | space.letters());
}

std::optional<Match> PaletteMatch::match(const FoldedText &name, const PaletteQuery &query)
{
    return match(name, {}, query);
}

std::optional<Match> PaletteMatch::match(std::string_view name, std::string_view query)
{
    return match(FoldedText::ofName(name), PaletteQuery(query));
}

std::optional<Match> PaletteMatch::match(const FoldedText &name, std::span<const FoldedText> alternatives,
                                         const PaletteQuery &query)
{
    Match match;
    const auto score = bestScore(name, alternatives, query, &match.ranges);
    if (!score)
        return std::nullopt;
    match.score = *score;
    sortAndMerge(match.ranges);
    return match;
}

std::optional<Match> PaletteMatch::match(std::string_view name, const std::vector<std::string> &alternatives,
                                         std::string_view query)
{
    std::vector<FoldedText> folded;
    folded.reserve(alternatives.size());
    for (const std::string &alternative : alternatives)
        folded.push_back(FoldedText::ofName(alternative));
    return match(FoldedText::ofName(name), folded, PaletteQuery(query));
}

std::optional<double> PaletteMatch::score(const FoldedText &name, const PaletteQuery &query)
{
    return textScore(name, query, nullptr);
}

std::optional<double> PaletteMatch::score(const FoldedText &name, std::span<const FoldedText> alternatives,
                                          const PaletteQuery &query)
{
    return bestScore(name, alternatives, query, nullptr);
}

std::vector<PaletteMatch::Ranked> PaletteMatch::rank(std::vector<std::optional<Match>> matches)
{
    std::vector<Ranked> ranked;
    for (std::size_t row = 0; row < matches.size(); ++row) {
        if (matches[row])
            ranked.push_back({row, *std::move(matches[row])});
    }
    std::ranges::sort(ranked, {}, [](const Ranked &row) { return std::pair(-row.score(), row.row); });
    return ranked;
}

} // namespace orvane
