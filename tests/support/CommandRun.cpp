// SPDX-License-Identifier: GPL-3.0-or-later
#include "support/CommandRun.h"

#include "Support/FileLock.h"
#include "support/Await.h"
#include "support/KernelKeys.h"

#include <QDeadlineTimer>
#include <QDir>
#include <QJsonDocument>
#include <QLocalSocket>
#include <QProcess>
#include <csignal>

namespace orvane {

namespace {

constexpr int limitMs = 60'000;

QProcessEnvironment bareEnvironment(const Environment &changes)
{
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    for (const char *name :
         {"DBUS_SESSION_BUS_ADDRESS", "DISPLAY", "WAYLAND_DISPLAY", "ORVANE_NOW", "NO_COLOR"})
        environment.remove(QLatin1String(name));
    environment.insert(QStringLiteral("LC_ALL"), QStringLiteral("C.UTF-8"));
    for (const auto &[name, value] : changes) {
        if (value)
            environment.insert(QString::fromStdString(name), QString::fromStdString(*value));
        else
            environment.remove(QString::fromStdString(name));
    }
    return environment;
}

QStringList texts(const Arguments &arguments)
{
    QStringList list;
    for (const std::string &argument : arguments)
        list.append(QString::fromStdString(argument));
    return list;
}

} // namespace

QJsonObject CommandRun::object() const
{
    return QJsonDocument::fromJson(QByteArray::fromStdString(output)).object();
}

QJsonArray CommandRun::array() const
{
    return QJsonDocument::fromJson(QByteArray::fromStdString(output)).array();
}

std::string CommandRun::all() const
{
    return "exit status " + std::to_string(exitStatus) + "\n--- output\n" + output + "--- errors\n" + errors;
}

std::string builtProgram(const std::string &name)
{
    return ORVANE_BIN_DIR "/" + name;
}

CommandRun runProgram(const std::string &program, const Arguments &arguments, const Environment &environment,
                      const std::string &input, const std::function<void()> &inChild)
{
    QProcess process;
    process.setChildProcessModifier(inChild);
    process.setProcessEnvironment(bareEnvironment(environment));
    process.start(QString::fromStdString(program), texts(arguments));
    process.write(QByteArray::fromStdString(input));
    process.closeWriteChannel();
    CommandRun run;
    const bool ended = process.waitForFinished(limitMs);
    if (!ended)
        process.kill();
    run.output = process.readAllStandardOutput().toStdString();
    run.errors = process.readAllStandardError().toStdString();
    if (ended && process.exitStatus() == QProcess::NormalExit)
        run.exitStatus = process.exitCode();
    return run;
}

TestInstallation::TestInstallation() = default;

TestInstallation::~TestInstallation()
{
    killServer();
    testing::forgetKernelKeys(folder());
}

std::string TestInstallation::folder() const
{
    return m_folder.path().toStdString();
}

Arguments TestInstallation::withFolder(Arguments arguments) const
{
    arguments.insert(arguments.begin(), {"--data-dir", folder()});
    return arguments;
}

CommandRun TestInstallation::run(const Arguments &arguments, const std::string &input) const
{
    return runProgram(builtProgram("orvane"), withFolder(arguments), environment, input, inChild);
}

CommandRun TestInstallation::json(const Arguments &arguments, const std::string &input) const
{
    Arguments all = arguments;
    all.insert(all.begin(), "--json");
    return run(all, input);
}

std::unique_ptr<QProcess> TestInstallation::start(const Arguments &arguments) const
{
    auto process = std::make_unique<QProcess>();
    process->setProcessEnvironment(bareEnvironment(environment));
    if (inChild)
        process->setChildProcessModifier(inChild);
    process->start(QString::fromStdString(builtProgram("orvane")), texts(withFolder(arguments)));
    return process;
}

std::optional<ServerHello> TestInstallation::hello() const
{
    return helloFrom(serverFolder());
}

bool TestInstallation::killServer() const
{
    return killServerOf(serverFolder());
}

std::optional<ServerHello> helloFrom(const std::string &serverFolder)
{
    QLocalSocket socket;
    socket.connectToServer(QString::fromStdString(serverFolder + "/run/server.sock"));
    if (!socket.waitForConnected(1000))
        return {};
    socket.write("{\"command\":\"hello\"}\n");
    const QDeadlineTimer deadline(5000);
    while (!socket.canReadLine()) {
        if (!socket.waitForReadyRead(static_cast<int>(deadline.remainingTime())))
            return {};
    }
    const QJsonObject answer = QJsonDocument::fromJson(socket.readLine()).object();
    if (!answer.contains(QLatin1String("pid")))
        return {};
    return ServerHello{answer[QLatin1String("address")].toString().toStdString(),
                       answer[QLatin1String("pid")].toInteger()};
}

bool killServerOf(const std::string &serverFolder)
{
    const auto running = helloFrom(serverFolder);
    if (!running || ::kill(static_cast<pid_t>(running->pid), SIGKILL) != 0)
        return false;
    // The lock tells more than the process table, where the dead server may stay as a zombie of somebody
    // else.
    return testing::await(
        lockWithin(std::make_shared<FileLock>(serverFolder + "/server.lock"), std::chrono::seconds{10}));
}

} // namespace orvane
