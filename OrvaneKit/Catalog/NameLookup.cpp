// SPDX-License-Identifier: GPL-3.0-or-later
#include "Catalog/NameLookup.h"

#include <QString>
#include <algorithm>
#include <map>
#include <unicode/unistr.h>

namespace orvane {

namespace {

constexpr std::size_t leastIdPrefix = 4;
constexpr std::size_t leastShortId = 6;

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

NoSingleItem ambiguous(const std::vector<NamedItem> &items, const std::vector<std::size_t> &matches)
{
    NoSingleItem error{NoSingleItem::Why::ambiguous, {}};
    for (const std::size_t match : matches)
        error.items.push_back(items[match]);
    return error;
}

} // namespace

Result<std::size_t, NoSingleItem> lookUp(std::string_view typed, const std::vector<NamedItem> &items)
{
    const icu::UnicodeString name = folded(typed);
    std::vector<std::size_t> exact;
    std::vector<std::size_t> beginning;
    for (std::size_t i = 0; i < items.size(); ++i) {
        if (items[i].id == typed)
            return i;
        const icu::UnicodeString other = folded(items[i].name);
        if (other == name)
            exact.push_back(i);
        else if ((!name.isEmpty() && other.startsWith(name)) ||
                 (typed.size() >= leastIdPrefix && idBeginsWith(items[i].id, typed)))
            beginning.push_back(i);
    }
    const auto &matches = exact.empty() ? beginning : exact;
    if (matches.size() == 1)
        return matches.front();
    if (matches.empty())
        return failure(NoSingleItem{NoSingleItem::Why::unknown, items});
    return failure(ambiguous(items, matches));
}

Result<std::size_t, NoSingleItem> lookUpActive(std::string_view typed, const std::vector<NamedItem> &items)
{
    std::vector<NamedItem> active;
    std::vector<std::size_t> places;
    std::vector<NamedItem> archived;
    for (std::size_t i = 0; i < items.size(); ++i) {
        if (items[i].isArchived) {
            archived.push_back(items[i]);
        } else {
            active.push_back(items[i]);
            places.push_back(i);
        }
    }
    const auto found = lookUp(typed, active);
    if (found)
        return places[*found];
    if (const auto old = lookUp(typed, archived))
        return failure(NoSingleItem{NoSingleItem::Why::archived, {archived[*old]}});
    return found;
}

Result<std::string, NoSingleId> lookUpId(std::string_view typed, const std::vector<std::string> &ids)
{
    std::vector<std::string> matches;
    for (const std::string &id : ids) {
        if (id == typed)
            return id;
        if (!typed.empty() && idBeginsWith(id, typed))
            matches.push_back(id);
    }
    if (matches.size() != 1)
        return failure(NoSingleId{matches.size()});
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
