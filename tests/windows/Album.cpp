// SPDX-License-Identifier: GPL-3.0-or-later
#include "Album.h"

#include <QDeadlineTimer>
#include <QDir>
#include <QGuiApplication>
#include <QImage>
#include <QQuickItem>
#include <QQuickWindow>
#include <QTextStream>
#include <QtQml>
#include <algorithm>

namespace orvane::testing {

namespace {

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

/// Until nothing is left to be laid out or loaded, and a sheet has come up.
void settle()
{
    const QDeadlineTimer end(250);
    for (int round = 0; round < 10 || !end.hasExpired(); ++round)
        QCoreApplication::processEvents(QEventLoop::AllEvents, 20);
}

} // namespace

Album::Album(QString folder, bool isWhole) : m_folder(std::move(folder)), m_isWhole(isWhole)
{
    QDir().mkpath(m_folder);
}

void Album::take(DesktopWindow &desktop, const QString &name)
{
    save(desktop, name + QStringLiteral("-900-light"), {900, 600}, Appearance::Scheme::Light);
    if (!m_isWhole)
        return;
    save(desktop, name + QStringLiteral("-900-dark"), {900, 600}, Appearance::Scheme::Dark);
    save(desktop, name + QStringLiteral("-1440-light"), {1440, 900}, Appearance::Scheme::Light);
    save(desktop, name + QStringLiteral("-1440-dark"), {1440, 900}, Appearance::Scheme::Dark);
}

void Album::complain(const QString &problem)
{
    QTextStream(stderr) << problem << Qt::endl;
    ++m_problems;
}
void Album::save(DesktopWindow &desktop, const QString &name, QSize size, Appearance::Scheme scheme)
{
    QQuickWindow *window = desktop.window();
    auto *appearance = qmlEngine(window)->singletonInstance<Appearance *>(
        qmlTypeId("Orvane.Components", 1, 0, "Appearance"));
    appearance->setScheme(scheme);
    window->resize(size);
    settle();
    const QString file = QStringLiteral("%1/%2.png").arg(m_folder, name);
    const QImage picture = window->grabWindow();
    if (picture.isNull() || !picture.save(file))
        complain(QStringLiteral("%1 could not be drawn").arg(file));
    for (const QString &text : cutTexts(window->contentItem()))
        complain(QStringLiteral("%1: “%2” is cut").arg(file, text));
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
