// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QDBusConnection>
#include <QDBusVariant>
#include <QObject>

#include <optional>

namespace orvane {

/// What the desktop's settings say about looks, read from its Settings portal and kept up to date. Lives on
/// the main thread. Nothing here waits: until the portal answers, and where there is none, it has no opinion.
class DesktopSettings : public QObject {
    Q_OBJECT

public:
    explicit DesktopSettings(QObject *parent = nullptr) : QObject(parent) {}

    /// Asks on the session's bus, if there is one.
    void start();
    /// Asks on this one.
    void start(const QDBusConnection &bus);

    /// Nothing when the desktop leaves it to programs.
    std::optional<bool> prefersDark() const { return m_prefersDark; }
    bool reducedMotion() const { return m_reducedMotion; }

Q_SIGNALS:
    void changed();

private Q_SLOTS:
    void settingChanged(const QString &area, const QString &key, const QDBusVariant &value);

private:
    void readAll();
    void read(const QString &area, const QString &key);
    void take(const QString &area, const QString &key, const QVariant &value);

    std::optional<QDBusConnection> m_bus;
    std::optional<bool> m_prefersDark;
    bool m_reducedMotion = false;
};

} // namespace orvane
