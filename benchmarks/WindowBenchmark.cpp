// SPDX-License-Identifier: GPL-3.0-or-later
// The real window over an installation that the caller has made; prints what it measured as one line of JSON.
// WindowBenchmark open|scroll|type|panel FOLDER, WindowBenchmark rest|hidden FOLDER SECONDS, WindowBenchmark
// live FOLDER COUNT.
#include "Desktop/DesktopWindow.h"

#include <QEventLoop>
#include <QFile>
#include <QGuiApplication>
#include <QJsonDocument>
#include <QJsonObject>
#include <QQuickItem>
#include <QQuickWindow>
#include <QTextStream>
#include <QTimer>
#include <algorithm>
#include <ctime>
#include <filesystem>
#include <set>
#include <unistd.h>

namespace orvane {

namespace {

double secondsOf(clockid_t clock)
{
    timespec time{};
    clock_gettime(clock, &time);
    return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_nsec) / 1e9;
}

double residentMegabytes()
{
    QFile file(QStringLiteral("/proc/self/statm"));
    if (!file.open(QIODevice::ReadOnly))
        return 0;
    return file.readAll().split(' ').at(1).toDouble() * static_cast<double>(sysconf(_SC_PAGESIZE)) / 1e6;
}

/// Of all threads.
qint64 voluntarySwitches()
{
    qint64 count = 0;
    for (const auto &task : std::filesystem::directory_iterator("/proc/self/task")) {
        QFile file(QString::fromStdString(task.path().string() + "/status"));
        if (!file.open(QIODevice::ReadOnly))
            continue;
        for (const QByteArray &line : file.readAll().split('\n')) {
            if (line.startsWith("voluntary_ctxt_switches:"))
                count += line.mid(line.indexOf(':') + 1).trimmed().toLongLong();
        }
    }
    return count;
}

template <class Condition>
bool waitFor(Condition condition)
{
    QTimer patience;
    patience.setSingleShot(true);
    patience.start(std::chrono::seconds(10));
    // Without a longest time, which would look for events again and again.
    while (!condition() && patience.isActive())
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
    return condition();
}

void spend(std::chrono::milliseconds time)
{
    QEventLoop loop;
    QTimer::singleShot(time, &loop, &QEventLoop::quit);
    loop.exec();
}

/// The window with its list, and its frames.
class Window {
public:
    explicit Window(const std::string &folder) : m_desktop({.folder = folder, .startsServer = false})
    {
        m_desktop.show();
        if (!waitFor([this] { return m_desktop.window() != nullptr; }))
            return;
        countFramesOf(*m_desktop.window());
        QObject::connect(m_desktop.window(), &QQuickWindow::frameSwapped, [this] {
            if (m_firstListed != 0 || m_desktop.timer().list()->count() == 0)
                return;
            m_firstListed = secondsOf(CLOCK_MONOTONIC);
            m_work = secondsOf(CLOCK_THREAD_CPUTIME_ID);
        });
    }
    ~Window() { QCoro::waitFor(m_desktop.close()); }

    bool opens()
    {
        return waitFor([this] { return m_firstListed > 0; });
    }
    void countFramesOf(QQuickWindow &screen)
    {
        QObject::connect(&screen, &QQuickWindow::frameSwapped, [this] { ++m_frames; });
    }
    double firstListed() const { return m_firstListed; }
    /// The main thread's time on the processor until then.
    double work() const { return m_work; }
    qint64 frames() const { return m_frames; }
    DesktopWindow &desktop() { return m_desktop; }

