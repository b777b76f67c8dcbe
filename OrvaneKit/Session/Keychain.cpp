// SPDX-License-Identifier: GPL-3.0-or-later
#include "Session/Keychain.h"

#include "Client/Pending.h"

#include <QCoreApplication>
#include <QTimer>
#include <map>
#include <qt6keychain/keychain.h>
#include <set>

namespace orvane {

namespace {

struct Outcome {
    QKeychain::Error error = QKeychain::OtherError;
    QString text = {};
};

/// How many operations are past their time. QtKeychain takes one after the other, so while one of them hangs
/// no other can be answered.
int &overdue()
{
    thread_local int count = 0;
    return count;
}

/// Starts a job, which deletes itself when it is done. One that is late is left to itself: the library that
/// it waits for still holds on to it.
template <class Job>
Pending<Outcome> run(Job *job, std::chrono::milliseconds patience)
{
    Pending<Outcome> outcome;
    auto *timer = new QTimer;
    timer->setSingleShot(true);
    QObject::connect(timer, &QTimer::timeout, timer, [=]() mutable {
        ++overdue();
        outcome.finish({});
    });
    QObject::connect(job, &QKeychain::Job::finished, timer, [=](QKeychain::Job *done) mutable {
        Outcome result{.error = done->error()};
        if constexpr (std::is_same_v<Job, QKeychain::ReadPasswordJob>)
            result.text = static_cast<Job *>(done)->textData();
        timer->stop();
        timer->deleteLater();
        if (!outcome.finish(result))
            --overdue();
    });
    timer->start(patience);
    job->start();
    return outcome;
}

template <class Job>
Job *makeJob(const QString &service, const QString &account)
{
    auto *job = new Job(service);
    job->setKey(account);
    job->setAutoDelete(true);
    job->setInsecureFallback(false);
    return job;
}

Task<Outcome> readItem(QString service, QString account, std::chrono::milliseconds patience)
{
    if (overdue() > 0)
        co_return Outcome{};
    co_return co_await run(makeJob<QKeychain::ReadPasswordJob>(service, account), patience);
}

Task<Outcome> writeItem(QString service, QString account, QString text, std::chrono::milliseconds patience)
{
    if (overdue() > 0)
        co_return Outcome{};
    auto *job = makeJob<QKeychain::WritePasswordJob>(service, account);
    job->setTextData(text);
    co_return co_await run(job, patience);
}

Task<Outcome> deleteItem(QString service, QString account, std::chrono::milliseconds patience)
{
    if (overdue() > 0)
        co_return Outcome{};
    co_return co_await run(makeJob<QKeychain::DeletePasswordJob>(service, account), patience);
}

} // namespace

struct Keychain::State {
    QString service;
    std::chrono::milliseconds patience;
    /// What this process last read or wrote, by account.
    std::map<std::string, std::string> known = {};
    /// The accounts whose newest value never reached the keychain.
    std::set<std::string> unsaved = {};

    std::optional<std::string> knownValue(const std::string &account) const
    {
        const auto found = known.find(account);
        return found == known.end() ? std::nullopt : std::optional(found->second);
    }
};

Keychain::Keychain(QString service, std::chrono::milliseconds patience)
    : m_state(std::make_shared<State>(State{.service = std::move(service), .patience = patience}))
{
}

Keychain::~Keychain() = default;

Task<std::optional<std::string>> Keychain::read(std::string account)
{
    const std::shared_ptr<State> state = m_state;
    if (state->unsaved.contains(account))
        co_return state->knownValue(account);
    const Outcome outcome =
        co_await readItem(state->service, QString::fromStdString(account), state->patience);
    // "Entry not found" counts as little as other failures: a locked keychain says so too.
    if (outcome.error == QKeychain::NoError)
        state->known[account] = outcome.text.toStdString();
    co_return state->knownValue(account);
}

Task<> Keychain::write(std::string value, std::string account)
{
    const std::shared_ptr<State> state = m_state;
    state->known[account] = value;
    const Outcome outcome = co_await writeItem(state->service, QString::fromStdString(account),
                                               QString::fromStdString(value), state->patience);
    if (outcome.error == QKeychain::NoError)
        state->unsaved.erase(account);
    else
        state->unsaved.insert(account);
}

Task<> Keychain::remove(std::string account)
{
    const std::shared_ptr<State> state = m_state;
    state->known.erase(account);
    state->unsaved.erase(account);
    co_await deleteItem(state->service, QString::fromStdString(account), state->patience);
}

Task<bool> Keychain::works(std::chrono::milliseconds patience)
{
    const QString service = QStringLiteral("com.orvanetrack.probe");
    // Processes may probe at the same time.
    const QString account = QString::number(QCoreApplication::applicationPid());
    const QString text = QStringLiteral("probe");
    if ((co_await writeItem(service, account, text, patience)).error != QKeychain::NoError)
        co_return false;
    const Outcome outcome = co_await readItem(service, account, patience);
    co_await deleteItem(service, account, patience);
    co_return outcome.error == QKeychain::NoError &&outcome.text == text;
}

} // namespace orvane
