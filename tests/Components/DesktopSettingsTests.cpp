// SPDX-License-Identifier: GPL-3.0-or-later
#include "DesktopSettings.h"

#include "support/Await.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QMap>

#include <gtest/gtest.h>

namespace orvane {
namespace {

using testing::eventually;

const QString settingsPath = QStringLiteral("/org/freedesktop/portal/desktop");
const QString settingsName = QStringLiteral("org.freedesktop.portal.Settings");

/// A Settings portal on the tests' own bus, which a test can make as slow, as old or as changeable as it
/// likes.
class FakePortal : public QObject {
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.freedesktop.portal.Settings")

public:
    FakePortal() : m_bus(QDBusConnection::connectToBus(QDBusConnection::SessionBus, QStringLiteral("portal")))
    {
    }
    ~FakePortal() override { QDBusConnection::disconnectFromBus(QStringLiteral("portal")); }

    bool appear()
    {
        return m_bus.registerObject(settingsPath, this, QDBusConnection::ExportAllSlots) &&
               m_bus.registerService(QStringLiteral("org.freedesktop.portal.Desktop"));
    }

    void change(const QString &area, const QString &key, const QVariant &value)
    {
        values[key] = value;
        QDBusMessage signal =
            QDBusMessage::createSignal(settingsPath, settingsName, QStringLiteral("SettingChanged"));
        signal << area << key << QVariant::fromValue(QDBusVariant(value));
        m_bus.send(signal);
    }

    QMap<QString, QVariant> values;
    int asked = 0;

public Q_SLOTS:
    QDBusVariant Read(const QString &, const QString &key)
    {
        ++asked;
        // Two variants, one in the other, as the first version of the interface answers.
        return QDBusVariant(QVariant::fromValue(QDBusVariant(values.value(key, 0U))));
    }

private:
    QDBusConnection m_bus;
};

const QString appearanceName = QStringLiteral("org.freedesktop.appearance");
const QString schemeName = QStringLiteral("color-scheme");
const QString interfaceName = QStringLiteral("org.gnome.desktop.interface");
const QString animationsName = QStringLiteral("enable-animations");

TEST(DesktopSettings, FollowsThePortal)
{
    FakePortal portal;
    portal.values = {{schemeName, 1U}, {animationsName, true}};
    ASSERT_TRUE(portal.appear());
    DesktopSettings settings;
    settings.start();
    EXPECT_EQ(settings.prefersDark(), std::nullopt) << "starting waits for nobody";

    ASSERT_TRUE(eventually([&] { return settings.prefersDark() == true; }));
    EXPECT_FALSE(settings.reducedMotion());
    portal.change(appearanceName, schemeName, 2U);
    EXPECT_TRUE(eventually([&] { return settings.prefersDark() == false; }));
    portal.change(interfaceName, animationsName, false);
    EXPECT_TRUE(eventually([&] { return settings.reducedMotion(); }));
    portal.change(appearanceName, schemeName, 0U);
    EXPECT_TRUE(eventually([&] { return !settings.prefersDark().has_value(); }));
}

TEST(DesktopSettings, TellsOfAChangeOnlyOnceAndOfOthersSettingsNever)
{
    FakePortal portal;
    portal.values = {{schemeName, 0U}, {animationsName, true}};
    ASSERT_TRUE(portal.appear());
    DesktopSettings settings;
    int changes = 0;
    QObject::connect(&settings, &DesktopSettings::changed, [&] { ++changes; });
    settings.start();
    ASSERT_TRUE(eventually([&] { return portal.asked == 2; }));
    portal.change(QStringLiteral("com.example.other"), schemeName, 1U);
    portal.change(appearanceName, QStringLiteral("accent-color"), 1U);
    portal.change(appearanceName, schemeName, 1U);
    portal.change(appearanceName, schemeName, 1U);
    portal.change(interfaceName, animationsName, false);
    ASSERT_TRUE(eventually([&] { return settings.reducedMotion(); }));
    EXPECT_EQ(settings.prefersDark(), true);
    EXPECT_EQ(changes, 2);
}

TEST(DesktopSettings, HasNoOpinionWithoutAPortalAndAsksOneThatComesLater)
{
    DesktopSettings settings;
    settings.start(QDBusConnection::sessionBus());
    EXPECT_EQ(settings.prefersDark(), std::nullopt);
    EXPECT_FALSE(settings.reducedMotion());

    FakePortal portal;
    portal.values = {{schemeName, 1U}, {animationsName, false}};
    ASSERT_TRUE(portal.appear());
    EXPECT_TRUE(eventually([&] { return settings.prefersDark() == true && settings.reducedMotion(); }));
}

} // namespace
} // namespace orvane

#include "DesktopSettingsTests.moc"
