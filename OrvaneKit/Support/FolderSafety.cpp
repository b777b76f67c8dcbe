// SPDX-License-Identifier: GPL-3.0-or-later
#include "Support/FolderSafety.h"

#include <sys/stat.h>
#include <unistd.h>

namespace orvane {

namespace {

bool isTrusted(uid_t user)
{
    return user == ::geteuid() || user == 0;
}

} // namespace

std::string folderFault(const std::string &path)
{
    struct stat named{};
    struct stat folder{};
    if (::lstat(path.c_str(), &named) != 0 || ::stat(path.c_str(), &folder) != 0)
        return {};
    if (S_ISLNK(named.st_mode) && !isTrusted(named.st_uid))
        return "It is a link that another user of this computer made.";
    if (folder.st_uid != ::geteuid())
        return "It belongs to another user of this computer.";
    // The sticky bit keeps others from removing what is there, not from putting links where files will be.
    if ((folder.st_mode & (S_IWGRP | S_IWOTH)) != 0)
        return "Other users of this computer can write to it. To make it yours alone: chmod 700 FOLDER";
    struct stat above{};
    const bool isReplaceable = ::stat((path + "/..").c_str(), &above) == 0 &&
                               (above.st_mode & S_IWOTH) != 0 && (above.st_mode & S_ISVTX) == 0;
    return isReplaceable ? "Other users of this computer can write to the folder above it." : "";
}

} // namespace orvane
