// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "AppModel/Drafts.h"
#include "Support/Executor.h"
#include "Support/Result.h"
#include "Support/RetryTimer.h"
#include "Support/Task.h"

#include <QObject>
#include <chrono>
#include <memory>
#include <string>

namespace orvane {

/// Keeps what a person has begun to type of a data folder, so that a process that ends in the middle of a
/// word loses none of it but the last moment: fields tell each change, and ask when they are made.
///
/// The file holds texts of the user: it is for its owner alone, and nothing of it is ever logged. A torn,
/// foreign or oversized one counts as empty, and the next draft writes over it. One process at a time has a
/// data folder's file.
///
/// Owner: the application. Main thread; the disk is written to on a thread of its own, but for `flush`.
class DraftFile final : public QObject {
    Q_OBJECT
    /// Why drafts were not written, for people; empty while all is well.
    Q_PROPERTY(QString error READ error NOTIFY errorChanged)

public:
    /// How long after the first of several changes they are written.
    static constexpr std::chrono::milliseconds writeDelay{500};
    /// A larger file is none of ours.
    static constexpr qint64 largestFile = 16 * 1024 * 1024;

    /// Reads the file. Without a timer: with the system's.
    explicit DraftFile(std::string path, std::unique_ptr<RetryTimer> timer = {});
    /// Writes what is not written yet.
    ~DraftFile() override;

    static std::string pathIn(const std::string &dataFolder) { return dataFolder + "/drafts.json"; }

    QString text(const std::string &account, const std::string &key) const;
    /// An empty text takes the draft away: it was sent, or given up.
    void setText(const std::string &account, const std::string &key, const QString &text);

    /// Nothing of the account is left in the file when this succeeds.
    Result<void, std::string> forget(const std::string &account);
    /// Writes what is not written yet, at once: when the process is about to end.
    Result<void, std::string> flush();

    QString error() const { return QString::fromStdString(m_error); }

Q_SIGNALS:
    void errorChanged();

private:
    Task<> write();
    void writeSoon();
    void setError(std::string error);

    std::string m_path;
    Drafts m_drafts;
    std::unique_ptr<RetryTimer> m_timer;
    ThreadExecutor m_writer;
    bool m_isUnwritten = false;
    bool m_isScheduled = false;
    bool m_isWriting = false;
    /// The last one counts, whatever an earlier one answers after it.
    std::uint64_t m_writes = 0;
    std::string m_error;
};

} // namespace orvane
