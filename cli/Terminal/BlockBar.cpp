// SPDX-License-Identifier: GPL-3.0-or-later
#include "Terminal/BlockBar.h"

#include <algorithm>
#include <array>
#include <cmath>

namespace orvane {

namespace {

using std::chrono::microseconds;

constexpr std::array<const char *, 9> fromLeft{" ", "▏", "▎", "▍", "▌", "▋", "▊", "▉", "█"};
constexpr const char *full = "█";
constexpr const char *rightHalf = "▐";
constexpr const char *rightEighth = "▕";
constexpr const char *shade = "░";

/// What lies in one column's time.
struct Slot {
    microseconds solid{0};
    microseconds leftHalf{0}; ///< of the solid, how much lies in the first half
    bool atStart = false;     ///< whether the column's first moment is solid
    bool atEnd = false;
    bool isLight = false;
};

/// Adds characters one by one; those of one kind share a run.
class StripWriter {
public:
    explicit StripWriter(const BarStyle &style) : m_style(style) {}

    void solid(const char *text) { add(text, m_style.solid); }
    void light() { add(shade, m_style.light); }
    void gap() { add(" ", {}); }
    TextCell take() { return std::move(m_cell); }

private:
    void add(const char *text, const TextStyle &style)
    {
        if (m_cell.runs.empty() || m_cell.runs.back().style != style)
            m_cell.runs.push_back({{}, style});
        m_cell.runs.back().text += text;
    }

    const BarStyle &m_style;
    TextCell m_cell;
};

/// Columns of time.
class Slots {
public:
    Slots(InstantInterval axis, int cells) : m_axis(axis), m_slots(static_cast<std::size_t>(cells)) {}

    std::span<const Slot> all() const { return m_slots; }
    microseconds width() const { return (m_axis.to - m_axis.from) / static_cast<int>(m_slots.size()); }

    void addSolid(InstantInterval range)
    {
        if (range.from >= range.to)
            return;
        const std::size_t last = at(range.to - microseconds{1});
        for (std::size_t i = at(range.from); i <= last; ++i) {
            const InstantInterval own{edge(i), edge(i + 1)};
            const Instant middle = own.from + (own.to - own.from) / 2;
            const Instant from = std::max(range.from, own.from);
            const Instant to = std::min(range.to, own.to);
            Slot &slot = m_slots[i];
            slot.solid += std::max(to - from, microseconds{0});
            slot.leftHalf += std::max(std::min(to, middle) - from, microseconds{0});
            slot.atStart = slot.atStart || range.from <= own.from;
            slot.atEnd = slot.atEnd || range.to >= own.to;
        }
    }

    void addLight(InstantInterval range)
    {
        const std::size_t last = at(std::max(range.from, range.to - microseconds{1}));
        for (std::size_t i = at(range.from); i <= last; ++i)
            m_slots[i].isLight = true;
    }

private:
    Instant edge(std::size_t i) const
    {
        return m_axis.from + (m_axis.to - m_axis.from) * static_cast<std::int64_t>(i) /
                                 static_cast<std::int64_t>(m_slots.size());
    }

    std::size_t at(Instant instant) const
    {
        const auto cells = static_cast<std::int64_t>(m_slots.size());
        const std::int64_t i = (instant - m_axis.from) * cells / (m_axis.to - m_axis.from);
        return static_cast<std::size_t>(std::clamp<std::int64_t>(i, 0, cells - 1));
    }

    InstantInterval m_axis;
    std::vector<Slot> m_slots;
};

/// Blocks grow from the left in eighths; towards the right edge there are only the half and one eighth.
const char *block(const Slot &slot, microseconds width)
{
    const auto eighths = (slot.solid * 16 / width + 1) / 2;
    if (eighths >= 8 || (slot.atStart && slot.atEnd))
        return full;
    if (slot.atStart || (!slot.atEnd && slot.leftHalf * 2 >= slot.solid))
        return fromLeft[static_cast<std::size_t>(std::max<std::int64_t>(eighths, 1))];
    if (eighths >= 7)
        return full;
    return eighths >= 3 ? rightHalf : rightEighth;
}

} // namespace

TextCell timeStrip(InstantInterval axis, int cells, std::span<const InstantInterval> solid,
                   std::span<const InstantInterval> light, const BarStyle &style)
{
    Slots slots(axis, cells);
    for (const InstantInterval range : solid)
        slots.addSolid(range);
    for (const InstantInterval range : light)
        slots.addLight(range);
    StripWriter strip(style);
    for (const Slot &slot : slots.all()) {
        if (slot.solid > microseconds{0})
            strip.solid(block(slot, slots.width()));
        else if (slot.isLight)
            strip.light();
        else
            strip.gap();
    }
    return strip.take();
}

TextCell lengthBar(double solid, double light, int cells, const BarStyle &style)
{
    const auto steps = [cells](double part) {
        const auto all = static_cast<int>(std::lround(std::clamp(part, 0.0, 1.0) * cells * 8));
        return part > 0 ? std::max(all, 1) : 0;
    };
    const int solidSteps = steps(solid);
    const int lightSteps = steps(light);
    StripWriter bar(style);
    for (int i = 0; i < cells; ++i) {
        if (const int left = solidSteps - 8 * i; left > 0)
            bar.solid(fromLeft[static_cast<std::size_t>(std::min(left, 8))]);
        else if (lightSteps > 8 * i)
            bar.light();
        else
            bar.gap();
    }
    return bar.take();
}

} // namespace orvane
