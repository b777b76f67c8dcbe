// SPDX-License-Identifier: GPL-3.0-or-later
#include "Terminal/ProgressLine.h"

#include "Terminal/StandardStreams.h"
#include "Terminal/TextWidth.h"

#include <algorithm>
#include <array>
#include <unistd.h>

namespace orvane {

namespace {

constexpr std::chrono::milliseconds patience{500};
constexpr std::chrono::milliseconds beat{100};

} // namespace

std::string progressText(const std::string &text, std::int64_t done, std::int64_t all, int step, int width)
{
    if (all <= 0) {
        static constexpr std::array<std::string_view, 4> signs{"|", "/", "-", "\\"};
        return truncatedToWidth(
            std::string(signs[static_cast<std::size_t>(step) % signs.size()]) + " " + text, width);
    }
    const std::string label = text + " " + std::to_string(done) + "/" + std::to_string(all) + " ";
    const int room = std::min(30, width - displayWidth(label) - 2);
    if (room < 5)
        return truncatedToWidth(label, width);
    const auto filled = static_cast<std::size_t>(std::clamp<std::int64_t>(done * room / all, 0, room));
    return label + "[" + std::string(filled, '#') +
           std::string(static_cast<std::size_t>(room) - filled, ' ') + "]";
}

ProgressLine::ProgressLine(QObject *parent) : QObject(parent), m_style(TerminalStyle::of(STDERR_FILENO))
{
    connect(&m_timer, &QTimer::timeout, this, &ProgressLine::draw);
}

ProgressLine::~ProgressLine()
{
    finish();
}

void ProgressLine::begin(std::string text)
{
    m_text = std::move(text);
    m_done = 0;
    m_all = 0;
    if (m_style.isTerminal && !areMessagesMuted() && !m_timer.isActive())
        m_timer.start(patience);
}

void ProgressLine::setProgress(std::int64_t done, std::int64_t all)
{
    m_done = done;
    m_all = all;
}

void ProgressLine::finish()
{
    if (!m_timer.isActive())
        return;
    m_timer.stop();
    if (m_step > 0)
        writeErrors("\r\x1b[K");
    m_step = 0;
    setProgressIsShown(false);
}

void ProgressLine::draw()
{
    m_timer.setInterval(beat);
    setProgressIsShown(true);
    ++m_step;
    // One column stays free: many terminals break the line when the last one is filled.
    writeErrors("\r\x1b[K" + progressText(m_text, m_done, m_all, m_step, m_style.width - 1));
}

} // namespace orvane
