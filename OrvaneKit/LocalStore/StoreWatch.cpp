// SPDX-License-Identifier: GPL-3.0-or-later
#include "LocalStore/StoreWatch.h"

#include <QFile>
#include <QPointer>

namespace orvane {

StoreWatch::StoreWatch(std::shared_ptr<LocalStore> store, std::string path)
    : m_store(std::move(store)), m_path(QString::fromStdString(path))
{
    m_delay.setSingleShot(true);
    m_delay.setInterval(lookDelay);
    connect(&m_delay, &QTimer::timeout, this, [this] { look(); });
    connect(&m_files, &QFileSystemWatcher::fileChanged, this, &StoreWatch::lookSoon);
    watch();
    look();
}

/// The file and its log, where writes go first. One that was replaced is no longer watched by itself.
void StoreWatch::watch()
{
    for (const QString &file : {m_path, m_path + QStringLiteral("-wal")}) {
        if (!m_files.files().contains(file) && QFile::exists(file))
            m_files.addPath(file);
    }
}

void StoreWatch::lookSoon()
{
    if (!m_delay.isActive())
        m_delay.start();
}

Task<> StoreWatch::look()
{
    const QPointer<StoreWatch> self(this);
    const auto rows = co_await m_store->query("PRAGMA data_version", {});
    if (!self)
        co_return;
    watch();
    const auto *version =
        rows && !rows->empty() ? std::get_if<std::int64_t>(&rows->front().front()) : nullptr;
    if (version == nullptr || m_version == *version)
        co_return;
    const bool isFirst = !m_version;
    m_version = *version;
    if (!isFirst)
        Q_EMIT changedElsewhere();
}

} // namespace orvane
