// SPDX-License-Identifier: GPL-3.0-or-later
#include "Pictures.h"

#include <QFile>
#include <QPainter>
#include <QQmlEngine>
#include <QQuickImageProvider>
#include <QSvgRenderer>

#include <algorithm>
#include <array>
#include <cmath>
#include <span>
#include <vector>

namespace orvane {

namespace {

const QString providerName = QStringLiteral("orvane");

/// One layer of a shadow: how far below the surface, how soft (as CSS counts it, two deviations) and how
/// dark.
struct ShadowLayer {
    int drop;
    int softness;
    double lightOpacity;
    double darkOpacity;
};

constexpr std::array<ShadowLayer, 2> menuShadow{{{2, 6, 0.08, 0.30}, {12, 32, 0.14, 0.50}}};
constexpr std::array<ShadowLayer, 2> sheetShadow{{{8, 20, 0.12, 0.40}, {28, 72, 0.26, 0.60}}};

std::span<const ShadowLayer> layersOf(int level)
{
    return level >= 3 ? sheetShadow : menuShadow;
}

/// How far from the edge of what casts it a shadow changes.
int spread(const ShadowLayer &layer)
{
    return layer.drop + 3 * (layer.softness / 4);
}

/// The length of the surface that is drawn for one of `length`: a longer one is the same with a longer
/// middle.
int drawnLength(int level, int radius, qreal length)
{
    const int longest = 2 * std::max(radius, spread(layersOf(level).back())) + 1;
    return std::clamp(static_cast<int>(std::lround(length)), 1, longest);
}

/// Each of a row's values becomes the mean of those within `radius`.
void blurLine(std::vector<float> &line, std::vector<float> &sums, int radius)
{
    const int size = static_cast<int>(line.size());
    sums[0] = 0;
    for (int i = 0; i < size; ++i) {
        sums[static_cast<std::size_t>(i) + 1] =
            sums[static_cast<std::size_t>(i)] + line[static_cast<std::size_t>(i)];
    }
    const float width = static_cast<float>(2 * radius + 1);
    for (int i = 0; i < size; ++i) {
        const auto from = static_cast<std::size_t>(std::max(0, i - radius));
        const auto to = static_cast<std::size_t>(std::min(size, i + radius + 1));
        line[static_cast<std::size_t>(i)] = (sums[to] - sums[from]) / width;
    }
}

/// Three means after each other come so near to a Gaussian blur that no eye tells them apart.
void blur(std::vector<float> &mask, const QSize &size, int softness)
{
    const int radius = std::max(1, softness / 4);
    const auto width = static_cast<std::size_t>(size.width());
    const auto height = static_cast<std::size_t>(size.height());
    std::vector<float> row(width);
    std::vector<float> column(height);
    std::vector<float> sums(std::max(width, height) + 1);
    for (int pass = 0; pass < 3; ++pass) {
        for (std::size_t y = 0; y < height; ++y) {
            const auto begin = mask.begin() + static_cast<std::ptrdiff_t>(y * width);
            std::copy_n(begin, width, row.begin());
            blurLine(row, sums, radius);
            std::copy_n(row.begin(), width, begin);
        }
        for (std::size_t x = 0; x < width; ++x) {
            for (std::size_t y = 0; y < height; ++y) {
                column[y] = mask[y * width + x];
            }
            blurLine(column, sums, radius);
            for (std::size_t y = 0; y < height; ++y) {
                mask[y * width + x] = column[y];
            }
        }
    }
}

/// How much of each pixel the surface covers.
std::vector<float> surfaceMask(const QSize &size, const QRectF &surface, int radius)
{
    QImage covered(size, QImage::Format_Grayscale8);
    covered.fill(0);
    QPainter painter(&covered);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    painter.setBrush(Qt::white);
    painter.drawRoundedRect(surface, radius, radius);
    painter.end();
    std::vector<float> mask;
    for (int row = 0; row < size.height(); ++row) {
        const uchar *line = covered.constScanLine(row);
        std::transform(line, line + size.width(), std::back_inserter(mask),
                       [](uchar value) { return static_cast<float>(value) / 255; });
    }
    return mask;
}

/// One layer in `shade`, as dark as the mask says.
QImage veilOf(const std::vector<float> &mask, const QSize &size, const QColor &shade, double opacity)
{
    QImage veil(size, QImage::Format_ARGB32);
    auto covered = mask.begin();
    for (int row = 0; row < size.height(); ++row) {
        auto *line = reinterpret_cast<QRgb *>(veil.scanLine(row));
        std::generate_n(line, size.width(), [&] {
            const int alpha = static_cast<int>(std::lround(255 * opacity * static_cast<double>(*covered++)));
            return qRgba(shade.red(), shade.green(), shade.blue(), alpha);
        });
    }
    return veil;
}

/// Draws what Pictures' addresses name: "icon/NAME/AARRGGBB" and "shadow/LEVEL/RADIUS/WIDTH/HEIGHT/light or
/// dark".
class PictureProvider : public QQuickImageProvider {
public:
    PictureProvider() : QQuickImageProvider(QQuickImageProvider::Image) {}

