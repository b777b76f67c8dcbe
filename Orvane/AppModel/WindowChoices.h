// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Tracker/UndoableChange.h"

#include <QObject>
#include <QString>
#include <map>
#include <memory>
#include <string>

namespace orvane {

/// What is chosen for the windows of this installation, whoever is signed in: how they look, and keys that
/// are not those a command comes with. Kept in a small file for its owner alone, written with each change; a
/// torn or foreign one counts as no choice.
///
/// Owner: the AppModel. Thread: the main thread.
class WindowChoices final : public QObject {
    Q_OBJECT
    Q_PROPERTY(Scheme scheme READ scheme NOTIFY changed)
    Q_PROPERTY(bool keepsStill READ keepsStill NOTIFY changed)
    Q_PROPERTY(QString problem READ problem NOTIFY changed)

public:
    enum class Scheme { System, Light, Dark };
    Q_ENUM(Scheme)

    struct Values {
        Scheme scheme = Scheme::System;
        /// Nothing shall move, whatever the desktop says.
        bool keepsStill = false;
        /// By the command's name; an empty text: none.
        std::map<std::string, std::string> keys;

        bool operator==(const Values &) const = default;
    };

    explicit WindowChoices(std::string path);

    static std::string pathIn(const std::string &dataFolder) { return dataFolder + "/window.json"; }

    Scheme scheme() const { return m_values.scheme; }
    bool keepsStill() const { return m_values.keepsStill; }
    /// Why the last change may be forgotten, for people; empty while all is well.
    QString problem() const { return m_problem; }

    Q_INVOKABLE void setScheme(Scheme scheme);
    Q_INVOKABLE void setKeepsStill(bool keepsStill);

    const Values &values() const { return m_values; }
    /// Holds at once. `sentence` tells people of the step: "Changed the keys of “Undo”".
    void set(Values values, std::string sentence);

Q_SIGNALS:
    void changed();
    /// The user changed something, which this step takes back. Steps outlive the choices without harm.
    void stepMade(const std::shared_ptr<orvane::UndoableChange> &step);

private:
    friend class ChoicesStep;
    void take(Values values);

    std::string m_path;
    Values m_values;
    QString m_problem;
};

} // namespace orvane
