// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Tracker/Tracker.h"

#include <QObject>
#include <QPointer>
#include <QVariantList>

namespace orvane {

/// Today along a ruler, and what it comes to by project. Minutes count from the beginning of the day by the
/// user's clock.
///
/// Owner: the TimerModel. Thread: the main thread.
class DayRuler final : public QObject {
    Q_OBJECT
    /// { from, to, title, places, parts: { color, share }, isRunning }; minutes, in order of start.
    Q_PROPERTY(QVariantList blocks READ blocks NOTIFY changed)
    /// { name, color, length }, the longest first.
    Q_PROPERTY(QVariantList projects READ projects NOTIFY changed)
    Q_PROPERTY(int firstHour READ firstHour NOTIFY changed)
    Q_PROPERTY(int lastHour READ lastHour NOTIFY changed)
    Q_PROPERTY(double nowMinute READ nowMinute NOTIFY changed)
    Q_PROPERTY(QString now READ now NOTIFY changed)

public:
    explicit DayRuler(QObject *parent);

    /// Whose today; null: nobody's.
    void setTracker(Tracker *tracker);
    /// What is shown may be otherwise.
    void update();
    /// Looks whether another minute has begun.
    void tick();

    QVariantList blocks() const { return m_blocks; }
    QVariantList projects() const { return m_projects; }
    int firstHour() const { return m_firstHour; }
    int lastHour() const { return m_lastHour; }
    double nowMinute() const { return m_nowMinute; }
    QString now() const;
    /// Of an hour, as the user's clock shows it on the ruler.
    Q_INVOKABLE QString hourLabel(int hour) const;

Q_SIGNALS:
    void changed();

private:
    QVariantMap block(const TimeEntryResponse &entry, Instant now) const;
    QVariantList sums(const std::vector<TimeEntryResponse> &entries, Instant now) const;
    const ProjectResponse *project(const std::optional<std::string> &id) const;

    QPointer<Tracker> m_tracker;
    QVariantList m_blocks;
    QVariantList m_projects;
    int m_firstHour = 7;
    int m_lastHour = 18;
    double m_nowMinute = 0;
};

} // namespace orvane
