// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "LocalStore/LocalStore.h"

#include <QCoro/QCoroTask>
#include <QProcess>
#include <QTemporaryDir>
#include <gtest/gtest.h>
#include <sqlite3.h>

namespace orvane {

/// A document of the tests.
struct Note {
    std::string title;
    Instant at;
    std::optional<std::int64_t> weight;

    bool operator==(const Note &) const = default;
};

template <>
struct JsonFields<Note> {
    static constexpr auto list = std::tuple{jsonField<"title">(&Note::title), jsonField<"at">(&Note::at),
                                            jsonField<"weight">(&Note::weight)};
};

EntryChange sampleChange(const std::string &id);
std::string bytesOf(const std::string &file);
void writeBytes(const std::string &file, std::string_view bytes);

/// SQLite without anything of ours, as another program would use it.
class RawDatabase {
public:
    explicit RawDatabase(const std::string &file)
    {
        EXPECT_EQ(sqlite3_open(file.c_str(), &m_database), SQLITE_OK);
    }
    RawDatabase(const RawDatabase &) = delete;
    RawDatabase &operator=(const RawDatabase &) = delete;
    ~RawDatabase() { sqlite3_close(m_database); }

    void execute(const char *script);
    std::int64_t number(const char *sql);

private:
    sqlite3 *m_database = nullptr;
};

/// One of this program's own disabled tests, run in a process of its own.
class Child {
public:
    /// `test` is "Suite.DISABLED_name"; it finds the store's path in ORVANE_STORE.
    Child(const char *test, const std::string &store);

    /// The next line of the child's that begins with `prefix`, without it; nothing once the child has ended.
    std::optional<std::string> line(const char *prefix);
    /// Lets a child that waits in `waitForParent` go on.
    void release() { m_process.closeWriteChannel(); }
    void kill() { m_process.kill(); }
    int exitCode();

    static std::string storePath() { return qEnvironmentVariable("ORVANE_STORE").toStdString(); }
    static void say(const std::string &line);
    static void waitForParent();

private:
    QProcess m_process;
    QByteArray m_output;
};

class StoreTest : public ::testing::Test {
protected:
    template <class T>
    static T wait(Task<T> task)
    {
        return QCoro::waitFor(std::move(task));
    }
    std::shared_ptr<LocalStore> openStore(StoreOptions options = {});
    StoreError openError(const std::string &path, StoreOptions options = {});

    QTemporaryDir m_folder;
    std::string m_path = m_folder.filePath(QStringLiteral("store.sqlite")).toStdString();
};

} // namespace orvane
