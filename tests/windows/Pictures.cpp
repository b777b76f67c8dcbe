// SPDX-License-Identifier: GPL-3.0-or-later
// Draws the application's windows as people see them and saves the pictures: Pictures FOLDER [--all]. The
// real window over a real server, with a week of time as people have it.
#include "Appearance.h"
#include "Desktop/DesktopWindow.h"
#include "PictureWorld.h"
#include "Time/AppClock.h"
#include "support/Await.h"

#include <QDir>
#include <QGuiApplication>
#include <QImage>
#include <QQuickItem>
#include <QQuickWindow>
#include <QTextStream>
#include <QTranslator>
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

/// Where pictures go, and what is wrong with them.
class Album {
public:
    Album(QString folder, bool isWhole) : m_folder(std::move(folder)), m_isWhole(isWhole)
    {
        QDir().mkpath(m_folder);
    }

    /// The small window in the light, and where all are wanted the large one and both in the dark too.
    void take(DesktopWindow &desktop, const QString &name)
    {
        save(desktop, name + QStringLiteral("-900-light"), {900, 600}, Appearance::Scheme::Light);
        if (!m_isWhole)
            return;
        save(desktop, name + QStringLiteral("-900-dark"), {900, 600}, Appearance::Scheme::Dark);
        save(desktop, name + QStringLiteral("-1440-light"), {1440, 900}, Appearance::Scheme::Light);
        save(desktop, name + QStringLiteral("-1440-dark"), {1440, 900}, Appearance::Scheme::Dark);
    }

    void complain(const QString &problem)
    {
        QTextStream(stderr) << problem << Qt::endl;
        ++m_problems;
    }
    int problems() const { return m_problems; }

private:
    void save(DesktopWindow &desktop, const QString &name, QSize size, Appearance::Scheme scheme)
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

    /// Until nothing is left to be laid out or loaded, and a sheet has come up.
    static void settle()
    {
        const QDeadlineTimer end(250);
        for (int round = 0; round < 10 || !end.hasExpired(); ++round)
            QCoreApplication::processEvents(QEventLoop::AllEvents, 20);
    }

    QString m_folder;
    bool m_isWhole;
    int m_problems = 0;
};

const TimeEntryResponse *entryCalled(DesktopWindow &desktop, std::string_view description)
{
    const auto &entries = desktop.app().tracker()->entries();
    const auto found = std::ranges::find(entries, description, &TimeEntryResponse::description);
    return found == entries.end() ? nullptr : &*found;
}

/// Between its project and another one.
void divide(DesktopWindow &desktop, std::string_view description)
{
    const TimeEntryResponse *entry = entryCalled(desktop, description);
    const auto &projects = desktop.app().tracker()->catalog().projects();
    const auto website = std::ranges::find(projects, "Website", &ProjectResponse::name);
    if (entry == nullptr || website == projects.end())
        return;
    await(desktop.app().tracker()->split(entry->id, {SplitPart{entry->projectId, {}, false, 60, {}},
                                                     SplitPart{website->id, {}, false, 40, {}}}));
}

void drawLongTexts(Album &album, DesktopWindow &desktop, const QString &name)
{
    LongTexts longTexts;
    QCoreApplication::installTranslator(&longTexts);
    qmlEngine(desktop.window())->retranslate();
    album.take(desktop, name);
    QCoreApplication::removeTranslator(&longTexts);
    qmlEngine(desktop.window())->retranslate();
}

void drawOffline(Album &album, DesktopWindow &desktop, const PictureWorld &world)
{
    world.installation().killServer();
    desktop.timer().field()->setText(QStringLiteral("Pager @platform/ci 15:10-15:40"));
    desktop.timer().field()->submit();
    const auto isAway = [&] { return desktop.app().sync()->kind() == SyncStatus::Kind::Offline; };
    if (!eventually(isAway) || desktop.app().sync()->waiting() == 0)
        album.complain(QStringLiteral("The window did not notice that the server is away"));
    album.take(desktop, QStringLiteral("timer-offline"));
}

QString idOf(DesktopWindow &desktop, std::string_view description)
{
    const TimeEntryResponse *entry = entryCalled(desktop, description);
    return entry != nullptr ? QString::fromStdString(entry->id) : QString();
}

void drawSplit(Album &album, DesktopWindow &desktop)
{
    SplitModel &split = *desktop.timer().split();
    if (!split.open(idOf(desktop, "Rate limits per key")))
        album.complain(QStringLiteral("The entry could not be split"));
    split.moveMoment(47.0 / 85);
    split.halves()->setDescription(0, QStringLiteral("Limits and their tests"));
    album.take(desktop, QStringLiteral("split-time"));
    split.cancel();
    split.open(idOf(desktop, "Cursor pagination"));
    split.setMode(SplitModel::Mode::ByPercent);
    split.addPart();
    const std::array<std::pair<const char *, const char *>, 2> others{
        {{"Website", "Document the new paging"}, {"Admin", "Answer questions"}}};
    for (int row = 1; const auto &[project, description] : others) {
        desktop.timer().picker()->setQuery(QLatin1String(project));
        split.parts()->setProject(row, desktop.timer().picker()->projectIdAt(0), {});
        split.parts()->setDescription(row++, QLatin1String(description));
    }
    split.nudgePercent(0, -10);
    split.nudgePercent(1, 10);
    album.take(desktop, QStringLiteral("split-percent"));
    split.cancel();
}

