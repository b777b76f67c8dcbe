// SPDX-License-Identifier: GPL-3.0-or-later
#include "QuickEntry/PaletteUsage.h"

#include "Support/JsonImpl.h"

#include <QSettings>
#include <algorithm>
#include <cmath>
#include <limits>

ORVANE_JSON(orvane::PaletteUsage)

namespace orvane {

namespace {

constexpr double halfLifeDays = 14;
constexpr double frequentWeight = 0.15;

/// Leaves the keys that were picked last.
void bound(std::map<std::string, PaletteUsage::Use> &uses)
{
    if (uses.size() <= PaletteUsage::mostKeys)
        return;
    std::vector<std::pair<Instant, std::string>> oldest;
    oldest.reserve(uses.size());
    for (const auto &[key, use] : uses)
        oldest.emplace_back(use.last, key);
    const auto kept = oldest.end() - static_cast<std::ptrdiff_t>(PaletteUsage::mostKeys);
    std::ranges::nth_element(oldest, kept);
    for (auto dropped = oldest.begin(); dropped != kept; ++dropped)
        uses.erase(dropped->second);
}

QString settingsKey(const std::string &scope)
{
    return QString::fromStdString("paletteUsage." + scope);
}

} // namespace

double PaletteUsage::Use::weight(Instant now) const
{
    const double days = std::max(0.0, secondsBetween(last, now) / 86'400);
    const double picks = static_cast<double>(count) * std::exp2(-days / halfLifeDays);
    return picks / (picks + 2);
}

double PaletteUsage::weight(const std::string &key, Instant now) const
{
    const auto found = uses.find(key);
    return found == uses.end() ? 0 : found->second.weight(now);
}

void PaletteUsage::record(const std::string &key, Instant now)
{
    Use &use = uses[key];
    if (use.count < std::numeric_limits<std::int64_t>::max())
        ++use.count;
    use.last = millisecondsFloor(now);
    bound(uses);
}

std::vector<std::string> PaletteUsage::frequent(Instant now) const
{
    std::vector<std::pair<double, std::string>> found;
    for (const auto &[key, use] : uses) {
        const double weight = use.weight(now);
        if (weight > frequentWeight)
            found.emplace_back(-weight, key);
    }
    std::ranges::sort(found);
    std::vector<std::string> keys;
    keys.reserve(found.size());
    for (auto &[weight, key] : found)
        keys.push_back(std::move(key));
    return keys;
}

std::string PaletteUsage::json() const
{
    return encodeJson(*this);
}

PaletteUsage PaletteUsage::fromJson(std::string_view text)
{
    auto read = decodeJson<PaletteUsage>(text);
    if (!read)
        return {};
    std::erase_if(read->uses, [](const auto &item) { return item.second.count < 1; });
    bound(read->uses);
    return *std::move(read);
}

PaletteUsage PaletteUsage::load(const QSettings &settings, const std::string &scope)
{
    return fromJson(settings.value(settingsKey(scope)).toString().toStdString());
}

void PaletteUsage::save(QSettings &settings, const std::string &scope) const
{
    settings.setValue(settingsKey(scope), QString::fromStdString(json()));
}

} // namespace orvane
