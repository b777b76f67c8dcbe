// SPDX-License-Identifier: GPL-3.0-or-later
#include "Screens/Timer/EntryEditor.h"

#include "AppModel/AppModel.h"
#include "EntryInput/NamedMoment.h"
#include "Screens/Timer/TypedTags.h"
#include "Time/AppClock.h"

#include <QJsonDocument>
#include <QJsonObject>

namespace orvane {

namespace {

constexpr const char *draftPlace = "editor";
constexpr QLatin1String entryKey("entry");
constexpr QLatin1String descriptionKey("description");
constexpr QLatin1String tagsKey("tags");
constexpr QLatin1String startKey("start");
constexpr QLatin1String stopKey("stop");
constexpr QLatin1String lengthKey("length");
constexpr QLatin1String billableKey("isBillable");
constexpr QLatin1String projectKey("projectId");
constexpr QLatin1String taskKey("taskId");
/// What the fields of the times said when they were last read, in milliseconds.
constexpr QLatin1String settledStartKey("settledStart");
constexpr QLatin1String settledStopKey("settledStop");

QString text(const std::string &utf8)
{
    return QString::fromStdString(utf8);
}

QString timesProblemText(EntryTimesProblem problem)
{
    switch (problem) {
    case EntryTimesProblem::endBeforeStart:
        return EntryEditor::tr("The end has to be after the start.");
    case EntryTimesProblem::endWithoutStart:
        return EntryEditor::tr("An end needs a start.");
    case EntryTimesProblem::tooLong:
        return EntryEditor::tr("That is more than 16 hours; give the end its day, as in “mon 9:30”.");
    case EntryTimesProblem::countedFromNow:
        break;
    }
    return EntryEditor::tr("That counts from now, and the entry ended on another day.");
}

} // namespace

EntryEditor::EntryEditor(AppModel &app) : m_app(&app)
{
    connect(m_app, &AppModel::trackerChanged, this, &EntryEditor::follow);
    connect(this, &EntryEditor::edited, this, &EntryEditor::keepDraft);
    follow();
}

void EntryEditor::follow()
{
    // The draft belongs to the account that was left, or the next one's is still to be read.
    m_isRestored = false;
    close();
    m_tracker = m_app->tracker();
    if (m_tracker) {
        connect(m_tracker, &Tracker::entriesChanged, this, &EntryEditor::restoreDraft);
        restoreDraft();
    }
}

// Drafts

void EntryEditor::keepDraft()
{
    if (!m_isRestored)
        return;
    QJsonObject kept;
    if (!m_entryId.empty()) {
        kept = {{entryKey, entryId()},      {descriptionKey, m_description},
                {tagsKey, m_tags},          {startKey, m_start},
                {stopKey, m_stop},          {lengthKey, m_length},
                {billableKey, isBillable()}};
        keepSettledTimes(kept);
        if (m_picked) {
            kept[projectKey] = text(m_picked->first);
            kept[taskKey] = text(m_picked->second);
        }
    }
    m_app->setDraft(draftPlace, kept.isEmpty()
                                    ? QString()
                                    : QString::fromUtf8(QJsonDocument(kept).toJson(QJsonDocument::Compact)));
}

/// Those that differ from the entry's own: what stands in a field counts as typed where it differs from them.
void EntryEditor::keepSettledTimes(QJsonObject &kept) const
{
    if (m_times.start != m_base.start)
        kept[settledStartKey] = double(millisecondsSinceEpoch(m_times.start));
    if (m_times.stop && m_times.stop != m_base.stop)
        kept[settledStopKey] = double(millisecondsSinceEpoch(*m_times.stop));
}

void EntryEditor::restoreSettledTimes(const QJsonObject &kept)
{
    const auto at = [&](QLatin1String key) {
        return instantFromMilliseconds(static_cast<std::int64_t>(kept[key].toDouble()));
    };
    if (kept.contains(settledStartKey))
        m_times.start = at(settledStartKey);
    if (kept.contains(settledStopKey) && m_times.stop)
        m_times.stop = at(settledStopKey);
}

/// Once its entry is known.
void EntryEditor::restoreDraft()
{
    if (m_isRestored || m_tracker->entries().empty())
        return;
    const QJsonObject kept = QJsonDocument::fromJson(m_app->draft(draftPlace).toUtf8()).object();
    const bool isOpen = open(kept[entryKey].toString());
    m_isRestored = true;
    if (!isOpen)
        return;
    m_description = kept[descriptionKey].toString();
    m_tags = kept[tagsKey].toString();
    m_start = kept[startKey].toString();
    m_stop = kept[stopKey].toString();
    m_length = kept[lengthKey].toString();
    restoreSettledTimes(kept);
    if (kept.contains(projectKey))
        setProject(kept[projectKey].toString(), kept[taskKey].toString());
    setBillable(kept[billableKey].toBool());
}

// Opening and closing

bool EntryEditor::open(const QString &id)
{
    if (!begin(id)) {
        const auto entry = m_tracker ? m_tracker->entry(id.toStdString()) : std::nullopt;
        if (entry && isLocked(*entry))
            m_app->notices()->tellFailure(tr("This entry lies in a locked period of the workspace."));
        return false;
    }
    Q_EMIT entryChanged();
    Q_EMIT edited();
    return true;
}

bool EntryEditor::begin(const QString &id)
{
    const auto entry = m_tracker ? m_tracker->entry(id.toStdString()) : std::nullopt;
    if (!entry || isLocked(*entry))
        return false;
    m_entryId = entry->id;
    m_base = *entry;
    m_draft = EntryDraft::of(*entry);
    m_picked.reset();
    m_isRunning = !entry->stop;
    m_description = text(entry->description);
    m_tags = tagsText(entry->tagIds, m_tracker->catalog());
    show({entry->start, entry->stop});
    setProblem(Field::None, {});
    return true;
}

bool EntryEditor::isLocked(const TimeEntryResponse &entry) const
{
    return m_tracker->settings() && m_tracker->rules().isLocked(entry.start);
}

bool EntryEditor::openWith(const QString &id, const EntryRequest &wanted)
{
    if (!begin(id))
        return false;
    const EntryDetails &details = wanted.details;
    m_description = text(details.description);
    m_tags = tagsText(details.tagIds, m_tracker->catalog());
    show({wanted.start, m_isRunning ? std::nullopt : wanted.stop});
    if (details.projectId != m_base.projectId || details.taskId != m_base.taskId)
        setProject(text(details.projectId.value_or("")), text(details.taskId.value_or("")));
    m_draft.setBillable(details.isBillable);
    // Who shows it finds the fields filled.
    Q_EMIT entryChanged();
    Q_EMIT edited();
    return true;
}

void EntryEditor::show(const EntryTimes &times)
{
    const UserTime &time = m_tracker->time();
    m_times = times;
    m_start = text(time.clockLabel(times.start));
    m_stop = times.stop ? text(time.clockLabel(*times.stop)) : QString();
    m_length = times.stop ? text(Durations::shortLabel(secondsBetween(times.start, *times.stop))) : QString();
}

void EntryEditor::cancel()
{
    close();
}

void EntryEditor::close()
{
    if (m_entryId.empty())
        return;
    m_entryId.clear();
    m_draft = {};
    setProblem(Field::None, {});
    Q_EMIT entryChanged();
    Q_EMIT edited();
}

// What is shown

QString EntryEditor::project() const
{
    const auto &id = m_draft.details().projectId;
    const ProjectResponse *project = id && m_tracker ? m_tracker->catalog().project(*id) : nullptr;
    return project != nullptr ? text(project->name) : QString();
}

QString EntryEditor::task() const
{
    const auto &id = m_draft.details().taskId;
    const TaskResponse *task = id && m_tracker ? m_tracker->catalog().task(*id) : nullptr;
    return task != nullptr ? text(task->name) : QString();
}

QString EntryEditor::projectColor() const
{
    const auto &id = m_draft.details().projectId;
    const ProjectResponse *project = id && m_tracker ? m_tracker->catalog().project(*id) : nullptr;
    return project != nullptr ? text(project->color) : QString();
}

void EntryEditor::setProblem(Field field, const QString &problem)
{
    if (m_wrongField == field && m_problem == problem)
        return;
    m_wrongField = field;
    m_problem = problem;
    Q_EMIT problemChanged();
}

// What is changed

void EntryEditor::setProject(const QString &projectId, const QString &taskId)
{
    if (!m_tracker)
        return;
    m_picked = {projectId.toStdString(), taskId.toStdString()};
    applyPick(m_draft);
    Q_EMIT edited();
}

void EntryEditor::applyPick(EntryDraft &draft) const
{
    const auto &[projectId, taskId] = *m_picked;
    if (!taskId.empty())
        draft.setTask(taskId, m_tracker->catalog());
    else
        draft.setProject(projectId.empty() ? std::nullopt : std::optional(projectId), m_tracker->catalog());
}

void EntryEditor::setBillable(bool isBillable)
{
    m_draft.setBillable(isBillable);
    Q_EMIT edited();
}

void EntryEditor::takeOver(const TimeEntrySuggestion &work)
{
    if (m_entryId.empty() || !m_tracker)
        return;
    m_description = text(work.description);
    if (m_tags.trimmed().isEmpty())
        m_tags = tagsText(work.tagIds, m_tracker->catalog());
    const ProjectResponse *project = work.projectId ? m_tracker->catalog().project(*work.projectId) : nullptr;
    if (!m_draft.details().projectId && !isSplit() && project != nullptr && !project->isArchived) {
        const bool hasTask = work.taskId && m_tracker->catalog().task(*work.taskId) != nullptr;
        setProject(text(project->id), hasTask ? text(*work.taskId) : QString());
        m_draft.setBillable(work.isBillable);
    }
    Q_EMIT edited();
}

std::optional<TypedMoment> EntryEditor::moment(const QString &typed) const
{
    return readNamedMoment(typed.trimmed().toStdString(),
                           EntrySentence::Options::of(m_app->account()->me().preferences), m_tracker->time(),
                           AppClock::now());
}

/// What the two fields say; one that still says what is shown changes nothing, so seconds that are not shown
/// stay.
Result<EntryTimes, EntryTimesProblem> EntryEditor::typedTimes() const
{
    const UserTime &time = m_tracker->time();
    const bool isStartTyped = m_start.trimmed() != text(time.clockLabel(m_times.start));
    const bool isStopTyped = m_times.stop && m_stop.trimmed() != text(time.clockLabel(*m_times.stop));
    return m_times.changed(isStartTyped ? moment(m_start) : std::nullopt,
                           isStopTyped ? moment(m_stop) : std::nullopt, time, AppClock::now());
}

void EntryEditor::nudge(Field field, int minutes)
{
    if (m_entryId.empty() || !takeTimes())
        return;
    EntryTimes times = m_times;
    const std::chrono::minutes step{minutes};
    if (field == Field::Start)
        times.start += step;
    else if (times.stop)
        *times.stop += step;
    if (times.stop && *times.stop <= times.start)
        return;
    show(times);
    Q_EMIT edited();
}

void EntryEditor::settle(Field field)
{
    if (m_entryId.empty())
        return;
    if (field == Field::Length && m_times.stop) {
        const auto seconds = Durations::parse(m_length.toStdString());
        if (!seconds || *seconds <= 0) {
            setProblem(Field::Length, tr("“%1” is no length. Type 1:30, 1.5h or 90.").arg(m_length));
            return;
        }
        if (m_length != text(Durations::shortLabel(secondsBetween(m_times.start, *m_times.stop))))
            show({m_times.start, m_times.start + std::chrono::seconds(static_cast<std::int64_t>(*seconds))});
        setProblem(Field::None, {});
        Q_EMIT edited();
        return;
    }
    takeTimes();
}

bool EntryEditor::takeTimes()
{
    const auto unread = [&](Field field, const QString &typed) {
        setProblem(field, tr("“%1” is not a time. Type 930, 9:30 or -15 for 15 min ago.").arg(typed));
        return false;
    };
    if (!moment(m_start))
        return unread(Field::Start, m_start);
    if (m_times.stop && !moment(m_stop))
        return unread(Field::Stop, m_stop);
    const auto times = typedTimes();
    if (!times) {
        setProblem(Field::Stop, timesProblemText(times.error()));
        return false;
    }
    setProblem(Field::None, {});
    show(*times);
    Q_EMIT edited();
    return true;
}

bool EntryEditor::takeTags()
{
    auto tags =
        typedTags(m_tags, m_tracker->catalog(), m_app->account()->me().preferences, m_tracker->time());
    if (!tags) {
        setProblem(Field::Tags, tr("No tag is called “%1”.").arg(text(tags.error())));
        return false;
    }
    m_draft.setTags(std::move(*tags));
    return true;
}

/// Reads every field; false where one cannot be read.
bool EntryEditor::takeTexts()
{
    setProblem(Field::None, {});
    if (m_times.stop)
        settle(Field::Length);
    if (m_problem.isEmpty())
        takeTimes();
    return m_problem.isEmpty() && takeTags();
}

/// What was changed here, in the entry as it is by now: what another device changed meanwhile stays.
EntryRequest EntryEditor::changed(const TimeEntryResponse &entry) const
{
    EntryDraft draft = EntryDraft::of(entry);
    const EntryDetails &edited = m_draft.details();
    if (m_description != text(m_base.description))
        draft.setDescription(m_description.trimmed().toStdString());
    if (m_picked)
        applyPick(draft);
    if (edited.tagIds != m_base.tagIds)
        draft.setTags(edited.tagIds);
    if (edited.isBillable != m_base.isBillable)
        draft.setBillable(edited.isBillable);
    EntryTimes times{entry.start, entry.stop};
    if (m_times.start != m_base.start)
        times.start = m_times.start;
    if (times.stop && m_times.stop != m_base.stop)
        times.stop = m_times.stop;
    return draft.at(times);
}

void EntryEditor::save()
{
    if (m_entryId.empty() || !m_tracker || !takeTexts())
        return;
    const auto entry = m_tracker->entry(m_entryId);
    if (!entry) {
        m_app->notices()->tellFailure(tr("The entry was deleted meanwhile; nothing was changed."));
        close();
        return;
    }
    EntryRequest request = changed(*entry);
    close();
    if (request != EntryDraft::of(*entry).at({entry->start, entry->stop}))
        write(entry->id, std::move(request));
}

Task<> EntryEditor::write(std::string id, EntryRequest request)
{
    const QPointer<EntryEditor> self(this);
    const QString entryId = text(id);
    const SaveResult result = co_await m_tracker->update(std::move(id), std::move(request));
    if (!self)
        co_return;
    if (result.error || result.outcome == SaveOutcome::saved || result.outcome == SaveOutcome::waiting)
        Q_EMIT written(entryId);
    if (result.outcome == SaveOutcome::rejected || result.outcome == SaveOutcome::failed ||
        result.outcome == SaveOutcome::needsDetails)
        m_app->notices()->tellFailure(text(result.message));
}

} // namespace orvane
