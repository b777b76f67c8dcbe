// SPDX-License-Identifier: GPL-3.0-or-later
#include "StoreFixture.h"

#include "Support/JsonImpl.h"

#include <QCoreApplication>
#include <fstream>
#include <iterator>
#include <unistd.h>

ORVANE_JSON(orvane::Note)

namespace orvane {

EntryChange sampleChange(const std::string &id)
{
    EntryChange::Create create{.request = {}, .id = id, .workspaceId = "w-1"};
    create.request.details.description = "Write the \"README\" \u2014 \U0001F600";
    create.request.start = instantFromMilliseconds(1'772'357'400'123);
    return {create};
}

std::string bytesOf(const std::string &file)
{
    std::ifstream stream(file, std::ios::binary);
    return {std::istreambuf_iterator<char>(stream), {}};
}

void writeBytes(const std::string &file, std::string_view bytes)
{
    std::ofstream(file, std::ios::binary) << bytes;
}

void RawDatabase::execute(const char *script)
{
    EXPECT_EQ(sqlite3_exec(m_database, script, nullptr, nullptr, nullptr), SQLITE_OK)
        << script << ": " << sqlite3_errmsg(m_database);
}

std::int64_t RawDatabase::number(const char *sql)
{
    std::int64_t value = -1;
    const auto keep = [](void *out, int, char **columns, char **) {
        *static_cast<std::int64_t *>(out) = std::stoll(columns[0]);
        return 0;
    };
    EXPECT_EQ(sqlite3_exec(m_database, sql, keep, &value, nullptr), SQLITE_OK) << sqlite3_errmsg(m_database);
    return value;
}

Child::Child(const char *test, const std::string &store)
{
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(QStringLiteral("ORVANE_STORE"), QString::fromStdString(store));
    m_process.setProcessEnvironment(environment);
    m_process.setProcessChannelMode(QProcess::ForwardedErrorChannel);
    m_process.start(QCoreApplication::applicationFilePath(),
                    {QStringLiteral("--gtest_also_run_disabled_tests"),
                     QStringLiteral("--gtest_filter=") + QString::fromLatin1(test)});
    EXPECT_TRUE(m_process.waitForStarted());
}

std::optional<std::string> Child::line(const char *prefix)
{
    for (;;) {
        while (m_process.canReadLine()) {
            const QByteArray line = m_process.readLine().trimmed();
            m_output += line + '\n';
            if (line.startsWith(prefix))
                return line.mid(static_cast<qsizetype>(qstrlen(prefix))).toStdString();
        }
        if (!m_process.waitForReadyRead(60'000))
            return std::nullopt;
    }
}

int Child::exitCode()
{
    EXPECT_TRUE(m_process.state() == QProcess::NotRunning || m_process.waitForFinished(60'000));
    m_output += m_process.readAll();
    const bool killed = m_process.exitStatus() != QProcess::NormalExit;
    if (!killed && m_process.exitCode() != 0)
        ADD_FAILURE() << "a child failed:\n" << m_output.toStdString();
    return killed ? -1 : m_process.exitCode();
}

void Child::say(const std::string &line)
{
    const std::string text = line + "\n";
    EXPECT_EQ(::write(STDOUT_FILENO, text.data(), text.size()), static_cast<ssize_t>(text.size()));
}

void Child::waitForParent()
{
    char byte = 0;
    EXPECT_EQ(::read(STDIN_FILENO, &byte, 1), 0);
}

std::shared_ptr<LocalStore> StoreTest::openStore(StoreOptions options)
{
    LocalStore::Opened opened = wait(LocalStore::open(m_path, options));
    EXPECT_TRUE(opened) << (opened ? "" : describe(opened.error()));
    return opened.value_or(nullptr);
}

StoreError StoreTest::openError(const std::string &path, StoreOptions options)
{
    const LocalStore::Opened opened = wait(LocalStore::open(path, options));
    EXPECT_FALSE(opened);
    return opened ? StoreError{} : opened.error();
}

} // namespace orvane
