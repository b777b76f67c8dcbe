// SPDX-License-Identifier: GPL-3.0-or-later
#include "LocalStore/StoreError.h"

namespace orvane {

namespace {

const char *whatHappened(StoreError::Kind kind)
{
    switch (kind) {
    case StoreError::Kind::notADatabase:
        return " is damaged or is not a database; it was left as it is";
    case StoreError::Kind::readOnly:
        return " cannot be written to";
    case StoreError::Kind::locked:
        return " is in use by another program; try again in a moment";
    case StoreError::Kind::full:
        return " could not take the change because the disk, or your share of it, is full";
    case StoreError::Kind::cannotOpen:
        return " cannot be opened";
    case StoreError::Kind::other:
        break;
    }
    return " could not be read or written";
}

} // namespace

std::string describe(const StoreError &error)
{
    std::string text = "The file that keeps your time on this computer";
    if (!error.file.empty())
        text += " (" + error.file + ")";
    return text + whatHappened(error.kind) + ": " + error.message + ".";
}

} // namespace orvane
