// SPDX-License-Identifier: GPL-3.0-or-later
#include "Session/Keychain.h"

#include "Support/Eventual.h"

#include <QCoreApplication>
#include <QTimer>
#include <map>
#include <optional>
#include <qt6keychain/keychain.h>

namespace orvane {

namespace {

struct Outcome {
    /// None: there was no answer in time.
    std::optional<QKeychain::Error> error = {};
    QString text = {};

    bool succeeded() const { return error == QKeychain::NoError; }
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
Eventual<Outcome> run(Job *job, std::chrono::milliseconds patience)
{
    Eventual<Outcome> outcome;
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
    struct Item {
        /// What this process last read or wrote.
        std::string value;
        /// Whether `value` is yet to reach the keychain.
        bool isUnsaved = false;
        /// What the keychain held when it was last heard of.
        std::optional<std::string> held = {};
    };

    QString service;
    std::chrono::milliseconds patience;
    std::map<std::string, Item> items = {};

    std::optional<std::string> knownValue(const std::string &account) const
    {
        const auto found = items.find(account);
        return found == items.end() ? std::nullopt : std::optional(found->second.value);
    }

    bool hasUnsaved(const std::string &account) const
    {
        const auto found = items.find(account);
        return found != items.end() && found->second.isUnsaved;
    }

    /// Takes over what the keychain holds, unless ours is newer and only waits to be written: the keychain
    /// still holds what it held before then.
    void found(const std::string &account, std::string value)
    {
        Item &item = items[account];
        if (!item.isUnsaved || value == item.value || (item.held && value != *item.held))
            item = {.value = value};
        item.held = std::move(value);
    }

    void set(const std::string &account, std::string value)
    {
        Item &item = items[account];
        item.value = std::move(value);
        item.isUnsaved = true;
    }

    void written(const std::string &account, const std::string &value)
    {
        const auto item = items.find(account);
        // Another value may have come meanwhile.
        if (item == items.end() || item->second.value != value)
            return;
        item->second.held = value;
        item->second.isUnsaved = false;
    }

    static Task<bool> save(std::shared_ptr<State> state, std::string account)
    {
        const std::string value = state->items[account].value;
        const Outcome outcome = co_await writeItem(state->service, QString::fromStdString(account),
                                                   QString::fromStdString(value), state->patience);
        if (outcome.succeeded())
            state->written(account, value);
        co_return outcome.succeeded();
    }
};

Keychain::Keychain(QString service, std::chrono::milliseconds patience)
    : m_state(std::make_shared<State>(State{.service = std::move(service), .patience = patience}))
{
}

Keychain::~Keychain() = default;

Task<StoredToken> Keychain::read(std::string account)
{
    const std::shared_ptr<State> state = m_state;
    const Outcome outcome =
        co_await readItem(state->service, QString::fromStdString(account), state->patience);
    if (!outcome.error)
        co_return failure(StoreSilence{});
    // "Entry not found" counts as little as other failures: a locked keychain says so too.
    if (outcome.succeeded())
        state->found(account, outcome.text.toStdString());
    if (state->hasUnsaved(account))
        co_await State::save(state, account);
    co_return StoredToken(state->knownValue(account));
}

Task<> Keychain::write(std::string value, std::string account)
{
    const std::shared_ptr<State> state = m_state;
    state->set(account, std::move(value));
    co_await State::save(state, std::move(account));
}

Task<bool> Keychain::keep(std::string value, std::string account)
{
    const std::shared_ptr<State> state = m_state;
    state->set(account, value);
    const bool isTaken = co_await State::save(state, account);
    if (!isTaken && state->knownValue(account) == value)
        state->items.erase(account);
    co_return isTaken;
}

Task<> Keychain::remove(std::string account)
{
    const std::shared_ptr<State> state = m_state;
    state->items.erase(account);
    co_await deleteItem(state->service, QString::fromStdString(account), state->patience);
}

Task<Keychain::Health> Keychain::probe(std::chrono::milliseconds patience)
{
    const QString service = QStringLiteral("com.orvanetrack.probe");
    // Processes may probe at the same time.
    const QString account = QString::number(QCoreApplication::applicationPid());
    const QString text = QStringLiteral("probe");
    const Outcome write = co_await writeItem(service, account, text, patience);
    if (!write.error)
        co_return Health::silent;
    if (!write.succeeded())
        co_return Health::fails;
    const Outcome read = co_await readItem(service, account, patience);
    co_await deleteItem(service, account, patience);
    if (!read.error)
        co_return Health::silent;
    co_return read.succeeded() && read.text == text ? Health::works : Health::fails;
}

} // namespace orvane
