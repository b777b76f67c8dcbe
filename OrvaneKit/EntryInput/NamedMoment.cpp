// SPDX-License-Identifier: GPL-3.0-or-later
#include "EntryInput/NamedMoment.h"

#include "QuickEntry/DayReference.h"
#include "QuickEntry/FoldedText.h"
#include "Time/TextScanner.h"

namespace orvane {

namespace {

/// The words with one space between.
std::string joinedWords(std::span<const std::string_view> words)
{
    std::string text;
    for (const std::string_view word : words)
        text.append(text.empty() ? "" : " ").append(word);
    return text;
}

} // namespace

std::optional<TypedMoment> readNamedMoment(std::string_view text, const EntrySentence::Options &options,
                                           const UserTime &time, Instant now)
{
    if (const auto moment = TypedMoment::parse(text, time))
        return moment;
    const std::vector<std::string_view> typed = wordsOf(text);
    std::span<const std::string_view> words(typed);
    if (words.size() > 2 && asciiLowered(words.front()) == "on")
        words = words.subspan(1);
    if (words.size() < 2)
        return std::nullopt;
    const DayKey today = time.dayKey(now);
    const auto at = [&](std::string_view day,
                        std::span<const std::string_view> rest) -> std::optional<TypedMoment> {
        const auto reference = dayReference(asciiLowered(day), options.dateFormat, today);
        const auto clock = reference ? ClockTime::parse(joinedWords(rest)) : std::nullopt;
        if (!clock)
            return std::nullopt;
        return TypedMoment{.instant = time.date(referencedDay(*reference, today), *clock)};
    };
    if (const auto moment = at(words.front(), words.subspan(1)))
        return moment;
    return at(words.back(), words.first(words.size() - 1));
}

} // namespace orvane
