// SPDX-License-Identifier: GPL-3.0-or-later
#include "ThemeColors.h"

#include <gtest/gtest.h>

#include <cmath>

namespace orvane {
namespace {

const QColor lightContent(0xff, 0xff, 0xff);
const QColor darkContent(0x1b, 0x1f, 0x20);

QString project(const char *color, bool dark)
{
    return ThemeColors::project(QString::fromLatin1(color), dark).name();
}

TEST(ThemeColors, LaysOneColourOnAnother)
{
    EXPECT_EQ(ThemeColors::mix(QColor(0x3b, 0x77, 0xd0), lightContent, 0.13).name(), u"#e6edf9");
    EXPECT_EQ(ThemeColors::mix(Qt::black, Qt::white, 0).name(), u"#ffffff");
    EXPECT_EQ(ThemeColors::mix(Qt::black, Qt::white, 1).name(), u"#000000");
}

TEST(ThemeColors, CountsContrastAsEverybodyDoes)
{
    EXPECT_NEAR(ThemeColors::contrast(Qt::black, Qt::white), 21, 0.001);
    EXPECT_NEAR(ThemeColors::contrast(Qt::white, QColor(0x0e, 0x6e, 0x63)), 6.1, 0.05);
    EXPECT_DOUBLE_EQ(ThemeColors::contrast(Qt::red, Qt::blue), ThemeColors::contrast(Qt::blue, Qt::red));
}

TEST(ThemeColors, KeepsOurHuesByNameAndInEitherShade)
{
    for (const char *blue : {"blue", "#3b77d0", "#3B77D0", "#77a9f3"}) {
        EXPECT_EQ(project(blue, false), u"#3b77d0") << blue;
        EXPECT_EQ(project(blue, true), u"#77a9f3") << blue;
    }
    EXPECT_EQ(project("", false), u"#727d7c");
    EXPECT_EQ(project("no colour", true), u"#8c9697");
}

// What a stranger chose on another client has to be told from the ground, and to stay what it is called.
TEST(ThemeColors, DrawsAnyHueLegiblyAndAsThatHue)
{
    for (int hue = 0; hue < 360; hue += 5) {
        for (const int saturation : {80, 160, 255}) {
            for (const int value : {40, 140, 255}) {
                const QColor chosen = QColor::fromHsv(hue, saturation, value);
                for (const bool dark : {false, true}) {
                    const QColor drawn = ThemeColors::project(chosen.name(), dark);
                    EXPECT_GE(ThemeColors::contrast(drawn, dark ? darkContent : lightContent),
                              dark ? 6.5 : 4.0)
                        << chosen.name().toStdString();
                    const int turned = std::abs(drawn.hsvHue() - hue) % 360;
                    EXPECT_LE(std::min(turned, 360 - turned), 36) << chosen.name().toStdString();
                }
            }
        }
    }
    EXPECT_LT(ThemeColors::project(QStringLiteral("#808080"), true).hsvSaturation(), 4);
}

} // namespace
} // namespace orvane
