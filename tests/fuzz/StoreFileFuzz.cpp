// SPDX-License-Identifier: GPL-3.0-or-later
// Any bytes as a store's file: they are refused or read, and no reading of them ends the process.
#include "LocalStore/LocalStore.h"
#include "Support/JsonImpl.h"

#include <QCoreApplication>
#include <QCoro/QCoroTask>
#include <QLoggingCategory>
#include <QTemporaryDir>
#include <fstream>

ORVANE_JSON(std::vector<std::int64_t>)

namespace {

/// What every run needs and only the first one makes.
struct Environment {
    int argumentCount = 0;
    QCoreApplication application{argumentCount, nullptr};
    QTemporaryDir folder;
    std::string path = folder.filePath(QStringLiteral("store.sqlite")).toStdString();

    Environment() { QLoggingCategory::setFilterRules(QStringLiteral("orvane.*=false")); }
};

void readAndWrite(const std::shared_ptr<orvane::LocalStore> &store)
{
    QCoro::waitFor(store->pending());
    QCoro::waitFor(store->load<std::vector<std::int64_t>>("numbers"));
    // Either answer is good; what must not happen is a crash.
    static_cast<void>(QCoro::waitFor(store->enqueue(orvane::EntryChange{})));
    static_cast<void>(QCoro::waitFor(store->save("numbers", std::vector<std::int64_t>{1, 2})));
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    static Environment environment;
    for (const char *suffix : {"", "-wal", "-shm", "-journal"})
        std::remove((environment.path + suffix).c_str());
    std::ofstream(environment.path, std::ios::binary)
        .write(reinterpret_cast<const char *>(data), static_cast<std::streamsize>(size));
    if (const auto store = QCoro::waitFor(orvane::LocalStore::open(environment.path)))
        readAndWrite(*store);
    return 0;
}
