// SPDX-License-Identifier: GPL-3.0-or-later
#include "PictureAlbum.h"

#include "support/Await.h"

#include <QDeadlineTimer>
#include <QDir>
#include <QGuiApplication>
#include <QImage>
#include <QQuickItem>
#include <QQuickWindow>
#include <QTextStream>
#include <QtQml>

namespace orvane::testing {

namespace {

/// Says everything the longer by two fifths, as other languages do.
class LongTexts final : public QTranslator {
public:
    bool isEmpty() const override { return false; }
    QString translate(const char *, const char *text, const char *, int) const override
    {
        const QString said = QString::fromUtf8(text);
        return said + QString((said.size() * 2 + 4) / 5, QLatin1Char('~'));
    }
};

/// Texts that had no room, but for those that people wrote: what is called something may be called anything.
QStringList cutTexts(const QQuickItem *item)
{
    QStringList cut;
    if (!item->isVisible() || item->opacity() == 0)
        return cut;
    if (item->property("truncated").toBool() && !item->property("saidByPeople").toBool())
        cut << item->property("text").toString();
    for (const QQuickItem *child : item->childItems())
        cut << cutTexts(child);
    return cut;
}

/// A sheet or a menu fades in, or has not begun to.
bool isComingUp(const QQuickItem *root)
{
    const auto isFaint = [](const QQuickItem *item) { return item->isVisible() && item->opacity() < 1; };
    return std::ranges::any_of(root->childItems(), [&](const QQuickItem *item) {
        return item->inherits("QQuickOverlay") && std::ranges::any_of(item->childItems(), isFaint);
    });
}

/// Until nothing is left to be laid out or loaded, and a sheet has come up.
void settle(const QQuickWindow &window)
{
    const QDeadlineTimer least(250);
    const QDeadlineTimer most(3000);
    for (int round = 0;
         round < 10 || !least.hasExpired() || (isComingUp(window.contentItem()) && !most.hasExpired());
         ++round)
        QCoreApplication::processEvents(QEventLoop::AllEvents, 20);
}

} // namespace

Album::Album(QString folder, bool isWhole) : m_folder(std::move(folder)), m_isWhole(isWhole)
{
    QDir().mkpath(m_folder);
}

void Album::take(DesktopWindow &desktop, const QString &name)
{
    const auto saveAt = [&](QSize size, const char *which, Appearance::Scheme scheme) {
        desktop.window()->resize(size);
        save(desktop.window(), name + QLatin1String(which), scheme);
    };
    saveAt({900, 600}, "-900-light", Appearance::Scheme::Light);
    if (!m_isWhole)
        return;
    saveAt({900, 600}, "-900-dark", Appearance::Scheme::Dark);
    saveAt({1440, 900}, "-1440-light", Appearance::Scheme::Light);
    saveAt({1440, 900}, "-1440-dark", Appearance::Scheme::Dark);
}

void Album::takePanel(DesktopWindow &desktop, const QString &name)
{
    save(desktop.panel().window(), name + QStringLiteral("-light"), Appearance::Scheme::Light);
    if (m_isWhole)
        save(desktop.panel().window(), name + QStringLiteral("-dark"), Appearance::Scheme::Dark);
}

void Album::withLongTexts(QQuickWindow *window, const std::function<void()> &draw)
{
    LongTexts longTexts;
    QCoreApplication::installTranslator(&longTexts);
    qmlEngine(window)->retranslate();
    draw();
    QCoreApplication::removeTranslator(&longTexts);
    qmlEngine(window)->retranslate();
}

void Album::complain(const QString &problem)
{
    QTextStream(stderr) << problem << Qt::endl;
    ++m_problems;
}

void Album::save(QQuickWindow *window, const QString &name, Appearance::Scheme scheme)
{
    auto *appearance = qmlEngine(window)->singletonInstance<Appearance *>(
        qmlTypeId("Orvane.Components", 1, 0, "Appearance"));
    appearance->setScheme(scheme);
    settle(*window);
    const QString file = QStringLiteral("%1/%2.png").arg(m_folder, name);
    const QImage picture = window->grabWindow();
    if (picture.isNull() || !picture.save(file))
        complain(QStringLiteral("%1 could not be drawn").arg(file));
    for (const QString &text : cutTexts(window->contentItem()))
        complain(QStringLiteral("%1: “%2” is cut").arg(file, text));
}

bool opens(DesktopWindow &desktop, const std::function<bool()> &holds)
{
    desktop.show();
    return eventually([&] { return desktop.window() != nullptr && holds(); });
}

const TimeEntryResponse *entryCalled(DesktopWindow &desktop, std::string_view description)
{
    const auto &entries = desktop.app().tracker()->entries();
    const auto found = std::ranges::find(entries, description, &TimeEntryResponse::description);
    return found == entries.end() ? nullptr : &*found;
}

QString idOf(DesktopWindow &desktop, std::string_view description)
{
    const TimeEntryResponse *entry = entryCalled(desktop, description);
    return entry != nullptr ? QString::fromStdString(entry->id) : QString();
}

} // namespace orvane::testing
