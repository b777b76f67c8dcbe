// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Terminal/TerminalStyle.h"

#include <QObject>
#include <QTimer>
#include <atomic>
#include <string>

namespace orvane {

/// One line on standard error about work that takes a while: a text, with a bar once its extent is known.
/// Appears only on a terminal and only when the work lasts longer than half a second; goes away with
/// `finish`. Thread: the main thread, with an event loop.
class ProgressLine final : public QObject {
    Q_OBJECT

public:
    explicit ProgressLine(QObject *parent = nullptr);
    ~ProgressLine() override;

    void begin(std::string text);
    /// From any thread: shown when the line is drawn next.
    void setProgress(std::int64_t done, std::int64_t all);
    void finish();

private:
    void draw();

    TerminalStyle m_style;
    std::string m_text;
    std::atomic<std::int64_t> m_done = 0;
    std::atomic<std::int64_t> m_all = 0;
    int m_step = 0;
    QTimer m_timer;
};

/// The line's text: "Sending 12 of 40 changes [######            ]" without a bar when nothing is known of
/// the extent.
std::string progressText(const std::string &text, std::int64_t done, std::int64_t all, int step, int width);

} // namespace orvane