    /// The main thread's work from an action to the frame that shows it, in ms.
    template <class Action>
    double workOf(Action action)
    {
        const qint64 before = m_frames;
        const double began = secondsOf(CLOCK_THREAD_CPUTIME_ID);
        action();
        if (!waitFor([&] { return m_frames > before; }))
            qFatal("an action that no frame shows");
        return 1e3 * (secondsOf(CLOCK_THREAD_CPUTIME_ID) - began);
    }

private:
    DesktopWindow m_desktop;
    qint64 m_frames = 0;
    double m_firstListed = 0;
    double m_work = 0;
};

QJsonObject percentiles(std::vector<double> works)
{
    std::ranges::sort(works);
    const auto at = [&](double part) {
        return works[static_cast<std::size_t>(part * static_cast<double>(works.size() - 1))];
    };
    return {{QStringLiteral("frames"), static_cast<qint64>(works.size())},
            {QStringLiteral("median"), at(0.5)},
            {QStringLiteral("p99"), at(0.99)}};
}

/// `began` is the moment at which the process was asked for.
QJsonObject measureOpening(Window &window, double began)
{
    spend(std::chrono::milliseconds(1500));
    return {{QStringLiteral("firstFrame"), 1e3 * (window.firstListed() - began)},
            {QStringLiteral("work"), 1e3 * window.work()},
            {QStringLiteral("memory"), residentMegabytes()}};
}

/// Eight rows a frame through all entries, every day unfolded.
QJsonObject measureScrolling(Window &window)
{
    TimerList &list = *window.desktop().timer().list();
    for (int row = 0; row < list.rowCount(); ++row) {
        if (list.kindAt(row) == TimerList::Kind::Folded)
            list.turn(row);
    }
    auto *view = window.desktop().window()->findChild<QQuickItem *>(QStringLiteral("entries"));
    spend(std::chrono::milliseconds(500));
    std::vector<double> works;
    constexpr int frames = 600;
    constexpr double step = 8 * 36;
    for (int frame = 1; frame <= frames; ++frame)
        works.push_back(window.workOf([&] { view->setProperty("contentY", step * frame); }));
    QJsonObject measured = percentiles(std::move(works));
    measured[QStringLiteral("rows")] = list.rowCount();
    return measured;
}

/// A sentence, letter by letter, with what is understood of it.
QJsonObject measureTyping(Window &window, QQuickWindow &screen, EntryField &field)
{
    std::vector<double> works;
    for (int round = 0; round < 20; ++round) {
        for (const QChar letter : QStringLiteral("review @project 7 9:30-10")) {
            works.push_back(window.workOf([&] {
                for (const auto type : {QEvent::KeyPress, QEvent::KeyRelease}) {
                    QKeyEvent key(type, 0, Qt::NoModifier, letter);
                    QCoreApplication::sendEvent(&screen, &key);
                }
            }));
        }
        field.setText({});
        spend(std::chrono::milliseconds(50));
    }
    return percentiles(std::move(works));
}

/// In the panel, where each word is looked for among all entries.
QJsonObject measurePanel(Window &window)
{
    DesktopPanel &panel = window.desktop().panel();
    if (!window.desktop().openPanel() || !waitFor([&] { return panel.window()->isActive(); }))
        qFatal("the panel does not open");
    window.countFramesOf(*panel.window());
    spend(std::chrono::milliseconds(500));
    return measureTyping(window, *panel.window(), *panel.model().field());
}

/// Tells of each "Live …" entry of another device, once the frame that shows it was drawn.
void tellPainted(Window &window, std::size_t count)
{
    const AppModel &app = window.desktop().app();
    QTextStream out(stdout);
    if (!waitFor([&] { return app.live() != nullptr && app.live()->watched(); }))
        qFatal("the window does not hear of changes");
    out << "watching" << Qt::endl;
    std::set<std::string> told;
    QObject::connect(window.desktop().window(), &QQuickWindow::frameSwapped, [&] {
        for (const TimeEntryResponse &entry : app.tracker()->entries()) {
            if (entry.description.starts_with("Live ") && told.insert(entry.id).second)
                out << QString::fromStdString(entry.description) << Qt::endl;
        }
    });
    if (!waitFor([&] { return told.size() == count; }))
        qFatal("a change of another device that no frame shows");
}

/// Nothing is done; what happens all the same.
QJsonObject measureRest(Window &window, int seconds, bool isHidden)
{
    waitFor([&] { return window.desktop().app().sync()->kind() == SyncStatus::Kind::Saved; });
    if (isHidden)
        window.desktop().window()->hide();
    else
        window.desktop().window()->contentItem()->forceActiveFocus();
    spend(std::chrono::seconds(2));
    const qint64 frames = window.frames();
    const qint64 switches = voluntarySwitches();
    const double used = secondsOf(CLOCK_PROCESS_CPUTIME_ID);
    QTimer::singleShot(std::chrono::seconds(seconds), qApp, &QCoreApplication::quit);
    QCoreApplication::exec();
    return {{QStringLiteral("frames"), window.frames() - frames},
            {QStringLiteral("switches"), voluntarySwitches() - switches},
            {QStringLiteral("processor"), 100 * (secondsOf(CLOCK_PROCESS_CPUTIME_ID) - used) / seconds}};
}

} // namespace

} // namespace orvane

int main(int argc, char **argv)
{
    using namespace orvane;
    qputenv("QT_QUICK_BACKEND", "software");
    const QGuiApplication application(argc, argv);
    const QStringList arguments = QCoreApplication::arguments();
    if (arguments.size() < 3)
        return 2;
    Window window(arguments.at(2).toStdString());
    if (!window.opens()) {
        QTextStream(stderr) << "the window does not open" << Qt::endl;
        return 1;
    }
    const QString &what = arguments.at(1);
    const int seconds = arguments.size() > 3 ? arguments.at(3).toInt() : 60;
    if (what == QLatin1String("live")) {
        tellPainted(window, static_cast<std::size_t>(seconds));
        return 0;
    }
    QJsonObject measured;
    if (what == QLatin1String("open"))
        measured = measureOpening(window, qEnvironmentVariable("ORVANE_BENCHMARK_BEGAN").toDouble());
    else if (what == QLatin1String("scroll"))
        measured = measureScrolling(window);
    else if (what == QLatin1String("type"))
        measured = measureTyping(window, *window.desktop().window(), *window.desktop().timer().field());
    else if (what == QLatin1String("panel"))
        measured = measurePanel(window);
    else
        measured = measureRest(window, seconds, what == QLatin1String("hidden"));
    QTextStream(stdout) << QJsonDocument(measured).toJson(QJsonDocument::Compact) << Qt::endl;
    return 0;
}
