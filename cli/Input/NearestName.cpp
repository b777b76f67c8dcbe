// SPDX-License-Identifier: GPL-3.0-or-later
#include "Input/NearestName.h"

#include "QuickEntry/FoldedText.h"
#include "Terminal/TextWidth.h"

#include <QString>
#include <algorithm>
#include <array>
#include <vector>

namespace orvane {

namespace {

constexpr std::size_t mostSlips = 3;
constexpr std::size_t lettersForEachSlip = 3;
constexpr std::size_t lettersOfBeginning = 3;

std::u32string lettersOf(std::string_view name)
{
    return QString::fromStdString(FoldedText::of(name).text()).toStdU32String();
}

/// The optimal string alignment distance: as many slips make one text of the other, none touched twice.
std::size_t slipsBetween(const std::u32string &a, const std::u32string &b)
{
    std::array<std::vector<std::size_t>, 3> rows;
    rows.fill(std::vector<std::size_t>(b.size() + 1));
    auto &[beforeLast, last, row] = rows;
    for (std::size_t j = 0; j <= b.size(); ++j)
        row[j] = j;
    for (std::size_t i = 1; i <= a.size(); ++i) {
        std::swap(beforeLast, last);
        std::swap(last, row);
        row[0] = i;
        for (std::size_t j = 1; j <= b.size(); ++j) {
            const std::size_t mistaken = last[j - 1] + (a[i - 1] == b[j - 1] ? 0 : 1);
            row[j] = std::min({last[j] + 1, row[j - 1] + 1, mistaken});
            if (i > 1 && j > 1 && a[i - 1] == b[j - 2] && a[i - 2] == b[j - 1])
                row[j] = std::min(row[j], beforeLast[j - 2] + 1);
        }
    }
    return row[b.size()];
}

std::size_t mostSlipsIn(const std::u32string &a, const std::u32string &b)
{
    return std::min(std::max(a.size(), b.size()) / lettersForEachSlip, mostSlips);
}

} // namespace

std::optional<std::string> nearestName(std::string_view typed, std::span<const std::string> names)
{
    const std::u32string letters = lettersOf(typed);
    std::optional<std::string> nearest;
    std::size_t fewest = mostSlips + 1;
    for (const std::string &name : names) {
        const std::u32string other = lettersOf(name);
        if (fewest > 0 && letters.size() >= lettersOfBeginning && other.starts_with(letters)) {
            fewest = 0;
            nearest = name;
        }
        const std::size_t limit = mostSlipsIn(letters, other);
        if (std::max(letters.size(), other.size()) - std::min(letters.size(), other.size()) > limit)
            continue;
        const std::size_t slips = slipsBetween(letters, other);
        if (slips <= limit && slips < fewest) {
            fewest = slips;
            nearest = name;
        }
    }
    return nearest;
}

std::string didYouMean(std::string_view typed, std::span<const std::string> names)
{
    const auto nearest = nearestName(typed, names);
    return nearest ? " Did you mean \"" + printable(*nearest) + "\"?" : std::string();
}

} // namespace orvane
