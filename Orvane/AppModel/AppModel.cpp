// SPDX-License-Identifier: GPL-3.0-or-later
#include "AppModel/AppModel.h"

#include <QPointer>
#include <QUrl>

namespace orvane {

AppModel::AppModel(Options options)
    : m_options(std::move(options))
    , m_installation(m_options.folder)
    , m_tick(nullptr)
    , m_notices(nullptr)
    , m_sync(m_tick)
{
}

AppModel::~AppModel() = default;

Task<> AppModel::open()
{
    return openFrom(false);
}

Task<> AppModel::openFrom(bool waitsForServer)
{
    const QPointer<AppModel> self(this);
    setPhase(Phase::opening);
    const auto access =
        std::make_shared<ServerAccess>(ServerAccess::Options{.installation = &m_installation,
                                                             .server = m_options.server,
                                                             .startsServer = m_options.startsServer,
                                                             .serverProgram = m_options.serverProgram,
                                                             .waitsForServer = waitsForServer});
    if (auto found = co_await access->find(); !found) {
        if (self)
            setPhase(Phase::failed, found.error().message);
        co_return;
    }
    auto opened = co_await Account::open(access, m_options.account);
    if (!self)
        co_return;
    if (!opened) {
        setPhase(Phase::failed, opened.error().message);
        co_return;
    }
    adopt(std::move(*opened));
    co_await load();
}

void AppModel::openAgain()
{
    if (m_phase == Phase::failed)
        open();
}

void AppModel::adopt(std::unique_ptr<Account> account)
{
    m_account = std::move(account);
    connect(m_account.get(), &Account::trackerChanged, this, [this] {
        Q_EMIT placeChanged();
        Q_EMIT trackerChanged();
    });
    connect(m_account.get(), &Account::meChanged, this, &AppModel::placeChanged);
    connect(&m_account->access(), &ServerAccess::moved, this, [this] { reopen(); });
    m_sync.setAccount(m_account.get());
    Q_EMIT placeChanged();
    Q_EMIT trackerChanged();
}

/// The account under its server's new address.
Task<> AppModel::reopen()
{
    const QPointer<AppModel> self(this);
    const std::shared_ptr<Account> before = std::move(m_account);
    m_sync.setAccount(nullptr);
    Q_EMIT trackerChanged();
    co_await before->close();
    if (self)
        co_await openFrom(true);
}

/// What is known here is shown before the server is asked.
Task<> AppModel::load()
{
    const QPointer<AppModel> self(this);
    co_await m_account->tracker().loadSnapshot();
    if (!self)
        co_return;
    setPhase(Phase::open);
    m_account->tracker().load();
    m_account->outbox().flush();
}

Task<> AppModel::close()
{
    m_sync.setAccount(nullptr);
    if (m_account)
        co_await m_account->close();
}

QString AppModel::workspaceName() const
{
    return m_account ? m_account->tracker().workspaceName() : QString();
}

QString AppModel::placeName() const
{
    if (!m_account)
        return {};
    if (m_account->isLocal())
        return tr("This Computer");
    return QUrl(QString::fromStdString(m_account->server())).host();
}

void AppModel::setPhase(Phase phase, const std::string &problem)
{
    m_phase = phase;
    m_problem = QString::fromStdString(problem);
    Q_EMIT phaseChanged();
}

} // namespace orvane
