// SPDX-License-Identifier: GPL-3.0-or-later
#include "Screens/Settings/SettingsModel.h"

#include "AppModel/AppModel.h"

namespace orvane {

SettingsModel::SettingsModel(AppModel &app)
    : m_writer(app)
    , m_time(app, m_writer)
    , m_shortcuts(*app.keys())
    , m_rules(app, m_writer)
    , m_agents(app)
    , m_sync(app)
    , m_account(app, m_writer)
    , m_logins(app)
{
    connect(&m_writer, &SettingsWriter::changed, this, &SettingsModel::changed);
}

void SettingsModel::setPage(const QString &page)
{
    if (m_page == page)
        return;
    m_page = page;
    m_shortcuts.keep();
    refresh();
    Q_EMIT pageChanged();
}

void SettingsModel::find()
{
    Q_EMIT findWanted();
}

void SettingsModel::refresh()
{
    Q_EMIT m_time.changed();
    Q_EMIT m_sync.changed();
}

} // namespace orvane
