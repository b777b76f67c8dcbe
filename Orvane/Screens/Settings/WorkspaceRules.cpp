// SPDX-License-Identifier: GPL-3.0-or-later
#include "Screens/Settings/WorkspaceRules.h"

#include "AppModel/AppModel.h"
#include "Catalog/TypedAmounts.h"
#include "Screens/Settings/SettingsWriter.h"
#include "Time/TypedDay.h"

#include <algorithm>
#include <array>

namespace orvane {

namespace {

using Rules = WorkspaceSettingsResponse;

/// In the order of WorkspaceRules::Rule.
constexpr std::array<bool Rules::*, 6> rules{
    &Rules::onlyAdminsCreateProjects, &Rules::onlyAdminsCreateTags, &Rules::requireDescription,
    &Rules::requireProject,           &Rules::requireTask,          &Rules::requireTag};

template <class T>
T member(const SettingsWriter &writer, T Rules::*which)
{
    return writer.shown() && writer.shown()->workspace ? (*writer.shown()->workspace).*which : T();
}

template <class T>
SettingsWriter::Change setting(T Rules::*which, T value)
{
    return [which, value = std::move(value)](AccountSettings &settings) {
        if (settings.workspace)
            (*settings.workspace).*which = value;
    };
}

} // namespace

WorkspaceRules::WorkspaceRules(AppModel &app, SettingsWriter &writer) : m_app(&app), m_writer(&writer)
{
    connect(m_writer, &SettingsWriter::changed, this, &WorkspaceRules::changed);
}

bool WorkspaceRules::isKnown() const
{
    return m_writer->shown() && m_writer->shown()->workspace;
}

bool WorkspaceRules::mayEdit() const
{
    return isKnown() && m_writer->isAdmin() && !m_writer->isAway();
}

QString WorkspaceRules::note() const
{
    if (!isKnown())
        return tr("The server has not told this workspace's settings yet.");
    if (!m_writer->isAdmin())
        return tr("Administrators of this workspace change these.");
    return m_writer->isAway() ? tr("The server is away; these can be changed again once it is back.")
                              : QString();
}

QString WorkspaceRules::name() const
{
    return QString::fromStdString(member(*m_writer, &Rules::name));
}

QString WorkspaceRules::currency() const
{
    return QString::fromStdString(member(*m_writer, &Rules::currency));
}

QString WorkspaceRules::rate() const
{
    const auto rate = member(*m_writer, &Rules::defaultHourlyRate);
    return rate ? QString::fromStdString(rateText(*rate)) : QString();
}

QString WorkspaceRules::lockedBefore() const
{
    const auto begin = member(*m_writer, &Rules::lockedBefore);
    if (!begin || m_app->tracker() == nullptr)
        return {};
    return QString::fromStdString(m_app->tracker()->time().dayKey(*begin).description());
}

bool WorkspaceRules::onlyAdminsCreateProjects() const
{
    return member(*m_writer, &Rules::onlyAdminsCreateProjects);
}
bool WorkspaceRules::onlyAdminsCreateTags() const
{
    return member(*m_writer, &Rules::onlyAdminsCreateTags);
}
bool WorkspaceRules::requireDescription() const
{
    return member(*m_writer, &Rules::requireDescription);
}
bool WorkspaceRules::requireProject() const
{
    return member(*m_writer, &Rules::requireProject);
}
bool WorkspaceRules::requireTask() const
{
    return member(*m_writer, &Rules::requireTask);
}
bool WorkspaceRules::requireTag() const
{
    return member(*m_writer, &Rules::requireTag);
}

QString WorkspaceRules::setText(Text which, const QString &typed)
{
    switch (which) {
    case Name:
        return setName(typed.trimmed());
    case Currency:
        return setCurrency(typed.trimmed().toUpper());
    case Rate:
        return setRate(typed.trimmed());
    case LockedBefore:
        return setLockedBefore(typed.trimmed());
    }
    return {};
}

QString WorkspaceRules::setName(const QString &typed)
{
    if (typed.isEmpty())
        return tr("A workspace needs a name.");
    m_writer->change(setting(&Rules::name, typed.toStdString()));
    return {};
}

QString WorkspaceRules::setCurrency(const QString &typed)
{
    const bool isCode = typed.size() == 3 && std::ranges::all_of(typed, [](QChar letter) {
                            return letter >= QLatin1Char('A') && letter <= QLatin1Char('Z');
                        });
    if (!isCode)
        return tr("A currency is three letters such as EUR.");
    m_writer->change(setting(&Rules::currency, typed.toStdString()));
    return {};
}

QString WorkspaceRules::setRate(const QString &typed)
{
    const auto rate = parseTypedRate(typed.toStdString());
    if (!rate && !typed.isEmpty())
        return tr("A rate is an amount such as 80 or 12.50.");
    m_writer->change(setting(&Rules::defaultHourlyRate, rate));
    return {};
}

QString WorkspaceRules::setLockedBefore(const QString &typed)
{
    if (m_app->tracker() == nullptr)
        return {};
    const UserTime &time = m_app->tracker()->time();
    const auto day = parseTypedDay(typed.toStdString(), time.today());
    if (!day && !typed.isEmpty())
        return tr("A day is written as 2026-03-01.");
    m_writer->change(
        setting(&Rules::lockedBefore, day ? std::optional(time.startOfDay(*day)) : std::optional<Instant>()));
    return {};
}

void WorkspaceRules::setRule(Rule which, bool holds)
{
    m_writer->change(setting(rules[static_cast<std::size_t>(which)], holds));
}

} // namespace orvane
