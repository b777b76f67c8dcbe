// SPDX-License-Identifier: GPL-3.0-or-later
#include "AppModel/DraftFile.h"

#include "Support/AsyncHop.h"

#include <QFile>
#include <QFileInfo>
#include <QPointer>
#include <QSaveFile>

namespace orvane {

namespace {

Drafts draftsIn(const std::string &path)
{
    const QString name = QString::fromStdString(path);
    // Not a pipe, which would hold the start up.
    if (!QFileInfo(name).isFile())
        return {};
    QFile file(name);
    if (!file.open(QIODevice::ReadOnly))
        return {};
    const QByteArray bytes = file.read(DraftFile::largestFile + 1);
    if (bytes.size() > DraftFile::largestFile)
        return {};
    return Drafts::read({bytes.constData(), static_cast<std::size_t>(bytes.size())});
}

/// Whole or not at all. Answers what is wrong, or nothing.
std::string draftsWritten(const std::string &path, const Drafts &drafts)
{
    const QString name = QString::fromStdString(path);
    if (drafts.isEmpty())
        return !QFile::exists(name) || QFile::remove(name) ? "" : "The drafts cannot be removed.";
    QSaveFile file(name);
    if (!file.open(QIODevice::WriteOnly))
        return file.errorString().toStdString();
    const std::string text = drafts.written();
    const bool isWritten = file.setPermissions(QFile::ReadOwner | QFile::WriteOwner) &&
                           file.write(text.data(), static_cast<qint64>(text.size())) >= 0 && file.commit();
    return isWritten ? "" : file.errorString().toStdString();
}

} // namespace

DraftFile::DraftFile(std::string path, std::unique_ptr<RetryTimer> timer)
    : m_path(std::move(path)), m_drafts(draftsIn(m_path)), m_timer(std::move(timer))
{
    if (!m_timer)
        m_timer = std::make_unique<SystemRetryTimer>();
}

DraftFile::~DraftFile()
{
    flush();
}

QString DraftFile::text(const std::string &account, const std::string &key) const
{
    return QString::fromStdString(m_drafts.text(account, key));
}

void DraftFile::setText(const std::string &account, const std::string &key, const QString &text)
{
    if (m_drafts.set({account, key, text.toStdString()}))
        writeSoon();
}

/// Later changes go with the first: who types on and on is written all the same.
void DraftFile::writeSoon()
{
    m_isUnwritten = true;
    if (std::exchange(m_isScheduled, true))
        return;
    m_timer->schedule(writeDelay, [this] { write(); });
}

Task<> DraftFile::write()
{
    const QPointer<DraftFile> self(this);
    m_isScheduled = false;
    if (!std::exchange(m_isUnwritten, false))
        co_return;
    m_isWriting = true;
    const std::uint64_t number = ++m_writes;
    std::string error =
        co_await runOn(m_writer, [path = m_path, drafts = m_drafts] { return draftsWritten(path, drafts); });
    if (!self || number != m_writes)
        co_return;
    m_isWriting = false;
    // It is tried again with the next change, or at the end.
    m_isUnwritten = m_isUnwritten || !error.empty();
    setError(std::move(error));
}

Result<void, std::string> DraftFile::forget(const std::string &account)
{
    m_isUnwritten = m_drafts.forget(account) || m_isUnwritten;
    return flush();
}

Result<void, std::string> DraftFile::flush()
{
    m_timer->cancel();
    m_isScheduled = false;
    m_writer.finish();
    if (!m_isUnwritten && !m_isWriting && m_error.empty())
        return {};
    ++m_writes;
    m_isWriting = false;
    std::string error = draftsWritten(m_path, m_drafts);
    m_isUnwritten = !error.empty();
    setError(error);
    if (!error.empty())
        return failure(std::move(error));
    return {};
}

void DraftFile::setError(std::string error)
{
    if (std::exchange(m_error, std::move(error)) != m_error)
        Q_EMIT errorChanged();
}

} // namespace orvane
