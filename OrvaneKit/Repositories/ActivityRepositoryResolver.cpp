// SPDX-License-Identifier: GPL-3.0-or-later
#include "Repositories/ActivityRepositoryResolver.h"

#include "Repositories/GitConfig.h"
#include "Repositories/GitFiles.h"
#include "Repositories/RepositoryIdentity.h"

#include <algorithm>

namespace orvane {

namespace {

using Resolution = ActivityRepositoryResolver::Resolution;

/// An absolute path without "." and "..", double slashes and a slash at its end.
std::string standardPath(std::string_view path)
{
    std::string result;
    while (!path.empty()) {
        const std::string_view part = path.substr(0, path.find('/'));
        path.remove_prefix(std::min(part.size() + 1, path.size()));
        if (part == "..")
            result.resize(result.empty() ? 0 : result.rfind('/'));
        else if (!part.empty() && part != ".")
            result.append("/").append(part);
    }
    return result.empty() ? "/" : result;
}

std::string_view parentOf(std::string_view path)
{
    const std::size_t slash = path.rfind('/');
    return path.substr(0, slash == 0 ? 1 : slash);
}

std::string_view nameOf(std::string_view path)
{
    return path == "/" ? path : path.substr(path.rfind('/') + 1);
}

std::string pathIn(std::string_view folder, std::string_view path)
{
    if (path.starts_with('/'))
        return std::string(path);
    return std::string(folder).append(folder.ends_with('/') ? "" : "/").append(path);
}

/// One and the same text for a folder, however its links were written. A ".." behind a symbolic link leads
/// elsewhere than the text says; then the links are resolved.
std::string standardPathOfLinked(const std::string &path)
{
    std::string standard = standardPath(path);
    if (leadToSamePlace(standard, path))
        return standard;
    return resolvedPath(path).value_or(standard);
}

bool isScratch(const std::string &folder, const std::string &agentFolder)
{
    if (!folder.starts_with(agentFolder))
        return false;
    std::string lower = folder;
    std::ranges::transform(lower, lower.begin(), [](char letter) {
        return letter >= 'A' && letter <= 'Z' ? static_cast<char>(letter - 'A' + 'a') : letter;
    });
    return lower.contains("scratch");
}

/// Looks for a working tree and notes every path that the answer depends on.
class Search {
public:
    Resolution take(std::string_view folder)
    {
        ActivityRepository found;
        if (!findTree(folder, found)) {
            found.key = folder;
            found.name = nameOf(folder);
        }
        found.identity = RepositoryIdentity::of(found.origin, found.key);
        m_resolution.repository = std::make_shared<const ActivityRepository>(std::move(found));
        return std::move(m_resolution);
    }

private:
    bool findTree(std::string_view folder, ActivityRepository &found)
    {
        for (; folder != "/"; folder = parentOf(folder)) {
            // Too deep to exist; noting each of its many parents would take the square of its length.
            if (folder.size() > longestPath)
                continue;
            const std::string git = pathIn(folder, ".git");
            const PathKind kind = look(git);
            if (kind != PathKind::file && kind != PathKind::folder)
                continue;
            found.key = folder;
            found.isRepository = true;
            if (kind == PathKind::folder)
                readConfig(git, found);
            else
                followGitFile(git, found);
            found.name = nameOf(found.key);
            return true;
        }
        return false;
    }

    void followGitFile(const std::string &path, ActivityRepository &found)
    {
        const auto text = readGitFile(path);
        const auto link = text ? linkedGitFolder(*text) : std::nullopt;
        if (!link)
            return;
        const std::string git = standardPathOfLinked(pathIn(found.key, *link));
        const auto shared = sharedFolder(git);
        readConfig(shared.value_or(git), found);
        if (!shared || kindOfPath(*shared) != PathKind::folder)
            return;
        // The folder of a bare repository stands for all its worktrees, since it has no main one.
        found.key = nameOf(*shared).starts_with('.') ? parentOf(*shared) : std::string_view(*shared);
    }

    std::optional<std::string> sharedFolder(const std::string &git)
    {
        const auto text = read(pathIn(git, "commondir"));
        const auto link = text ? linkedCommonFolder(*text) : std::nullopt;
        return link ? std::optional(standardPathOfLinked(pathIn(git, *link))) : std::nullopt;
    }

    void readConfig(const std::string &git, ActivityRepository &found)
    {
        if (const auto text = read(pathIn(git, "config")))
            found.origin = GitConfig::origin(*text);
    }

    std::optional<std::string> read(const std::string &path)
    {
        return look(path) == PathKind::file ? readGitFile(path) : std::nullopt;
    }

    PathKind look(const std::string &path)
    {
        const PathKind kind = kindOfPath(path);
        (kind == PathKind::missing ? m_resolution.missing : m_resolution.dependencies).push_back(path);
        return kind;
    }

    Resolution m_resolution;
};

} // namespace

ActivityRepositoryResolver::ActivityRepositoryResolver(std::string_view home) : m_home(standardPath(home)) {}

std::string ActivityRepositoryResolver::standardFolder(std::string_view folder) const
{
    return standardPath(pathIn(m_home, folder));
}

Resolution ActivityRepositoryResolver::resolve(std::string_view folder) const
{
    const std::string standard = standardFolder(folder);
    const std::string agentFolder = pathIn(m_home, "Library/Application Support/Claude/");
    if (!isScratch(standard, agentFolder))
        return Search().take(standard);
    ActivityRepository scratch;
    scratch.key = agentFolder + "scratch";
    scratch.name = "Scratch";
    scratch.identity = RepositoryIdentity::of({}, scratch.key);
    return {std::make_shared<const ActivityRepository>(std::move(scratch)), {}, {}};
}

} // namespace orvane
