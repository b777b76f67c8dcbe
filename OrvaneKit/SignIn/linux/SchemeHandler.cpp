// SPDX-License-Identifier: GPL-3.0-or-later
#include "SignIn/SchemeHandler.h"

#include <QDir>
#include <QFile>
#include <QProcess>
#include <QSaveFile>
#include <QStandardPaths>
#include <algorithm>
#include <string_view>

namespace orvane {

namespace {

const QString entryName = QStringLiteral("orvane-sign-in.desktop");
const QString schemeType = QStringLiteral("x-scheme-handler/orvane");
constexpr int patience = 3000; // milliseconds

bool isPlain(char c)
{
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') ||
           std::string_view("/._-+@,:").contains(c);
}

/// A word of an Exec line, where a backslash counts once for the file and once for the word. Quoted only
/// where it has to be: not every reader of such lines knows quotes.
QByteArray execWord(const std::string &path)
{
    if (std::ranges::all_of(path, isPlain))
        return QByteArray::fromStdString(path);
    QByteArray word = "\"";
    for (const char c : path) {
        if (c == '"' || c == '`' || c == '$')
            word += "\\\\";
        else if (c == '\\')
            word += "\\\\\\";
        else if (c == '%')
            word += '%';
        word += c;
    }
    return word + '"';
}

QByteArray entryFor(const std::string &program)
{
    return "[Desktop Entry]\nType=Application\nName=Orvane\nNoDisplay=true\nTerminal=false\nExec=" +
           execWord(program) + " %u\nMimeType=" + schemeType.toLatin1() + ";\n";
}

bool keep(const QString &path, const QByteArray &content)
{
    QFile before(path);
    if (before.open(QIODevice::ReadOnly) && before.readAll() == content)
        return true;
    QSaveFile file(path);
    return file.open(QIODevice::WriteOnly) && file.write(content) == content.size() && file.commit();
}

QByteArray answerOf(const QStringList &arguments, bool &isDone)
{
    QProcess process;
    process.start(QStringLiteral("xdg-mime"), arguments);
    isDone = process.waitForFinished(patience) && process.exitStatus() == QProcess::NormalExit &&
             process.exitCode() == 0;
    return process.readAllStandardOutput().trimmed();
}

} // namespace

bool registerSchemeHandler(const std::string &program)
{
    const QString folder = QStandardPaths::writableLocation(QStandardPaths::ApplicationsLocation);
    if (!QDir().mkpath(folder) || !keep(folder + u'/' + entryName, entryFor(program)))
        return false;
    bool isDone = false;
    if (answerOf({QStringLiteral("query"), QStringLiteral("default"), schemeType}, isDone) ==
        entryName.toLatin1())
        return isDone;
    answerOf({QStringLiteral("default"), entryName, schemeType}, isDone);
    return isDone;
}

} // namespace orvane
