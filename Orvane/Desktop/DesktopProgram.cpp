// SPDX-License-Identifier: GPL-3.0-or-later
#include "Desktop/DesktopProgram.h"

#include "AppModel/SingleInstance.h"
#include "Desktop/DesktopWindow.h"
#include "SignIn/AgentCallback.h"
#include "SignIn/CallbackSocket.h"
#include "Support/DateText.h"
#include "Time/AppClock.h"

#include <QCommandLineParser>
#include <QGuiApplication>
#include <QTextStream>

namespace orvane {

namespace {

/// What the command line says, or the sentence that tells what is wrong with it.
struct DesktopOptions {
    AppModel::Options app;
    bool isPanelAlone = false;
    /// What a browser was sent to; the system starts the program with it.
    QString callback;
    QString problem;
};

DesktopOptions readOptions(const QGuiApplication &application)
{
    QCommandLineParser parser;
    parser.setApplicationDescription(QStringLiteral("Orvane's window."));
    parser.addHelpOption();
    parser.addVersionOption();
    parser.addOption({QStringLiteral("server"), QStringLiteral("Another server than the one signed in to."),
                      QStringLiteral("URL")});
    parser.addOption(
        {QStringLiteral("data-dir"), QStringLiteral("Another folder for data."), QStringLiteral("DIR")});
    parser.addOption(
        {QStringLiteral("no-start-server"), QStringLiteral("Do not start the server on this computer.")});
    parser.addOption({QStringLiteral("panel"), QStringLiteral("Only the panel, for one sentence.")});
    parser.process(application);
    DesktopOptions options;
    options.app.folder = parser.value(QStringLiteral("data-dir")).toStdString();
    if (parser.isSet(QStringLiteral("server")))
        options.app.server = parser.value(QStringLiteral("server")).toStdString();
    const QStringList words = parser.positionalArguments();
    if (!words.isEmpty() && words.first().startsWith(QLatin1String("orvane:")))
        options.callback = words.first();
    options.isPanelAlone = parser.isSet(QStringLiteral("panel"));
    options.app.startsServer = !parser.isSet(QStringLiteral("no-start-server"));
    if (options.app.folder.empty() && !Installation::hasUsualPlace())
        options.problem = QStringLiteral("There is no home folder; name one with --data-dir.");
    return options;
}

/// The clock starts where ORVANE_NOW says. The variable goes away, since a server that is started keeps the
/// system's time.
bool setClock()
{
    const QByteArray text = qgetenv("ORVANE_NOW");
    qunsetenv("ORVANE_NOW");
    const auto now = text.isEmpty() ? std::optional(AppClock::now()) : instantFromIso8601(text.toStdString());
    if (now && !text.isEmpty())
        AppClock::setNow(*now);
    return now.has_value();
}

} // namespace

int runDesktop(int argc, char **argv)
{
    QGuiApplication::setApplicationName(QStringLiteral("Orvane"));
    QGuiApplication::setApplicationVersion(QStringLiteral(ORVANE_VERSION));
    QGuiApplication application(argc, argv);
    DesktopOptions options = readOptions(application);
    if (!setClock())
        options.problem = QStringLiteral("ORVANE_NOW wants an instant such as 2026-03-01T09:30:00Z.");
    if (!options.problem.isEmpty()) {
        QTextStream(stderr) << options.problem << Qt::endl;
        return 2;
    }
    if (!options.callback.isEmpty()) {
        const std::string address = options.callback.toStdString();
        const bool isTaken = CallbackSocket::deliver(CallbackSocket::usualFolder(), address);
        // An agent can ask at any time; of a sign-in, nobody has to wait for it any more.
        if (isTaken || !AgentCallback::read(address))
            return 0;
    }
    std::string problem;
    const Installation installation(options.app.folder);
    if (!installation.makeFolder(problem)) {
        QTextStream(stderr) << QString::fromStdString(problem) << Qt::endl;
        return 1;
    }
    SingleInstance instance(installation.root());
    using Wish = SingleInstance::Wish;
    const Wish wished = !options.callback.isEmpty() ? Wish::agent
                        : options.isPanelAlone      ? Wish::panel
                                                    : Wish::raise;
    if (!instance.takeOrHandOver(wished, options.callback))
        return 0;
    DesktopWindow desktop(std::move(options.app));
    QObject::connect(&instance, &SingleInstance::wished, &desktop, [&](Wish wish, const QString &detail) {
        if (wish == Wish::panel)
            desktop.openPanel();
        else if (wish == Wish::agent)
            desktop.settings().agents()->asking()->take(detail);
        else
            desktop.raise();
    });
    QObject::connect(&desktop, &DesktopWindow::panelFinishedAlone, &application, &QGuiApplication::quit);
    QObject::connect(
        &desktop, &DesktopWindow::failed, &application, [] { QGuiApplication::exit(1); },
        Qt::QueuedConnection);
    bool isShown = true;
    if (wished == Wish::panel)
        isShown = desktop.openPanel();
    else
        desktop.show();
    if (wished == Wish::agent)
        desktop.settings().agents()->asking()->take(options.callback);
    const int status = isShown ? QGuiApplication::exec() : 1;
    instance.retire();
    QCoro::waitFor(desktop.close());
    return status;
}

} // namespace orvane
