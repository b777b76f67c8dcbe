// SPDX-License-Identifier: GPL-3.0-or-later
#include "MyData/DataArchive.h"

#include <algorithm>
#include <archive.h>
#include <archive_entry.h>
#include <memory>

namespace orvane::server {

namespace {

using Archive = std::unique_ptr<archive, int (*)(archive *)>;
using Entry = std::unique_ptr<archive_entry, void (*)(archive_entry *)>;

la_ssize_t append(archive *, void *target, const void *bytes, std::size_t length)
{
    static_cast<std::string *>(target)->append(static_cast<const char *>(bytes), length);
    return static_cast<la_ssize_t>(length);
}

bool add(archive *archive, const ArchiveFile &file, Instant time)
{
    const Entry entry(archive_entry_new(), archive_entry_free);
    if (!entry)
        return false;
    const auto seconds = std::chrono::floor<std::chrono::seconds>(time).time_since_epoch().count();
    archive_entry_set_pathname_utf8(entry.get(), file.name.c_str());
    archive_entry_set_filetype(entry.get(), AE_IFREG);
    archive_entry_set_perm(entry.get(), 0600);
    archive_entry_set_mtime(entry.get(), seconds, 0);
    archive_entry_set_size(entry.get(), static_cast<la_int64_t>(file.content.size()));
    const auto length = static_cast<la_ssize_t>(file.content.size());
    return archive_write_header(archive, entry.get()) == ARCHIVE_OK &&
           archive_write_data(archive, file.content.data(), file.content.size()) == length;
}

} // namespace

std::optional<std::string> zipped(const std::vector<ArchiveFile> &files, Instant time)
{
    std::string bytes;
    const Archive archive(archive_write_new(), archive_write_free);
    // Names are written as UTF-8 whatever this process's language is.
    if (!archive || archive_write_set_format_zip(archive.get()) != ARCHIVE_OK ||
        archive_write_set_options(archive.get(), "hdrcharset=UTF-8") < ARCHIVE_WARN ||
        archive_write_open(archive.get(), &bytes, nullptr, append, nullptr) != ARCHIVE_OK)
        return std::nullopt;
    const bool isWhole =
        std::ranges::all_of(files, [&](const ArchiveFile &file) { return add(archive.get(), file, time); });
    if (!isWhole || archive_write_close(archive.get()) != ARCHIVE_OK)
        return std::nullopt;
    return bytes;
}

std::string fileNameOf(const std::string &name)
{
    std::string safe = name;
    std::ranges::replace_if(
        safe, [](char c) { return std::string_view("/\\:*?\"<>|").find(c) != std::string_view::npos; }, '-');
    return safe == "." || safe == ".." ? "-" : safe;
}

} // namespace orvane::server
