// SPDX-License-Identifier: GPL-3.0-or-later
#include "Activity/TimedPhase.h"

#include <QLoggingCategory>

namespace orvane {

namespace {

Q_LOGGING_CATEGORY(performanceLog, "orvane.performance", QtWarningMsg)

} // namespace

TimedPhase::~TimedPhase()
{
    const std::chrono::duration<double, std::milli> took = std::chrono::steady_clock::now() - m_began;
    qCInfo(performanceLog, "%.*s: %.2f ms", static_cast<int>(m_name.size()), m_name.data(), took.count());
}

} // namespace orvane
