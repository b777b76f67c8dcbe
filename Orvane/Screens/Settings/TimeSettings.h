// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Time/Durations.h"
#include "Time/UserTime.h"

#include <QObject>
#include <QString>
#include <QStringList>
#include <QVariantList>

namespace orvane {

class AppModel;
class SettingsWriter;

/// How time is cut and written, with an example of each choice as of now.
///
/// Owner: the SettingsModel. Thread: the main thread; the writer outlives it.
class TimeSettings final : public QObject {
    Q_OBJECT
    Q_PROPERTY(QString zone READ zone NOTIFY changed)
    Q_PROPERTY(QString zoneOffset READ zoneOffset NOTIFY changed)
    Q_PROPERTY(QString zoneSays READ zoneSays NOTIFY changed)
    Q_PROPERTY(int weekStart READ weekStart NOTIFY changed)
    Q_PROPERTY(QString weekSays READ weekSays NOTIFY changed)
    Q_PROPERTY(QVariantList clocks READ clocks NOTIFY changed)
    Q_PROPERTY(QVariantList durations READ durations NOTIFY changed)
    Q_PROPERTY(QVariantList dates READ dates NOTIFY changed)
    Q_PROPERTY(QString since READ since NOTIFY changed)
    Q_PROPERTY(QString elapsed READ elapsed NOTIFY changed)
    Q_PROPERTY(QString times READ times NOTIFY changed)
    Q_PROPERTY(QVariantList typed READ typed NOTIFY changed)

public:
    TimeSettings(AppModel &app, SettingsWriter &writer);

    QString zone() const;
    /// "UTC+01:00", as of now.
    QString zoneOffset() const;
    /// "15:47 on Friday. This computer's zone is the same."
    QString zoneSays() const;
    /// 0 for Monday to 6 for Sunday.
    int weekStart() const;
    /// "This week is 16 – 22 November 2026, 35h 57m so far."
    QString weekSays() const;
    /// Each choice as {value, text, example, isChosen}.
    QVariantList clocks() const;
    QVariantList durations() const;
    QVariantList dates() const;
    // An example of the whole
    QString since() const;
    QString elapsed() const;
    QString times() const;
    /// What can be typed and what is understood, as {typed, read}.
    QVariantList typed() const;

    /// The zones that hold the text, at most so many as a list shows.
    Q_INVOKABLE QStringList zonesCalled(const QString &text) const;
    Q_INVOKABLE void setZone(const QString &zone);
    Q_INVOKABLE void setWeekStart(int day);
    Q_INVOKABLE void setClock(const QString &format);
    Q_INVOKABLE void setDuration(const QString &format);
    Q_INVOKABLE void setDate(const QString &format);

Q_SIGNALS:
    void changed();

private:
    UserTime time() const;
    Durations::Format durationFormat() const;

    AppModel *m_app;
    SettingsWriter *m_writer;
};

} // namespace orvane
