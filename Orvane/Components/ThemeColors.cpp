// SPDX-License-Identifier: GPL-3.0-or-later
#include "ThemeColors.h"

#include <algorithm>
#include <array>
#include <cmath>

namespace orvane {

namespace {

struct Hue {
    const char *name;
    QRgb light;
    QRgb dark;
};

constexpr std::array<Hue, 11> hues{{{"blue", 0xff3b77d0, 0xff77a9f3},
                                    {"orange", 0xffb75c14, 0xffdf9363},
                                    {"violet", 0xff8362c5, 0xffb097ea},
                                    {"leaf", 0xff658a2a, 0xff95b46c},
                                    {"rose", 0xffbe4c6f, 0xffe6869f},
                                    {"ochre", 0xff9d7400, 0xffc4a35e},
                                    {"sky", 0xff0084b3, 0xff64b2da},
                                    {"plum", 0xffa754a5, 0xffd08cce},
                                    {"brick", 0xffbd5344, 0xffe58c7d},
                                    {"slate", 0xff687c88, 0xff9aabb5},
                                    {"none", 0xff727d7c, 0xff8c9697}}};

/// A colour in OKLab: lightness 0 to 1 as the eye sees it, and two axes of hue.
struct Lab {
    double lightness;
    double a;
    double b;
};

struct LinearRgb {
    double red;
    double green;
    double blue;
};

double toLinear(double channel)
{
    return channel <= 0.04045 ? channel / 12.92 : std::pow((channel + 0.055) / 1.055, 2.4);
}

double fromLinear(double channel)
{
    return channel <= 0.0031308 ? 12.92 * channel : 1.055 * std::pow(channel, 1 / 2.4) - 0.055;
}

LinearRgb linear(const QColor &color)
{
    return {toLinear(color.redF()), toLinear(color.greenF()), toLinear(color.blueF())};
}

Lab toLab(const LinearRgb &color)
{
    const auto [red, green, blue] = color;
    const double l = std::cbrt(0.4122214708 * red + 0.5363325363 * green + 0.0514459929 * blue);
    const double m = std::cbrt(0.2119034982 * red + 0.6806995451 * green + 0.1073969566 * blue);
    const double s = std::cbrt(0.0883024619 * red + 0.2817188376 * green + 0.6299787005 * blue);
    return {0.2104542553 * l + 0.7936177850 * m - 0.0040720468 * s,
            1.9779984951 * l - 2.4285922050 * m + 0.4505937099 * s,
            0.0259040371 * l + 0.7827717662 * m - 0.8086757660 * s};
}

LinearRgb fromLab(const Lab &color)
{
    const double l = std::pow(color.lightness + 0.3963377774 * color.a + 0.2158037573 * color.b, 3);
    const double m = std::pow(color.lightness - 0.1055613458 * color.a - 0.0638541728 * color.b, 3);
    const double s = std::pow(color.lightness - 0.0894841775 * color.a - 1.2914855480 * color.b, 3);
    return {4.0767416621 * l - 3.3077115913 * m + 0.2309699292 * s,
            -1.2684380046 * l + 2.6097574011 * m - 0.3413193965 * s,
            -0.0041960863 * l - 0.7034186147 * m + 1.7076147010 * s};
}

bool canBeShown(const LinearRgb &color)
{
    const auto within = [](double channel) { return channel >= -0.0005 && channel <= 1.0005; };
    return within(color.red) && within(color.green) && within(color.blue);
}

QColor toColor(const LinearRgb &color)
{
    const auto channel = [](double value) {
        return static_cast<int>(std::lround(255 * fromLinear(std::clamp(value, 0.0, 1.0))));
    };
    return {channel(color.red), channel(color.green), channel(color.blue)};
}

/// The hue of `color` at `lightness`, with at most `maxChroma` and no more of it than a screen can show.
QColor shade(const QColor &color, double lightness, double maxChroma)
{
    const Lab lab = toLab(linear(color));
    const double chroma = std::hypot(lab.a, lab.b);
    double keep = chroma > maxChroma ? maxChroma / chroma : 1;
    const auto at = [&](double share) { return fromLab({lightness, lab.a * share, lab.b * share}); };
    while (!canBeShown(at(keep)) && keep > 0.01) {
        keep *= 0.96;
    }
    return toColor(at(keep));
}

/// As light (in the dark) or dark as it takes to be told from the content, whatever the hue.
QColor legibleShade(const QColor &color, bool dark)
{
    const QColor content = dark ? QColor(0x1b, 0x1f, 0x20) : QColor(Qt::white);
    const double wanted = dark ? 6.5 : 4.0;
    double lightness = dark ? 0.73 : 0.58;
    QColor found = shade(color, lightness, dark ? 0.12 : 0.15);
    while (ThemeColors::contrast(found, content) < wanted) {
        lightness += dark ? 0.005 : -0.005;
        found = shade(color, lightness, dark ? 0.12 : 0.15);
    }
    return found;
}

} // namespace

QColor ThemeColors::mix(const QColor &over, const QColor &ground, qreal share)
{
    const auto channel = [share](int top, int below) {
        return static_cast<int>(std::lround(top * share + below * (1 - share)));
    };
    return {channel(over.red(), ground.red()), channel(over.green(), ground.green()),
            channel(over.blue(), ground.blue())};
}

QColor ThemeColors::project(const QString &color, bool dark)
{
    const QColor asked(color);
    for (const Hue &hue : hues) {
        if (color == QLatin1String(hue.name) ||
            (asked.isValid() && (asked.rgb() == hue.light || asked.rgb() == hue.dark))) {
            return QColor::fromRgb(dark ? hue.dark : hue.light);
        }
    }
    return asked.isValid() ? legibleShade(asked, dark)
                           : QColor::fromRgb(dark ? hues.back().dark : hues.back().light);
}

double ThemeColors::contrast(const QColor &one, const QColor &other)
{
    const auto luminance = [](const QColor &color) {
        const auto [red, green, blue] = linear(color);
        return 0.2126 * red + 0.7152 * green + 0.0722 * blue;
    };
    const auto [darker, lighter] = std::minmax({luminance(one), luminance(other)});
    return (lighter + 0.05) / (darker + 0.05);
}

} // namespace orvane
