// SPDX-License-Identifier: GPL-3.0-or-later
#include "Screens/Timer/SeveralEntries.h"

#include "AppModel/AppModel.h"
#include "Catalog/EntryConversions.h"
#include "Catalog/EntrySeconds.h"
#include "Screens/Timer/TimerList.h"
#include "Screens/Timer/TypedTags.h"
#include "Time/AppClock.h"

#include <QStringList>
#include <algorithm>
#include <map>

namespace orvane {

namespace {

QString textOf(const std::string &utf8)
{
    return QString::fromStdString(utf8);
}

/// "Descriptions, tags and times stay."
QString stayText(QStringList names)
{
    QString all = names.takeLast();
    if (!names.isEmpty())
        all = SeveralEntries::tr("%1 and %2").arg(names.join(QStringLiteral(", ")), all);
    all[0] = all[0].toUpper();
    return SeveralEntries::tr("%1 stay.").arg(all);
}

QString changeText(const QString &field, int count, const QString &to)
{
    return count == 1 ? SeveralEntries::tr("%1: 1 changes to %2.").arg(field, to)
                      : SeveralEntries::tr("%1: %2 change to %3.").arg(field).arg(count).arg(to);
}

} // namespace

SeveralEntries::SeveralEntries(AppModel &app, TimerList &list) : m_app(&app), m_list(&list)
{
    connect(m_app, &AppModel::trackerChanged, this, &SeveralEntries::follow);
    connect(this, &SeveralEntries::edited, this, [this] { setProblem({}); });
    follow();
}

void SeveralEntries::follow()
{
    if (m_tracker)
        m_tracker->disconnect(this);
    m_tracker = m_app->tracker();
    clear();
    if (m_tracker)
        connect(m_tracker, &Tracker::entriesChanged, this, &SeveralEntries::look);
}

// What is chosen

bool SeveralEntries::mayChoose(const TimeEntryResponse &entry) const
{
    return entry.stop && !(m_tracker->settings() && m_tracker->rules().isLocked(entry.start));
}

void SeveralEntries::toggle(const QString &id)
{
    const auto entry = m_tracker ? m_tracker->entry(id.toStdString()) : std::nullopt;
    if (!entry || !mayChoose(*entry))
        return;
    if (m_chosen.erase(entry->id) == 0)
        m_chosen.insert(entry->id);
    if (m_chosen.empty())
        forgetEdits();
    tellChosen();
}

void SeveralEntries::chooseRows(int from, int to)
{
    if (!m_tracker)
        return;
    m_chosen.clear();
    for (int row = std::min(from, to); row <= std::max(from, to); ++row) {
        const TimeEntryResponse *entry = m_list->entryAt(row);
        if (entry != nullptr && m_list->kindAt(row) == TimerList::Kind::Entry && mayChoose(*entry))
            m_chosen.insert(entry->id);
    }
    tellChosen();
}

void SeveralEntries::clear()
{
    forgetEdits();
    if (m_chosen.empty())
        return;
    m_chosen.clear();
    tellChosen();
}

/// Those that went meanwhile are chosen no longer.
void SeveralEntries::look()
{
    const auto gone = std::erase_if(m_chosen, [this](const std::string &id) {
        const auto entry = m_tracker->entry(id);
        return !entry || !mayChoose(*entry);
    });
    if (gone > 0 || !m_chosen.empty())
        tellChosen();
}

void SeveralEntries::tellChosen()
{
    m_list->setChosen(m_chosen);
    Q_EMIT chosenChanged();
    Q_EMIT edited();
}

void SeveralEntries::forgetEdits()
{
    m_description.clear();
    m_tags.clear();
    m_picked.reset();
    m_billable.reset();
    Q_EMIT edited();
}

void SeveralEntries::setProblem(const QString &problem)
{
    if (std::exchange(m_problem, problem) != problem)
        Q_EMIT problemChanged();
}

/// The latest first, as in the list.
std::vector<TimeEntryResponse> SeveralEntries::entries() const
{
    std::vector<TimeEntryResponse> chosen;
    if (m_tracker && !m_chosen.empty())
        std::ranges::copy_if(m_tracker->entries(), std::back_inserter(chosen),
                             [this](const TimeEntryResponse &entry) { return m_chosen.contains(entry.id); });
    return chosen;
}

// What is shown

QString SeveralEntries::lastId() const
{
    const auto chosen = entries();
    return chosen.empty() ? QString() : textOf(chosen.back().id);
}

QString SeveralEntries::title() const
{
    return count() == 1 ? tr("1 entry") : tr("%1 entries").arg(count());
}

QString SeveralEntries::about() const
{
    const auto chosen = entries();
    if (chosen.empty())
        return {};
    const UserTime &time = m_tracker->time();
    const QString total =
        textOf(Durations::shortLabel(static_cast<double>(entrySeconds(chosen, AppClock::now()))));
    const DayKey day = time.dayKey(chosen.back().start);
    const bool isOneDay = day == time.dayKey(chosen.front().start);
    return isOneDay ? tr("%1 on %2").arg(total, textOf(time.dayTitle(day))) : total;
}

QString SeveralEntries::descriptionHint() const
{
    std::set<std::string> said;
    for (const TimeEntryResponse &entry : entries())
        said.insert(entry.description);
    if (said.size() == 1)
        return said.begin()->empty() ? tr("No description") : textOf(*said.begin());
    return tr("%1 descriptions").arg(said.size());
}

QString SeveralEntries::tagsHint() const
{
    std::map<std::string, int> uses;
    for (const TimeEntryResponse &entry : entries()) {
        for (const std::string &id : entry.tagIds)
            ++uses[id];
    }
    if (uses.size() > 1)
        return tr("%1 tags").arg(uses.size());
    const TagResponse *tag = uses.empty() ? nullptr : m_tracker->catalog().tag(uses.begin()->first);
    if (tag == nullptr)
        return tr("#tag");
    const QString name = QLatin1Char('#') + textOf(tag->name);
    return uses.begin()->second == count() ? name : tr("%1 on %2").arg(name).arg(uses.begin()->second);
}

QString SeveralEntries::project() const
{
    std::set<std::string> ids;
    if (m_picked) {
        ids.insert(m_picked->first);
    } else {
        for (const TimeEntryResponse &entry : entries()) {
            ids.insert(entry.projectId.value_or(""));
            for (const TimeShareResponse &share : entry.shares)
                ids.insert(share.projectId.value_or(""));
        }
    }
    if (ids.size() > 1)
        return tr("%1 projects").arg(ids.size());
    const ProjectResponse *project = ids.empty() ? nullptr : m_tracker->catalog().project(*ids.begin());
    return project != nullptr ? textOf(project->name) : QString();
}

QString SeveralEntries::task() const
{
    const TaskResponse *task =
        m_picked && !m_picked->second.empty() ? m_tracker->catalog().task(m_picked->second) : nullptr;
    return task != nullptr ? textOf(task->name) : QString();
}

QString SeveralEntries::projectColor() const
{
    std::set<std::string> ids;
    for (const TimeEntryResponse &entry : entries())
        ids.insert(m_picked ? m_picked->first : entry.projectId.value_or(""));
    const ProjectResponse *project = ids.size() == 1 ? m_tracker->catalog().project(*ids.begin()) : nullptr;
    return project != nullptr ? textOf(project->color) : QString();
}

bool SeveralEntries::isBillable() const
{
    return m_billable ? *m_billable : std::ranges::all_of(entries(), &TimeEntryResponse::isBillable);
}

bool SeveralEntries::isTouched() const
{
    return !m_description.trimmed().isEmpty() || !m_tags.trimmed().isEmpty() || m_picked || m_billable;
}

int SeveralEntries::changing(const std::function<void(EntryDraft &)> &edit) const
{
    const auto chosen = entries();
    return static_cast<int>(std::ranges::count_if(chosen, [&](const TimeEntryResponse &entry) {
        EntryDraft draft = EntryDraft::of(entry);
        const EntryDetails before = draft.details();
        edit(draft);
        return draft.details() != before;
    }));
}

QString SeveralEntries::changes() const
{
    if (m_chosen.empty() || !m_tracker)
        return {};
    QStringList said;
    QStringList stay;
    const QString description = m_description.trimmed();
    const auto say = [&](bool isTouched, const QString &field, const QString &plural, const QString &to,
                         const std::function<void(EntryDraft &)> &edit) {
        if (isTouched)
            said << changeText(field, changing(edit), to);
        else
            stay << plural;
    };
    say(!description.isEmpty(), tr("Description"), tr("descriptions"),
        QStringLiteral("“%1”").arg(description),
        [&](EntryDraft &draft) { draft.setDescription(description.toStdString()); });
    const QString name = project().isEmpty() ? tr("no project") : project();
    say(m_picked.has_value(), tr("Project"), tr("projects"), name,
        [this](EntryDraft &draft) { applyProject(draft); });
    const auto tags = readTags();
    say(!m_tags.trimmed().isEmpty(), tr("Tags"), tr("tags"), m_tags.trimmed(), [&](EntryDraft &draft) {
        if (tags)
            draft.setTags(*tags);
    });
    stay << tr("times");
    say(m_billable.has_value(), tr("Billing"), tr("billing"),
        m_billable.value_or(false) ? tr("billable") : tr("not billable"),
        [this](EntryDraft &draft) { draft.setBillable(*m_billable); });
    said << stayText(stay);
    return said.join(QLatin1Char(' '));
}

// What is changed

void SeveralEntries::setProject(const QString &projectId, const QString &taskId)
{
    m_picked = {projectId.toStdString(), taskId.toStdString()};
    Q_EMIT edited();
}

void SeveralEntries::turnBillable()
{
    m_billable = !isBillable();
    Q_EMIT edited();
}

void SeveralEntries::applyProject(EntryDraft &draft) const
{
    const auto &[projectId, taskId] = *m_picked;
    if (!taskId.empty())
        draft.setTask(taskId, m_tracker->catalog());
    else
        draft.setProject(projectId.empty() ? std::nullopt : std::optional(projectId), m_tracker->catalog());
}

Result<std::vector<std::string>, std::string> SeveralEntries::readTags() const
{
    return typedTags(m_tags, m_tracker->catalog(), m_app->account()->me().preferences, m_tracker->time());
}

EntryRequest SeveralEntries::changed(const TimeEntryResponse &entry) const
{
    EntryDraft draft = EntryDraft::of(entry);
    if (const QString description = m_description.trimmed(); !description.isEmpty())
        draft.setDescription(description.toStdString());
    if (m_picked)
        applyProject(draft);
    if (const auto tags = readTags(); tags && !m_tags.trimmed().isEmpty())
        draft.setTags(*tags);
    if (m_billable)
        draft.setBillable(*m_billable);
    return draft.at({entry.start, entry.stop});
}

void SeveralEntries::save()
{
    if (m_chosen.empty() || !m_tracker)
        return;
    if (const auto tags = readTags(); !tags) {
        setProblem(tr("No tag is called “%1”.").arg(textOf(tags.error())));
        return;
    }
    std::vector<std::pair<std::string, EntryRequest>> requests;
    for (const TimeEntryResponse &entry : entries()) {
        EntryRequest request = changed(entry);
        if (auto refused = m_tracker->checkRules(request)) {
            setProblem(textOf(refused->message));
            return;
        }
        if (request != EntryDraft::of(entry).at({entry.start, entry.stop}))
            requests.emplace_back(entry.id, std::move(request));
    }
    clear();
    if (!requests.empty())
        tell(m_tracker->updateAll(std::move(requests)));
}

void SeveralEntries::remove()
{
    if (m_chosen.empty() || !m_tracker)
        return;
    const std::vector<std::string> ids(m_chosen.begin(), m_chosen.end());
    clear();
    tell(m_tracker->removeAll(ids));
}

Task<> SeveralEntries::tell(Task<SaveResult> saving)
{
    const QPointer<SeveralEntries> self(this);
    const SaveResult result = co_await saving;
    if (self && (result.outcome == SaveOutcome::rejected || result.outcome == SaveOutcome::failed ||
                 result.outcome == SaveOutcome::needsDetails))
        m_app->notices()->tellFailure(textOf(result.message));
}

} // namespace orvane
