// SPDX-License-Identifier: GPL-3.0-or-later
#include "QuickEntry/UnreadTime.h"

#include "QuickEntry/FoldedText.h"
#include "QuickEntry/TimePhrase.h"
#include "QuickEntry/UnreadWords.h"

#include <algorithm>

namespace orvane {

namespace {

constexpr std::string_view sentenceMarks = ".,;:!?)";

std::string_view withoutEnd(std::string_view text)
{
    return text.substr(0, text.find_last_not_of(sentenceMarks) + 1);
}

std::string joinedText(std::span<const std::string_view> words)
{
    std::string text;
    for (const std::string_view word : words)
        text.append(text.empty() ? "" : " ").append(word);
    return text;
}

/// What is left of a line that ends in one of the mentions; the mention is the one nearest to the time then.
std::string_view withoutLastMentions(std::string_view line, const std::vector<UnreadMention> &mentions,
                                     std::string &mark)
{
    for (auto mention = mentions.rbegin(); mention != mentions.rend(); ++mention) {
        const std::string_view rest = withoutEnd(line);
        if (!rest.ends_with(mention->text))
            break;
        mark = mention->text;
        line = rest.substr(0, rest.size() - mention->text.size());
        line = line.substr(0, line.find_last_not_of(' ') + 1);
    }
    return line;
}

} // namespace

std::optional<UnreadTime> UnreadTime::of(const EntrySentence::Reading &reading,
                                         const EntrySentence::Options &options, Instant now,
                                         const UserTime &calendar)
{
    if (reading.time)
        return std::nullopt;
    std::string mark;
    const std::string_view line = withoutLastMentions(reading.description, reading.unreadMentions, mark);
    const std::vector<std::string_view> words = wordsOf(line);
    const auto lastWords = [&](std::size_t count) { return joinedText(std::span(words).last(count)); };
    if (const auto phrase = TimePhrase::atEndOf(words, options, now, calendar); phrase && !mark.empty())
        return UnreadTime{Why::behindIt, lastWords(phrase->words), mark};
    if (const std::size_t refused = TimePhrase::refusedRangeAtEndOf(words, options, now, calendar))
        return UnreadTime{Why::noRange, lastWords(refused), {}};
    return std::nullopt;
}

bool saysNothing(const EntrySentence::Reading &reading)
{
    std::vector<std::string_view> unread;
    for (const UnreadMention &mention : reading.unreadMentions)
        std::ranges::copy(wordsOf(mention.text), std::back_inserter(unread));
    const std::vector<UnreadWords> times = UnreadWords::of(reading);
    for (const UnreadWords &words : times)
        std::ranges::copy(wordsOf(words.text), std::back_inserter(unread));
    const std::vector<std::string_view> words = wordsOf(reading.description);
    return !words.empty() && std::ranges::all_of(words, [&](std::string_view word) {
        return std::ranges::find(unread, word) != unread.end() ||
               std::ranges::find(unread, withoutEnd(word)) != unread.end();
    });
}

} // namespace orvane
