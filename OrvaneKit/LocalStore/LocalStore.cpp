// SPDX-License-Identifier: GPL-3.0-or-later
#include "LocalStore/LocalStore.h"

#include "LocalStore/QueuedRows.h"
#include "LocalStore/StoreSteps.h"

#include <QUrl>
#include <array>
#include <csignal>
#include <filesystem>

namespace orvane {

namespace {

/// Letters, digits, "-" and "." stay; every other character becomes "_".
QString safe(const QString &text)
{
    QString out;
    for (const char32_t c : text.toUcs4()) {
        if (QChar::isLetter(c) || QChar::isDigit(c) || c == U'-' || c == U'.')
            out += QStringView(QChar::fromUcs4(c));
        else
            out += QLatin1Char('_');
    }
    return out;
}

/// A write beyond the limit on the size of files then fails on this thread instead of ending the process.
void refuseSignalsOfLimits()
{
    sigset_t signals;
    sigemptyset(&signals);
    sigaddset(&signals, SIGXFSZ);
    pthread_sigmask(SIG_BLOCK, &signals, nullptr);
}

bool exists(const std::string &path)
{
    std::error_code ignored;
    return std::filesystem::exists(path, ignored);
}

} // namespace

LocalStore::LocalStore(std::shared_ptr<Executor> executor) : m_executor(std::move(executor)) {}

LocalStore::~LocalStore()
{
    // Closed where it was used: closing may write too.
    m_executor->post([this] { m_connection.reset(); });
    m_executor->finish();
}

Task<LocalStore::Opened> LocalStore::open(std::string path, StoreOptions options)
{
    return openAt(std::move(path), std::move(options));
}

Task<LocalStore::Opened> LocalStore::openInMemory()
{
    return openAt(std::nullopt, {});
}

Task<LocalStore::Opened> LocalStore::openAt(std::optional<std::string> path, StoreOptions options)
{
    // Absolute, so that no name of a file means something else to SQLite (":memory:", "file:...", "").
    if (path) {
        std::error_code error;
        const std::filesystem::path absolute = std::filesystem::absolute(*path, error);
        if (error)
            co_return Opened(failure(StoreError{StoreError::Kind::cannotOpen, error.message(), *path}));
        path = absolute.string();
    }
    if (!options.executor) {
        options.executor = std::make_shared<ThreadExecutor>();
        options.executor->post(&refuseSignalsOfLimits);
    }
    const std::shared_ptr<LocalStore> store(new LocalStore(options.executor));
    LocalStore *const self = store.get();
    const StoreStatus opened = co_await runOn(*store->m_executor, [self, path = std::move(path), options] {
        return Connection::open(path, options).map([self](std::unique_ptr<Connection> connection) {
            self->m_connection = std::move(connection);
        });
    });
    if (!opened)
        co_return Opened(failure(opened.error()));
    co_return Opened(store);
}

Task<StoreStatus> LocalStore::remove(std::string key)
{
    return runOn(*m_executor,
                 [this, key = std::move(key)] { return StoreSteps(*m_connection).remove(key).status(); });
}

Task<std::vector<PendingChange>> LocalStore::pending()
{
    return runOn(*m_executor, [this] { return readPending(); });
}

Task<Result<std::int64_t, StoreError>> LocalStore::enqueue(EntryChange change)
{
    return runOn(*m_executor, [this, change = std::move(change)]() -> Result<std::int64_t, StoreError> {
        std::int64_t seq = 0;
        StoreSteps steps(*m_connection);
        if (!steps.addRow(change, seq))
            return steps.error();
        return seq;
    });
}

Task<StoreStatus> LocalStore::replace(std::int64_t seq, EntryChange change)
{
    return runOn(*m_executor, [this, row = PendingChange{seq, std::move(change)}] {
        return StoreSteps(*m_connection).writeRow(row).status();
    });
}

Task<StoreStatus> LocalStore::dequeue(std::int64_t seq)
{
    return runOn(*m_executor, [this, seq] { return StoreSteps(*m_connection).removeRow(seq).status(); });
}

Task<Result<LocalStore::Rows, StoreError>> LocalStore::query(std::string sql, std::vector<Value> values)
{
    return runOn(*m_executor, [this, sql = std::move(sql), values = std::move(values)] {
        Rows rows;
        const auto keep = [&rows](const Connection::Row &row) {
            std::vector<Value> &columns = rows.emplace_back();
            for (int column = 0; column < row.size(); ++column)
                columns.push_back(row.value(column));
        };
        return m_connection->run(sql, values, keep).map([&rows] { return std::move(rows); });
    });
}

std::vector<PendingChange> LocalStore::readPending()
{
    QueuedRows rows(storeReading);
    StoreSteps steps(*m_connection);
    steps.visitRows([&rows](const Connection::Row &row) { rows.add(row); });
    const StoreStatus &status = steps.status();
    if (!status) {
        qCWarning(storeLog) << "the queue cannot be read:" << status.error().message.c_str();
        return {};
    }
    std::vector<PendingChange> changes = rows.changes();
    if (rows.unreadable() > 0)
        qCWarning(storeLog) << rows.unreadable() << "queued changes cannot be read and stay where they are";
    return changes;
}

std::string LocalStore::fileName(const std::string &server, const std::string &account)
{
    const QUrl address(QString::fromStdString(server));
    QString name = address.host().isEmpty() ? QStringLiteral("server") : address.host();
    if (address.port() >= 0)
        name += QLatin1Char('-') + QString::number(address.port());
    name += QLatin1Char('-') + QString::fromStdString(account);
    return (safe(name) + QStringLiteral(".sqlite")).toStdString();
}

std::string LocalStore::filePath(const std::string &root, const std::string &server,
                                 const std::string &account)
{
    return (std::filesystem::path(root) / fileName(server, account)).string();
}

StoreStatus LocalStore::moveStore(const std::string &from, const std::string &to)
{
    // The changes beside one store would be played into the other.
    if (exists(from) && exists(to))
        return {};
    for (const char *suffix : {"", "-wal", "-shm"}) {
        const std::string source = from + suffix;
        const std::string target = to + suffix;
        if (!exists(source) || exists(target))
            continue;
        std::error_code error;
        std::filesystem::rename(source, target, error);
        if (error)
            return failure(StoreError{StoreError::Kind::cannotOpen, error.message(), source});
    }
    return {};
}

} // namespace orvane
