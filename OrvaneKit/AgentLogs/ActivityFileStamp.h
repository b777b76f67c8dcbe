// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Support/Json.h"

#include <cstdint>
#include <functional>
#include <optional>
#include <string>

struct stat;

namespace orvane {

/// What one look at a file or folder tells about it without opening it. Two stamps that differ in anything
/// mean that it changed; another device or inode means that it was replaced. Any thread.
struct ActivityFileStamp {
    std::int64_t device = 0;
    std::int64_t inode = 0;
    std::int64_t size = 0;    ///< bytes
    std::int64_t seconds = 0; ///< last modification
    std::int64_t nanoseconds = 0;
    std::int64_t changeSeconds = 0; ///< last change of the entry itself
    std::int64_t changeNanoseconds = 0;
    std::int64_t mode = 0;
    bool isDirectory = false;
    bool isRegularFile = false;

    bool operator==(const ActivityFileStamp &) const = default;

    /// Follows links. Nothing when there is no such file or it cannot be looked at.
    static std::optional<ActivityFileStamp> of(const std::string &path);
    static ActivityFileStamp of(const struct stat &status);
    bool isSameFile(const ActivityFileStamp &other) const
    {
        return device == other.device && inode == other.inode;
    }
};

template <>
struct JsonFields<ActivityFileStamp> {
    static constexpr auto list =
        JsonFieldList{jsonField<"device">(&ActivityFileStamp::device),
                      jsonField<"inode">(&ActivityFileStamp::inode),
                      jsonField<"size">(&ActivityFileStamp::size),
                      jsonField<"seconds">(&ActivityFileStamp::seconds),
                      jsonField<"nanoseconds">(&ActivityFileStamp::nanoseconds),
                      jsonField<"changeSeconds">(&ActivityFileStamp::changeSeconds),
                      jsonField<"changeNanoseconds">(&ActivityFileStamp::changeNanoseconds),
                      jsonField<"mode">(&ActivityFileStamp::mode),
                      jsonField<"isDirectory">(&ActivityFileStamp::isDirectory),
                      jsonField<"isRegularFile">(&ActivityFileStamp::isRegularFile)};
};

} // namespace orvane

template <>
struct std::hash<orvane::ActivityFileStamp> {
    std::size_t operator()(const orvane::ActivityFileStamp &stamp) const noexcept
    {
        std::size_t hash = 0;
        for (const std::int64_t part : {stamp.device, stamp.inode, stamp.size, stamp.seconds,
                                        stamp.nanoseconds, stamp.changeNanoseconds})
            hash = (hash ^ static_cast<std::size_t>(part)) * 0x9E37'79B9'7F4A'7C15U;
        return hash;
    }
};