void drawTimer(Album &album)
{
    const PictureWorld world;
    DesktopWindow desktop({.folder = world.folder(), .startsServer = false});
    const auto isLoaded = [&] {
        return desktop.app().tracker() != nullptr && desktop.app().tracker()->state() == LoadState::loaded;
    };
    if (!desktop.show() || !eventually(isLoaded)) {
        album.complain(QStringLiteral("The window did not open"));
        await(desktop.close());
        return;
    }
    divide(desktop, "Cursor pagination");
    album.take(desktop, QStringLiteral("timer"));
    desktop.timer().field()->setText(QStringLiteral("Review the limits @atlas #review since 15:20"));
    album.take(desktop, QStringLiteral("timer-typed"));
    desktop.timer().field()->setText({});
    if (!desktop.timer().editor()->open(idOf(desktop, "Rate limits per key")))
        album.complain(QStringLiteral("The entry could not be edited"));
    album.take(desktop, QStringLiteral("timer-editor"));
    desktop.timer().editRunning();
    album.take(desktop, QStringLiteral("timer-running-editor"));
    desktop.timer().editor()->cancel();
    drawSplit(album, desktop);
    drawLongTexts(album, desktop, QStringLiteral("timer-long"));
    drawOffline(album, desktop, world);
    await(desktop.close());
}

/// Signing in to a team's server, which is that of another installation, and the switcher afterwards.
void drawSignIn(Album &album)
{
    const PictureWorld world;
    const TestInstallation team;
    if (team.run({"status"}).exitStatus != 0)
        album.complain(QStringLiteral("The team's server does not run"));
    const std::string address = team.hello()->address;
    (void)world.installation().run(
        {"--server", address, "login", "--register", "--email", "robin@fernhill.example", "--password-stdin"},
        "a good password\n");
    (void)world.installation().run({"--server", address, "logout"});
    DesktopWindow desktop({.folder = world.folder(), .startsServer = false});
    if (!desktop.show() || !eventually([&] { return desktop.app().phase() == AppModel::Phase::Open; })) {
        album.complain(QStringLiteral("The window did not open"));
        await(desktop.close());
        return;
    }
    auto *switcher = desktop.window()->findChild<QObject *>(QStringLiteral("switcher"));
    QMetaObject::invokeMethod(switcher, "open");
    album.take(desktop, QStringLiteral("switcher"));
    QMetaObject::invokeMethod(switcher, "close");
    desktop.app().askForSignIn({});
    album.take(desktop, QStringLiteral("signin"));
    desktop.signIn().setAddress(QStringLiteral("http://127.0.0.1:9"));
    (void)eventually([&] { return !desktop.signIn().addressProblem().isEmpty(); });
    album.take(desktop, QStringLiteral("signin-nobody"));
    desktop.signIn().setAddress(QString::fromStdString(address));
    (void)eventually([&] { return desktop.signIn().isMet(); });
    desktop.signIn().setRegistering(true);
    desktop.signIn().submit({});
    album.take(desktop, QStringLiteral("signin-register"));
    Q_EMIT desktop.app().signInWanted(QString::fromStdString(address),
                                      QStringLiteral("Your session has ended. Please sign in again."));
    (void)eventually([&] { return desktop.signIn().isMet(); });
    album.take(desktop, QStringLiteral("signin-ended"));
    drawLongTexts(album, desktop, QStringLiteral("signin-long"));
    await(desktop.close());
}

void drawEmpty(Album &album)
{
    const PictureWorld world(PictureWorld::Contents::nothing);
    DesktopWindow desktop({.folder = world.folder(), .startsServer = false});
    if (desktop.show() && eventually([&] { return desktop.timer().isEmpty(); }))
        album.take(desktop, QStringLiteral("empty"));
    else
        album.complain(QStringLiteral("The empty window did not open"));
    await(desktop.close());
}

} // namespace

} // namespace orvane::testing

int main(int argc, char **argv)
{
    qputenv("QT_QUICK_BACKEND", "software");
    qputenv("LC_ALL", "C.UTF-8");
    const QGuiApplication application(argc, argv);
    const QStringList arguments = QCoreApplication::arguments();
    const bool isWhole = arguments.contains(QStringLiteral("--all"));
    if (arguments.size() != (isWhole ? 3 : 2)) {
        QTextStream(stderr) << "usage: Pictures FOLDER [--all]" << Qt::endl;
        return 2;
    }
    orvane::testing::Album album(arguments.at(1), isWhole);
    orvane::testing::drawTimer(album);
    orvane::testing::drawEmpty(album);
    orvane::testing::drawSignIn(album);
    return album.problems() == 0 ? 0 : 1;
}
