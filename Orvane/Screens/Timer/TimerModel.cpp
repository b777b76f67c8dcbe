// SPDX-License-Identifier: GPL-3.0-or-later
#include "Screens/Timer/TimerModel.h"

#include "AppModel/AppModel.h"
#include "Catalog/EntrySeconds.h"
#include "EntryInput/EntryDraft.h"
#include "Time/AppClock.h"
#include "Tracker/ActionMoment.h"

namespace orvane {

namespace {

QString shown(const std::string &text)
{
    return QString::fromStdString(text);
}

} // namespace

TimerModel::TimerModel(AppModel &app)
    : m_app(&app)
    , m_list(nullptr)
    , m_field(app, "timer")
    , m_editor(app)
    , m_suggestions(app, m_editor)
    , m_picker(app)
    , m_ruler(nullptr)
    , m_split(app)
    , m_several(app, m_list)
    , m_conflict(app)
    , m_refused(app, m_editor, m_field)
{
    connect(m_app, &AppModel::trackerChanged, this, &TimerModel::follow);
    connect(m_app, &AppModel::phaseChanged, this, &TimerModel::changed);
    connect(&m_app->tick(), &SecondTick::ticked, this, &TimerModel::tick);
    connect(&m_editor, &EntryEditor::entryChanged, this, &TimerModel::runningEditedChanged);
    connect(this, &TimerModel::runningChanged, this, &TimerModel::runningEditedChanged);
    follow();
}

void TimerModel::follow()
{
    if (m_tracker)
        m_tracker->disconnect(this);
    m_tracker = m_app->tracker();
    m_list.setTracker(m_tracker);
    m_ruler.setTracker(m_tracker);
    if (m_tracker) {
        connect(m_tracker, &Tracker::entriesChanged, this, &TimerModel::followRunning);
        connect(m_tracker, &Tracker::timeChanged, this, &TimerModel::followRunning);
        connect(m_tracker, &Tracker::dayTurned, this, &TimerModel::followRunning);
        connect(m_tracker, &Tracker::stateChanged, this, &TimerModel::changed);
        connect(&m_tracker->catalog(), &Catalog::changed, this, &TimerModel::runningChanged);
        connect(&m_tracker->catalog(), &Catalog::changed, &m_ruler, &DayRuler::update);
    }
    followRunning();
}

void TimerModel::followRunning()
{
    m_app->tick().setNeeded(this, isRunning());
    m_needs.clear();
    m_ruler.update();
    Q_EMIT runningChanged();
    Q_EMIT ticked();
    Q_EMIT changed();
}

void TimerModel::tick()
{
    m_list.tick();
    m_ruler.tick();
    Q_EMIT ticked();
}

// What is shown

KeyTable *TimerModel::keys() const
{
    return m_app->keys();
}

bool TimerModel::isLoading() const
{
    return m_app->phase() == AppModel::Phase::Opening ||
           (m_tracker && m_tracker->state() == LoadState::loading && m_tracker->entries().empty());
}

bool TimerModel::isEmpty() const
{
    return m_tracker && !isLoading() && m_tracker->entries().empty() && !isRunning();
}

QString TimerModel::loadProblem() const
{
    if (m_app->phase() == AppModel::Phase::Failed)
        return m_app->problem();
    // Being away is told beside the workspace; what is known here stands all the same.
    if (!m_tracker || m_tracker->state() != LoadState::failed || !m_tracker->loadError() ||
        std::holds_alternative<ConnectionError>(*m_tracker->loadError()))
        return {};
    return shown(describe(*m_tracker->loadError()));
}

bool TimerModel::isLoadingMore() const
{
    return m_tracker && m_tracker->isLoadingMore();
}

bool TimerModel::isRunning() const
{
    return m_tracker && m_tracker->running();
}

bool TimerModel::isRunningEdited() const
{
    return isRunning() && m_editor.entryId() == shown(m_tracker->running()->id);
}

QString TimerModel::description() const
{
    return isRunning() ? shown(m_tracker->running()->description) : QString();
}

QString TimerModel::project() const
{
    const auto *project = isRunning() && m_tracker->running()->projectId
                              ? m_tracker->catalog().project(*m_tracker->running()->projectId)
                              : nullptr;
    return project != nullptr ? shown(project->name) : QString();
}

QString TimerModel::task() const
{
    const auto *task = isRunning() && m_tracker->running()->taskId
                           ? m_tracker->catalog().task(*m_tracker->running()->taskId)
                           : nullptr;
    return task != nullptr ? shown(task->name) : QString();
}

QString TimerModel::projectColor() const
{
    const auto *project = isRunning() && m_tracker->running()->projectId
                              ? m_tracker->catalog().project(*m_tracker->running()->projectId)
                              : nullptr;
    return project != nullptr ? shown(project->color) : QString();
}

bool TimerModel::isBillable() const
{
    return isRunning() && m_tracker->running()->isBillable;
}

QString TimerModel::since() const
{
    if (!isRunning())
        return {};
    const UserTime &time = m_tracker->time();
    const Instant start = m_tracker->running()->start;
    const DayKey day = time.dayKey(start);
    const QString clock = shown(time.clockLabel(start));
    return day == time.today() ? tr("since %1").arg(clock)
                               : tr("since %1, %2").arg(shown(time.dayLabel(day)), clock);
}

QString TimerModel::elapsed() const
{
    return isRunning() ? shown(Durations::format(
                             static_cast<double>(entrySeconds(*m_tracker->running(), AppClock::now())),
                             Durations::Format::hms))
                       : QString();
}

QString TimerModel::total(DayKey first, int count) const
{
    const InstantInterval days{m_tracker->time().startOfDay(first),
                               m_tracker->time().startOfDay(first.adding(count))};
    const std::int64_t seconds = entrySeconds(m_tracker->entries(), days, AppClock::now());
    return shown(Durations::shortLabel(static_cast<double>(seconds)));
}

QString TimerModel::todayTotal() const
{
    return m_tracker ? total(m_tracker->time().today(), 1) : QString();
}

QString TimerModel::weekTotal() const
{
    return m_tracker ? total(m_tracker->time().weekStartContaining(m_tracker->time().today()), 7) : QString();
}

// What can be done

/// What went well is seen, or told once it is stored.
void TimerModel::tellFailure(const SaveResult &result)
{
    if (result.outcome == SaveOutcome::rejected || result.outcome == SaveOutcome::needsDetails ||
        result.outcome == SaveOutcome::failed)
        m_app->notices()->tellFailure(shown(result.message));
}

void TimerModel::editRunning()
{
    if (isRunning())
        m_editor.open(shown(m_tracker->running()->id));
}

void TimerModel::stop()
{
    if (isRunning())
        doStop();
}

void TimerModel::startOrStop()
{
    if (isRunning())
        doStop();
    else
        continueLast();
}

void TimerModel::continueLast()
{
    if (m_tracker)
        doContinueLast();
}

void TimerModel::continueEntry(const QString &id)
{
    if (m_tracker)
        doContinue(id.toStdString());
}

void TimerModel::duplicate(const QString &id)
{
    if (m_tracker)
        doDuplicate(id.toStdString());
}

void TimerModel::remove(const QString &id)
{
    if (m_tracker)
        doRemove(id.toStdString());
}

bool TimerModel::trim(const QString &id)
{
    const auto offer = m_tracker ? m_list.offerFor(id) : std::nullopt;
    if (!offer)
        return false;
    const TimeEntryResponse &entry = m_list.entryOf(offer->entry);
    doTrim(entry.id, offer->trimmed(entry));
    return true;
}

void TimerModel::loadWeekBefore()
{
    if (m_tracker && !isLoadingMore())
        doLoadWeekBefore();
}

void TimerModel::loadAgain()
{
    if (m_tracker)
        m_tracker->load();
    else
        m_app->openAgain();
}

Task<> TimerModel::doStop()
{
    const QPointer<TimerModel> self(this);
    const Instant at = ActionMoment::of(m_tracker->running(), AppClock::now(), {}).at;
    const SaveResult result = co_await m_tracker->stop(at);
    if (!self)
        co_return;
    if (result.outcome == SaveOutcome::needsDetails) {
        m_needs = shown(result.message);
        Q_EMIT runningChanged();
        // Where it can be added.
        editRunning();
        co_return;
    }
    tellFailure(result);
}

Task<> TimerModel::doContinueLast()
{
    const QPointer<TimerModel> self(this);
    const Instant at = ActionMoment::of(m_tracker->running(), AppClock::now(), {}).at;
    const SaveResult result = co_await m_tracker->continueLast(at);
    if (self)
        tellFailure(result);
}

Task<> TimerModel::doContinue(std::string id)
{
    const QPointer<TimerModel> self(this);
    const auto entry = m_tracker->entry(id);
    if (!entry)
        co_return;
    const Instant at = ActionMoment::of(m_tracker->running(), AppClock::now(), {}).at;
    const SaveResult result =
        co_await m_tracker->create(EntryDraft::continuing(*entry).at({millisecondsFloor(at), {}}));
    if (self)
        tellFailure(result);
}

Task<> TimerModel::doDuplicate(std::string id)
{
    const QPointer<TimerModel> self(this);
    const SaveResult result = co_await m_tracker->duplicate(id);
    if (self)
        tellFailure(result);
}

Task<> TimerModel::doRemove(std::string id)
{
    const QPointer<TimerModel> self(this);
    const SaveResult result = co_await m_tracker->remove(id);
    if (self)
        tellFailure(result);
}

Task<> TimerModel::doTrim(std::string id, EntryRequest request)
{
    const QPointer<TimerModel> self(this);
    const SaveResult result = co_await m_tracker->update(std::move(id), std::move(request));
    if (self)
        tellFailure(result);
}

Task<> TimerModel::doLoadWeekBefore()
{
    const QPointer<TimerModel> self(this);
    m_weekProblem.clear();
    const auto loaded = co_await m_tracker->loadWeekBefore();
    if (!self)
        co_return;
    m_weekProblem = loaded ? QString() : tr("Couldn't load the week before.");
    Q_EMIT changed();
}

} // namespace orvane
