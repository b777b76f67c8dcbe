// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QObject>
#include <QString>
#include <QtQml/qqmlregistration.h>

namespace orvane {

/// How keys are called. Pure functions; any thread.
class KeyNames : public QObject {
    Q_OBJECT
    QML_ELEMENT
    QML_SINGLETON

public:
    /// What stands on the keys: on a Mac its signs without anything between, elsewhere names and pluses.
    enum class Keyboard { mac, other };

    /// The caps of keys pressed together, which are named as QKeySequence does ("Ctrl+Shift+T", "Return");
    /// Ctrl is the Mac's Command. What is no such name stays as it is.
    static QString text(const QString &keys, Keyboard keyboard);
    /// Of this computer's keyboard.
    Q_INVOKABLE static QString text(const QString &keys);
    /// The name of a key that was pressed with modifiers, as a KeyEvent has them: "Ctrl+Shift+T". Empty while
    /// only modifiers are held. The keypad's keys are called as the others.
    Q_INVOKABLE static QString chord(int key, int held);
    /// The modifiers alone, as they are held: "Ctrl+Shift".
    Q_INVOKABLE static QString held(int key, int held);
};

} // namespace orvane
