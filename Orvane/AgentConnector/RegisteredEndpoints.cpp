// SPDX-License-Identifier: GPL-3.0-or-later
#include "AgentConnector/RegisteredEndpoints.h"

#include <QFile>
#include <QSettings>

namespace orvane {

RegisteredEndpoints::RegisteredEndpoints(const std::string &folder) : m_file(folder + "/agents.ini") {}

std::optional<std::string> RegisteredEndpoints::of(CodingAgent agent) const
{
    const QSettings file(QString::fromStdString(m_file), QSettings::IniFormat);
    const QVariant value = file.value(QString::fromStdString(toolOf(agent)));
    return value.isValid() ? std::optional(value.toString().toStdString()) : std::nullopt;
}

void RegisteredEndpoints::set(CodingAgent agent, const std::optional<std::string> &endpoint) const
{
    QSettings file(QString::fromStdString(m_file), QSettings::IniFormat);
    const QString key = QString::fromStdString(toolOf(agent));
    if (endpoint)
        file.setValue(key, QString::fromStdString(*endpoint));
    else
        file.remove(key);
    file.sync();
    QFile::setPermissions(file.fileName(), QFile::ReadOwner | QFile::WriteOwner);
}

} // namespace orvane
