// SPDX-License-Identifier: GPL-3.0-or-later
#include "Input/Candidates.h"

#include "Terminal/TextWidth.h"

#include <QString>
#include <algorithm>
#include <map>
#include <unicode/unistr.h>

namespace orvane {

namespace {

constexpr std::size_t leastIdPrefix = 4;
constexpr std::size_t leastShortId = 6;
constexpr std::size_t listedAtMost = 8;

/// Names compare without letter case, in full: "Straße" is "STRASSE" too.
icu::UnicodeString folded(std::string_view text)
{
    const QString composed = QString::fromUtf8(text.data(), static_cast<qsizetype>(text.size()))
                                 .normalized(QString::NormalizationForm_C)
                                 .trimmed();
    icu::UnicodeString folded(reinterpret_cast<const char16_t *>(composed.utf16()),
                              static_cast<std::int32_t>(composed.size()));
    return folded.foldCase();
}

/// Identifiers are UUIDs, which people copy in either case.
bool idBeginsWith(std::string_view id, std::string_view typed)
{
    return id.size() >= typed.size() &&
           std::ranges::equal(id.substr(0, typed.size()), typed, [](char a, char b) {
               return std::tolower(static_cast<unsigned char>(a)) ==
                      std::tolower(static_cast<unsigned char>(b));
           });
}

std::string listed(const std::vector<Candidate> &candidates, const std::vector<std::size_t> &indexes)
{
    std::string text;
    for (std::size_t i = 0; i < indexes.size() && i < listedAtMost; ++i) {
        const Candidate &candidate = candidates[indexes[i]];
        text += "\n  " + candidate.id.substr(0, 8) + "  " + printable(candidate.name);
        if (!candidate.context.empty())
            text += " " + printable(candidate.context);
    }
    if (indexes.size() > listedAtMost)
        text += "\n  and " + std::to_string(indexes.size() - listedAtMost) + " more";
    return text;
}

std::vector<std::size_t> all(const std::vector<Candidate> &candidates)
{
    std::vector<std::size_t> indexes(candidates.size());
    for (std::size_t i = 0; i < indexes.size(); ++i)
        indexes[i] = i;
    return indexes;
}

} // namespace

Result<std::size_t, std::string> choose(std::string_view kind, std::string_view typed,
                                        const std::vector<Candidate> &candidates)
{
    const icu::UnicodeString name = folded(typed);
    std::vector<std::size_t> exact;
    std::vector<std::size_t> beginning;
    for (std::size_t i = 0; i < candidates.size(); ++i) {
        if (candidates[i].id == typed)
            return i;
        const icu::UnicodeString candidate = folded(candidates[i].name);
        if (candidate == name)
            exact.push_back(i);
        else if ((!name.isEmpty() && candidate.startsWith(name)) ||
                 (typed.size() >= leastIdPrefix && idBeginsWith(candidates[i].id, typed)))
            beginning.push_back(i);
    }
    const auto &matches = exact.empty() ? beginning : exact;
    if (matches.size() == 1)
        return matches.front();
    const std::string what = "\"" + printable(typed) + "\"";
    const std::string sort(kind);
    if (!matches.empty())
        return failure(what + " can mean " + std::to_string(matches.size()) + " " + sort +
                       "s:" + listed(candidates, matches));
    if (candidates.empty())
        return failure("There is no " + sort + " " + what + ": there are no " + sort + "s yet.");
    return failure("There is no " + sort + " " + what + ". There are:" + listed(candidates, all(candidates)));
}

Result<std::string, NoSingleId> chooseById(std::string_view kind, std::string_view typed,
                                           const std::vector<std::string> &ids)
{
    std::vector<std::string> matches;
    for (const std::string &id : ids) {
        if (id == typed)
            return id;
        if (!typed.empty() && idBeginsWith(id, typed))
            matches.push_back(id);
    }
    const std::string what = "\"" + printable(typed) + "\"";
    if (matches.empty())
        return failure(NoSingleId{false, "There is no " + std::string(kind) + " " + what + "."});
    if (matches.size() > 1)
        return failure(NoSingleId{true, what + " is the beginning of " + std::to_string(matches.size()) +
                                            " identifiers; type more of it."});
    return matches.front();
}

std::vector<std::string> shortIds(const std::vector<std::string> &ids)
{
    std::size_t length = leastShortId;
    const auto longest = std::ranges::max_element(ids, {}, &std::string::size);
    for (const std::size_t limit = longest == ids.end() ? 0 : longest->size(); length < limit; ++length) {
        std::map<std::string, int> counts;
        for (const std::string &id : ids)
            ++counts[id.substr(0, length)];
        if (std::ranges::all_of(counts, [](const auto &item) { return item.second == 1; }))
            break;
    }
    std::vector<std::string> cut;
    for (const std::string &id : ids)
        cut.push_back(id.substr(0, length));
    return cut;
}

} // namespace orvane
