// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QObject>
#include <QString>
#include <QTimer>

namespace orvane {

/// The one line that tells what was just done, or why it could not be. What was done goes by itself; why
/// something failed stays until it is sent away or something else is told.
///
/// Owner: the AppModel. Thread: the main thread.
class Notices final : public QObject {
    Q_OBJECT
    Q_PROPERTY(bool isShown READ isShown NOTIFY changed)
    Q_PROPERTY(bool isFailure READ isFailure NOTIFY changed)
    Q_PROPERTY(QString text READ text NOTIFY changed)
    Q_PROPERTY(Action action READ action NOTIFY changed)

public:
    enum class Action { None, Undo };
    Q_ENUM(Action)

    static constexpr std::chrono::seconds shownFor{6};

    explicit Notices(QObject *parent);

    bool isShown() const { return !m_text.isEmpty(); }
    bool isFailure() const { return m_isFailure; }
    QString text() const { return m_text; }
    Action action() const { return m_action; }

    void tell(const QString &text, Action action = Action::None);
    void tellFailure(const QString &text);
    Q_INVOKABLE void dismiss();

Q_SIGNALS:
    void changed();

private:
    void show(const QString &text, bool isFailure, Action action);

    QTimer m_timer;
    QString m_text;
    bool m_isFailure = false;
    Action m_action = Action::None;
};

} // namespace orvane
