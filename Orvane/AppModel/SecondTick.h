// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QObject>
#include <QSet>
#include <QTimer>

namespace orvane {

/// The one timer that feeds every clock of the windows, at the beginning of each second. It runs while
/// somebody needs it and a window is seen, and costs nothing otherwise.
///
/// Owner: the AppModel. Thread: the main thread.
class SecondTick final : public QObject {
    Q_OBJECT

public:
    explicit SecondTick(QObject *parent = nullptr);

    /// Whether `who` shows something that changes by the second. Who goes needs it no more.
    void setNeeded(const QObject *who, bool isNeeded);
    /// Whether any window can be seen. On coming back one tick is made at once.
    void setVisible(bool isVisible);
    bool isRunning() const { return m_timer.isActive(); }

Q_SIGNALS:
    void ticked();

private:
    void update();
    void schedule();

    QTimer m_timer;
    QSet<const QObject *> m_needing;
    bool m_isVisible = true;
};

} // namespace orvane