    QImage requestImage(const QString &id, QSize *size, const QSize &requested) override
    {
        const QStringList parts = id.split(u'/');
        QImage image;
        if (parts.size() == 3 && parts[0] == u"icon") {
            image = Pictures::drawIcon(parts[1], QColor(u'#' + parts[2]),
                                       requested.isEmpty() ? QSize(16, 16) : requested);
        } else if (parts.size() == 6 && parts[0] == u"shadow") {
            const QSize surface(parts[3].toInt(), parts[4].toInt());
            image = Pictures::drawShadow(parts[1].toInt(), parts[2].toInt(), surface, parts[5] == u"dark");
        }
        *size = image.size();
        return image;
    }
};

} // namespace

Pictures *Pictures::create(QQmlEngine *engine, QJSEngine *)
{
    engine->addImageProvider(providerName, new PictureProvider);
    return new Pictures;
}

QUrl Pictures::icon(const QString &name, const QColor &color) const
{
    return QUrl(
        QStringLiteral("image://%1/icon/%2/%3").arg(providerName, name, color.name(QColor::HexArgb).mid(1)));
}

QUrl Pictures::shadow(int level, int radius, const QSizeF &size, bool dark) const
{
    const QString address = QStringLiteral("image://%1/shadow/%2/%3/%4/%5/%6");
    return QUrl(address.arg(providerName)
                    .arg(level)
                    .arg(radius)
                    .arg(drawnLength(level, radius, size.width()))
                    .arg(drawnLength(level, radius, size.height()))
                    .arg(dark ? QStringLiteral("dark") : QStringLiteral("light")));
}

int Pictures::shadowReach(int level)
{
    return spread(layersOf(level).back());
}

int Pictures::shadowBorder(int level, int radius, qreal length)
{
    return shadowReach(level) + (drawnLength(level, radius, length) - 1) / 2;
}

QImage Pictures::drawIcon(const QString &name, const QColor &color, const QSize &size)
{
    QSvgRenderer drawing(QStringLiteral(":/qt/qml/Orvane/Components/icons/%1.svg").arg(name));
    if (!drawing.isValid()) {
        return {};
    }
    QImage image(size, QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    QPainter painter(&image);
    drawing.render(&painter);
    painter.setCompositionMode(QPainter::CompositionMode_SourceIn);
    painter.fillRect(image.rect(), color);
    painter.end();
    // An image that was painted on keeps its painter's tables, which are larger than an icon; a copy of it
    // does not.
    return image.copy();
}

QImage Pictures::drawShadow(int level, int radius, const QSize &surface, bool dark)
{
    const int reach = shadowReach(level);
    const QSize size = surface + 2 * QSize(reach, reach);
    QImage image(size, QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    QPainter painter(&image);
    for (const ShadowLayer &layer : layersOf(level)) {
        const QRectF caster(QPoint(reach, reach + layer.drop), surface);
        std::vector<float> mask = surfaceMask(size, caster, radius);
        blur(mask, size, layer.softness);
        const QColor shade = dark ? QColor(Qt::black) : QColor(19, 29, 28);
        painter.drawImage(0, 0, veilOf(mask, size, shade, dark ? layer.darkOpacity : layer.lightOpacity));
    }
    return image;
}

} // namespace orvane
