// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "LocalStore/LocalStore.h"

#include <QFileSystemWatcher>
#include <QObject>
#include <QTimer>
#include <memory>
#include <optional>
#include <string>

namespace orvane {

/// Tells when another process has changed a store: a command in a terminal beside a window. The system
/// reports writes to the file, and SQLite whether they were another connection's; while nothing is written,
/// nothing happens.
///
/// Owner: the account. Thread: the main thread.
class StoreWatch final : public QObject {
    Q_OBJECT

public:
    /// How long after a first write it looks, so that a transaction's many are one.
    static constexpr std::chrono::milliseconds lookDelay{100};

    StoreWatch(std::shared_ptr<LocalStore> store, std::string path);

Q_SIGNALS:
    void changedElsewhere();

private:
    void watch();
    void lookSoon();
    Task<> look();

    std::shared_ptr<LocalStore> m_store;
    QString m_path;
    QFileSystemWatcher m_files;
    QTimer m_delay;
    /// What SQLite's count of others' changes was when last looked at.
    std::optional<std::int64_t> m_version;
};

} // namespace orvane
