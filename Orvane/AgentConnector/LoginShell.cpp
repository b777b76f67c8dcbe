// SPDX-License-Identifier: GPL-3.0-or-later
#include "AgentConnector/LoginShell.h"

#include "AgentConnector/AgentCommands.h"

#include <QProcessEnvironment>
#include <algorithm>
#include <array>
#include <string_view>

namespace orvane {

namespace {

std::string valueOf(const ProcessEnvironment &environment, const char *name, const char *otherwise)
{
    const auto found = environment.find(name);
    return found == environment.end() || found->second.empty() ? otherwise : found->second;
}

bool isOnPath(std::string_view path, std::string_view folder)
{
    return (":" + std::string(path) + ":").contains(":" + std::string(folder) + ":");
}

std::string quotedFolders(const std::vector<std::string> &folders)
{
    std::string text;
    for (const std::string &folder : folders)
        text += " " + quotedArgument(folder);
    return text;
}

enum class Language { unknown, posix, fish };

Language languageOf(const std::string &shell)
{
    const std::string name = shell.substr(shell.rfind('/') + 1);
    constexpr std::array posix{"bash", "zsh", "sh", "dash", "ksh", "mksh", "ash", "yash"};
    if (name == "fish")
        return Language::fish;
    return std::ranges::find(posix, name) == posix.end() ? Language::unknown : Language::posix;
}

} // namespace

ProcessEnvironment currentEnvironment()
{
    const QProcessEnvironment system = QProcessEnvironment::systemEnvironment();
    ProcessEnvironment environment;
    for (const QString &name : system.keys())
        environment.emplace(name.toLocal8Bit().toStdString(), system.value(name).toLocal8Bit().toStdString());
    environment.erase("ORVANE_NOW");
    return environment;
}

std::string loginShell(const ProcessEnvironment &environment)
{
    return valueOf(environment, "SHELL", "/bin/zsh");
}

std::vector<std::string> toolFolders(const ProcessEnvironment &environment)
{
    const std::string home = valueOf(environment, "HOME", "");
    std::vector<std::string> folders{home + "/.local/bin",     home + "/.claude/local", "/opt/homebrew/bin",
                                     "/usr/local/bin",         home + "/.bun/bin",      home + "/.volta/bin",
                                     home + "/.npm-global/bin"};
    if (home.empty())
        std::erase_if(folders, [](const std::string &folder) { return folder.starts_with("/."); });
    return folders;
}

std::string searchPath(const ProcessEnvironment &environment)
{
    std::string path = valueOf(environment, "PATH", "/usr/bin:/bin:/usr/sbin:/sbin");
    for (const std::string &folder : toolFolders(environment)) {
        if (!isOnPath(path, folder))
            path += ":" + folder;
    }
    return path;
}

std::string pathAssignment(const std::string &shell, const std::vector<std::string> &folders)
{
    switch (languageOf(shell)) {
    case Language::fish:
        return "for orvane_folder in" + quotedFolders(folders) +
               "; contains -- $orvane_folder $PATH; or set -gx PATH $PATH $orvane_folder; end; ";
    case Language::posix:
        return "for orvane_folder in" + quotedFolders(folders) +
               "; do case \":$PATH:\" in *\":$orvane_folder:\"*) ;; *) PATH=\"$PATH:$orvane_folder\";; esac; "
               "done; export PATH; ";
    case Language::unknown:
        break;
    }
    return {};
}

std::string variableAssignment(const std::string &shell, const std::string &name, const std::string &value)
{
    switch (languageOf(shell)) {
    case Language::fish:
        return "set -gx " + name + " " + quotedArgument(value) + "; ";
    case Language::posix:
        return "export " + name + "=" + quotedArgument(value) + "; ";
    case Language::unknown:
        break;
    }
    return {};
}

} // namespace orvane
