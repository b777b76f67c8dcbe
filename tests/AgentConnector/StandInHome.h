// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "support/Await.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QTemporaryDir>
#include <cerrno>
#include <csignal>
#include <fstream>
#include <gtest/gtest.h>
#include <map>
#include <sstream>
#include <string>
#include <vector>

namespace orvane::testing {

/// A home folder with stand-ins for the agents' commands in ~/.local/bin, which no start-up file puts on the
/// path. What one does for a verb ("add") is a piece of shell script.
class StandInHome {
public:
    std::string path() const { return m_folder.path().toStdString(); }
    std::string file(const std::string &name) const { return path() + "/" + name; }
    std::map<std::string, std::string> environment(const std::string &shell) const
    {
        return {{"HOME", path()}, {"SHELL", shell}, {"PATH", "/usr/bin:/bin"}, {"TERM", "dumb"}};
    }

    void write(const std::string &name, const std::string &text) const
    {
        QFileInfo(QString::fromStdString(file(name))).dir().mkpath(QStringLiteral("."));
        std::ofstream(file(name)) << text;
    }
    std::vector<std::string> lines(const std::string &name) const
    {
        std::ifstream stream(file(name));
        std::vector<std::string> lines;
        for (std::string line; std::getline(stream, line);)
            lines.push_back(line);
        return lines;
    }

    void install(const std::string &tool) const
    {
        const std::string name = ".local/bin/" + tool;
        write(name, "#!/bin/sh\n"
                    "where=\n[ -t 0 ] && [ -t 1 ] && where=' (on a terminal)'\n"
                    "echo \"${0##*/} $*$where\" >> \"$HOME/calls\"\n"
                    "[ -f \"$HOME/does-$2\" ] && . \"$HOME/does-$2\"\n"
                    "exit 0\n");
        QFile::setPermissions(QString::fromStdString(file(name)),
                              QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
    }
    void does(const std::string &verb, const std::string &script) const
    {
        write("does-" + verb, script + "\n");
    }
    std::vector<std::string> calls() const { return lines("calls"); }

    /// For scripts: `descend` leaves processes of all kinds behind, whose numbers stand in the file "pids".
    static std::string descend()
    {
        return "note() { echo \"$1\" >> \"$HOME/pids\"; }\n"
               "sleep 300 & note $!\n"
               "setsid sh -c 'echo $$ >> \"$HOME/pids\"; echo $$ > \"$HOME/leader\"; exec sleep 300' &\n"
               "setsid sh -c 'sh -c \"trap : TERM; echo \\$\\$ >> \\\"$HOME/pids\\\"; while :; do sleep 300; "
               "done\" &'\n"
               "while [ \"$(wc -l < \"$HOME/pids\")\" -lt 3 ]; do sleep 0.02; done\n";
    }
    std::vector<pid_t> descendants() const
    {
        std::vector<pid_t> pids;
        for (const std::string &line : lines("pids"))
            pids.push_back(std::stoi(line));
        return pids;
    }
    static bool lives(pid_t pid) { return ::kill(pid, 0) == 0 || errno != ESRCH; }
    std::vector<pid_t> living() const
    {
        std::vector<pid_t> pids = descendants();
        std::erase_if(pids, [](pid_t pid) { return !lives(pid); });
        return pids;
    }

private:
    QTemporaryDir m_folder;
};

/// Makes it this process's home, with bash for a shell, for what is made meanwhile.
class HomeInUse {
public:
    explicit HomeInUse(const StandInHome &home) : m_home(qgetenv("HOME")), m_shell(qgetenv("SHELL"))
    {
        qputenv("HOME", QByteArray::fromStdString(home.path()));
        qputenv("SHELL", "/bin/bash");
    }
    ~HomeInUse()
    {
        qputenv("HOME", m_home);
        qputenv("SHELL", m_shell);
    }
    HomeInUse(const HomeInUse &) = delete;
    HomeInUse &operator=(const HomeInUse &) = delete;

private:
    QByteArray m_home;
    QByteArray m_shell;
};

} // namespace orvane::testing
