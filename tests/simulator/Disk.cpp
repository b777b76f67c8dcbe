// SPDX-License-Identifier: GPL-3.0-or-later
#include "simulator/Disk.h"

#include <algorithm>
#include <cstring>
#include <fcntl.h>
#include <sqlite3.h>
#include <sys/stat.h>
#include <unistd.h>

namespace orvane::simulator {

namespace {

sqlite3_vfs *systemLayer()
{
    static sqlite3_vfs *const layer = sqlite3_vfs_find(nullptr);
    return layer;
}

DiskAccess &accessOf(sqlite3_vfs *layer)
{
    return *static_cast<DiskAccess *>(layer->pAppData);
}

/// An open file: ours in front, the system's right behind it.
struct File {
    sqlite3_file base;
    DiskAccess *access;
    std::string *path;
};

File &ours(sqlite3_file *file)
{
    return *reinterpret_cast<File *>(file);
}

sqlite3_file *real(sqlite3_file *file)
{
    return reinterpret_cast<sqlite3_file *>(reinterpret_cast<char *>(file) + sizeof(File));
}

const sqlite3_io_methods &realMethods(sqlite3_file *file)
{
    return *real(file)->pMethods;
}

/// What a change from `offset` on would destroy.
Disk::Write remembered(sqlite3_file *file, std::int64_t offset, std::int64_t length)
{
    Disk::Write write;
    write.offset = offset;
    sqlite3_int64 size = 0;
    realMethods(file).xFileSize(real(file), &size);
    write.sizeBefore = size;
    const std::int64_t kept = std::clamp<std::int64_t>(size - offset, 0, length);
    write.before.resize(static_cast<std::size_t>(kept));
    if (kept > 0)
        realMethods(file).xRead(real(file), write.before.data(), static_cast<int>(kept), offset);
    return write;
}

int closeFile(sqlite3_file *file)
{
    const int code = realMethods(file).xClose(real(file));
    delete ours(file).path;
    return code;
}

int readFile(sqlite3_file *file, void *into, int amount, sqlite3_int64 offset)
{
    return realMethods(file).xRead(real(file), into, amount, offset);
}

int writeFile(sqlite3_file *file, const void *from, int amount, sqlite3_int64 offset)
{
    if (!ours(file).access->takesWrite())
        return SQLITE_FULL;
    ours(file).access->disk().wrote(*ours(file).path, remembered(file, offset, amount));
    return realMethods(file).xWrite(real(file), from, amount, offset);
}

int truncateFile(sqlite3_file *file, sqlite3_int64 size)
{
    if (!ours(file).access->takesWrite())
        return SQLITE_IOERR_TRUNCATE;
    ours(file).access->disk().wrote(*ours(file).path, remembered(file, size, INT32_MAX));
    return realMethods(file).xTruncate(real(file), size);
}

int syncFile(sqlite3_file *file, int)
{
    if (ours(file).access->isDead())
        return SQLITE_IOERR_FSYNC;
    ours(file).access->disk().synced(*ours(file).path);
    return SQLITE_OK;
}

int sizeOfFile(sqlite3_file *file, sqlite3_int64 *size)
{
    return realMethods(file).xFileSize(real(file), size);
}

int lockFile(sqlite3_file *file, int lock)
{
    return realMethods(file).xLock(real(file), lock);
}

int unlockFile(sqlite3_file *file, int lock)
{
    return realMethods(file).xUnlock(real(file), lock);
}

int checkReservedLock(sqlite3_file *file, int *result)
{
    return realMethods(file).xCheckReservedLock(real(file), result);
}

int controlFile(sqlite3_file *file, int operation, void *argument)
{
    return realMethods(file).xFileControl(real(file), operation, argument);
}

int sectorSize(sqlite3_file *file)
{
    return realMethods(file).xSectorSize(real(file));
}

int characteristics(sqlite3_file *file)
{
    return realMethods(file).xDeviceCharacteristics(real(file));
}

int mapShared(sqlite3_file *file, int page, int size, int extend, void volatile **memory)
{
    return realMethods(file).xShmMap(real(file), page, size, extend, memory);
}

int lockShared(sqlite3_file *file, int offset, int count, int flags)
{
    return realMethods(file).xShmLock(real(file), offset, count, flags);
}

void barrier(sqlite3_file *file)
{
    realMethods(file).xShmBarrier(real(file));
}

int unmapShared(sqlite3_file *file, int remove)
{
    return realMethods(file).xShmUnmap(real(file), ours(file).access->isDead() ? 0 : remove);
}

constexpr sqlite3_io_methods methods{.iVersion = 2,
                                     .xClose = closeFile,
                                     .xRead = readFile,
                                     .xWrite = writeFile,
                                     .xTruncate = truncateFile,
                                     .xSync = syncFile,
                                     .xFileSize = sizeOfFile,
                                     .xLock = lockFile,
                                     .xUnlock = unlockFile,
                                     .xCheckReservedLock = checkReservedLock,
                                     .xFileControl = controlFile,
                                     .xSectorSize = sectorSize,
                                     .xDeviceCharacteristics = characteristics,
                                     .xShmMap = mapShared,
                                     .xShmLock = lockShared,
                                     .xShmBarrier = barrier,
                                     .xShmUnmap = unmapShared,
                                     .xFetch = nullptr,
                                     .xUnfetch = nullptr};

int openFile(sqlite3_vfs *layer, const char *name, sqlite3_file *file, int flags, int *outFlags)
{
    ours(file).base.pMethods = nullptr;
    const int code = systemLayer()->xOpen(systemLayer(), name, real(file), flags, outFlags);
    if (code != SQLITE_OK)
        return code;
    ours(file).access = &accessOf(layer);
    ours(file).path = new std::string(name != nullptr ? name : "");
    ours(file).base.pMethods = &methods;
    return SQLITE_OK;
}

int deleteFile(sqlite3_vfs *layer, const char *name, int syncFolder)
{
    if (!accessOf(layer).takesWrite())
        return SQLITE_IOERR_DELETE;
    accessOf(layer).disk().removed(name);
    return systemLayer()->xDelete(systemLayer(), name, syncFolder);
}

} // namespace

int Disk::loseUnsynced(Random &random)
{
    int lost = 0;
    for (auto &[file, writes] : m_unsynced) {
        const int descriptor = ::open(file.c_str(), O_RDWR | O_CLOEXEC);
        for (auto write = writes.rbegin(); descriptor >= 0 && write != writes.rend(); ++write) {
            if (random.chance(40))
                continue;
            ++lost;
            [[maybe_unused]] const auto written =
                ::pwrite(descriptor, write->before.data(), write->before.size(), write->offset);
            struct stat info{};
            // What lay beyond the old end is gone, unless a later write that was kept reaches further.
            if (::fstat(descriptor, &info) == 0 && info.st_size > write->sizeBefore &&
                write == writes.rbegin()) [[maybe_unused]]
                const int cut = ::ftruncate(descriptor, write->sizeBefore);
        }
        if (descriptor >= 0)
            ::close(descriptor);
    }
    m_unsynced.clear();
    return lost;
}

DiskAccess::DiskAccess(std::shared_ptr<Disk> disk)
    : m_disk(std::move(disk)), m_layer(new sqlite3_vfs(*systemLayer()))
{
    static std::uint64_t count = 0;
    m_name = "simulated-" + std::to_string(++count);
    m_layer->zName = m_name.c_str();
    m_layer->pNext = nullptr;
    m_layer->szOsFile = static_cast<int>(sizeof(File)) + systemLayer()->szOsFile;
    m_layer->pAppData = this;
    m_layer->xOpen = openFile;
    m_layer->xDelete = deleteFile;
    sqlite3_vfs_register(m_layer.get(), 0);
}

DiskAccess::~DiskAccess()
{
    sqlite3_vfs_unregister(m_layer.get());
}

bool DiskAccess::takesWrite()
{
    if (m_writesLeft && --*m_writesLeft <= 0)
        m_isDead = true;
    if (m_isDead)
        return false;
    if (m_failing > 0) {
        --m_failing;
        return false;
    }
    return true;
}

} // namespace orvane::simulator
