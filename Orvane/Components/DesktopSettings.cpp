// SPDX-License-Identifier: GPL-3.0-or-later
#include "DesktopSettings.h"

#include <QCoreApplication>
#include <QDBusMessage>
#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>
#include <QDBusServiceWatcher>
#include <QFileInfo>
#include <QPointer>
#include <QThreadPool>

namespace orvane {

namespace {

const QString portal = QStringLiteral("org.freedesktop.portal.Desktop");
const QString portalPath = QStringLiteral("/org/freedesktop/portal/desktop");
const QString portalSettings = QStringLiteral("org.freedesktop.portal.Settings");
const QString appearanceArea = QStringLiteral("org.freedesktop.appearance");
const QString colorSchemeKey = QStringLiteral("color-scheme");
const QString interfaceArea = QStringLiteral("org.gnome.desktop.interface");
const QString animationsKey = QStringLiteral("enable-animations");
constexpr int patience = 500; // milliseconds

/// Without this look, connecting would start a bus of its own where there is none.
bool hasSessionBus()
{
    return qEnvironmentVariableIsSet("DBUS_SESSION_BUS_ADDRESS") ||
           QFileInfo::exists(qEnvironmentVariable("XDG_RUNTIME_DIR") + QStringLiteral("/bus"));
}

/// A read value stands in a variant of its own, in older portals in two.
QVariant unwrapped(QVariant value)
{
    while (value.canConvert<QDBusVariant>()) {
        value = value.value<QDBusVariant>().variant();
    }
    return value;
}

} // namespace

void DesktopSettings::start()
{
    if (!hasSessionBus()) {
        return;
    }
    // Connecting waits for the bus, so another thread does it: the first frame does not have to.
    QThreadPool::globalInstance()->start([owner = QPointer(this)] {
        const QDBusConnection bus = QDBusConnection::sessionBus();
        QMetaObject::invokeMethod(QCoreApplication::instance(), [owner, bus] {
            if (owner && bus.isConnected()) {
                owner->start(bus);
            }
        });
    });
}

void DesktopSettings::start(const QDBusConnection &bus)
{
    m_bus = bus;
    // Before that no slot with such a parameter is taken for one.
    qRegisterMetaType<QDBusVariant>();
    m_bus->connect(portal, portalPath, portalSettings, QStringLiteral("SettingChanged"), this,
                   SLOT(settingChanged(QString, QString, QDBusVariant)));
    // A portal that takes longer to start than we wait for its answer is asked again once it is there.
    auto *watcher = new QDBusServiceWatcher(portal, bus, QDBusServiceWatcher::WatchForRegistration, this);
    connect(watcher, &QDBusServiceWatcher::serviceRegistered, this, &DesktopSettings::readAll);
    readAll();
}

void DesktopSettings::readAll()
{
    read(appearanceArea, colorSchemeKey);
    read(interfaceArea, animationsKey);
}

void DesktopSettings::read(const QString &area, const QString &key)
{
    QDBusMessage call =
        QDBusMessage::createMethodCall(portal, portalPath, portalSettings, QStringLiteral("Read"));
    call << area << key;
    auto *watcher = new QDBusPendingCallWatcher(m_bus->asyncCall(call, patience), this);
    connect(watcher, &QDBusPendingCallWatcher::finished, this, [this, watcher, area, key] {
        watcher->deleteLater();
        const QDBusPendingReply<QDBusVariant> reply = *watcher;
        if (reply.isValid()) {
            take(area, key, reply.value().variant());
        }
    });
}

void DesktopSettings::settingChanged(const QString &area, const QString &key, const QDBusVariant &value)
{
    take(area, key, value.variant());
}

void DesktopSettings::take(const QString &area, const QString &key, const QVariant &value)
{
    const auto before = std::pair(m_prefersDark, m_reducedMotion);
    const QVariant plain = unwrapped(value);
    if (area == appearanceArea && key == colorSchemeKey) {
        // 1 is dark and 2 is light; everything else is no preference.
        const uint scheme = plain.toUInt();
        m_prefersDark = scheme == 1 || scheme == 2 ? std::optional(scheme == 1) : std::nullopt;
    } else if (area == interfaceArea && key == animationsKey) {
        m_reducedMotion = !plain.toBool();
    }
    if (before != std::pair(m_prefersDark, m_reducedMotion)) {
        Q_EMIT changed();
    }
}

} // namespace orvane
