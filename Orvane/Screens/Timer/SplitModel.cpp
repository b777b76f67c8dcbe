// SPDX-License-Identifier: GPL-3.0-or-later
#include "Screens/Timer/SplitModel.h"

#include "AppModel/AppModel.h"
#include "Catalog/EntryConversions.h"
#include "Catalog/EntrySeconds.h"
#include "EntryInput/NamedMoment.h"
#include "Screens/Timer/PartMinutes.h"
#include "Time/AppClock.h"

#include <algorithm>
#include <cmath>

namespace orvane {

namespace {

QString utf16(const std::string &text)
{
    return QString::fromStdString(text);
}

QString minutesLabel(std::int64_t minutes)
{
    return utf16(Durations::shortLabel(static_cast<double>(minutes * 60)));
}

QString entryTitle(const TimeEntryResponse &entry)
{
    return entry.description.empty() ? SplitModel::tr("the entry")
                                     : QStringLiteral("“%1”").arg(utf16(entry.description));
}

std::int64_t wholeMinutes(const TimeEntryResponse &entry)
{
    return entrySeconds(entry, AppClock::now()) / 60;
}

} // namespace

SplitModel::SplitModel(AppModel &app) : m_app(&app), m_halves(nullptr), m_parts(nullptr)
{
    connect(m_app, &AppModel::trackerChanged, this, &SplitModel::follow);
    connect(&m_app->tick(), &SecondTick::ticked, this, &SplitModel::tick);
    follow();
}

void SplitModel::follow()
{
    close();
    m_telling.reset();
    if (m_tracker)
        m_tracker->disconnect(this);
    m_tracker = m_app->tracker();
    m_halves.setTracker(m_tracker);
    m_parts.setTracker(m_tracker);
    if (!m_tracker)
        return;
    connect(m_tracker, &Tracker::entriesChanged, this, &SplitModel::takeEntry);
    connect(m_tracker, &Tracker::timeChanged, this, &SplitModel::showMoment);
    connect(m_tracker, &Tracker::stepStored, this, &SplitModel::tellStored);
}

// What is shown

QString SplitModel::title() const
{
    return m_entryId.empty() ? QString() : tr("Split %1").arg(entryTitle(m_base));
}

QString SplitModel::about() const
{
    if (m_entryId.empty() || !m_tracker)
        return {};
    const UserTime &time = m_tracker->time();
    return tr("%1 – %2 · %3")
        .arg(utf16(time.clockLabel(m_base.start)),
             m_base.stop ? utf16(time.clockLabel(*m_base.stop)) : tr("now"), total());
}

QString SplitModel::total() const
{
    return m_entryId.empty() ? QString() : minutesLabel(wholeMinutes(m_base));
}

QString SplitModel::momentText() const
{
    return m_moment && m_tracker ? utf16(m_tracker->time().clockLabel(m_moment->at())) : QString();
}

Instant SplitModel::end() const
{
    return m_base.stop.value_or(AppClock::now());
}

QVariantList SplitModel::marks() const
{
    QVariantList marks;
    if (!m_moment || !m_tracker)
        return marks;
    const UserTime &time = m_tracker->time();
    const auto add = [&](Instant at, const QString &text) {
        marks << QVariantMap{{QStringLiteral("text"), text},
                             {QStringLiteral("position"), m_moment->positionOf(at)}};
    };
    add(m_base.start, utf16(time.clockLabel(m_base.start)));
    for (const Instant at : m_moment->roundTimes(time))
        add(at, utf16(time.clockLabel(at)));
    add(end(), m_base.stop ? utf16(time.clockLabel(*m_base.stop)) : tr("now"));
    return marks;
}

bool SplitModel::canAddPart() const
{
    return m_parts.count() < static_cast<int>(SplitPercents::mostParts);
}

bool SplitModel::canRemovePart() const
{
    return m_parts.count() > static_cast<int>(SplitPercents::fewestParts);
}

void SplitModel::setMode(Mode mode)
{
    if (m_mode == mode || (mode == Mode::AtTime && !m_moment))
        return;
    settlePercents();
    m_typedMoment = momentText();
    m_mode = mode;
    setProblem({});
    Q_EMIT momentChanged();
    Q_EMIT modeChanged();
}

void SplitModel::setProblem(const QString &problem, bool isMomentWrong)
{
    if (m_problem == problem && m_isMomentWrong == isMomentWrong)
        return;
    m_problem = problem;
    m_isMomentWrong = isMomentWrong;
    Q_EMIT problemChanged();
}

/// Moment, halves and parts as they are by now.
void SplitModel::showMoment()
{
    if (m_entryId.empty() || !m_tracker)
        return;
    m_typedMoment = momentText();
    showTimes();
    Q_EMIT marksChanged();
}

void SplitModel::showTimes()
{
    const std::int64_t whole = entrySeconds(m_base, AppClock::now());
    if (m_moment) {
        const UserTime &time = m_tracker->time();
        const QString end = m_base.stop ? utf16(time.clockLabel(*m_base.stop)) : tr("now");
        m_halves.setTimes(0, tr("%1 – %2").arg(utf16(time.clockLabel(m_base.start)), momentText()));
        m_halves.setTimes(1, tr("%1 – %2").arg(momentText(), end));
        const auto first = static_cast<std::int64_t>(secondsBetween(m_base.start, m_moment->at()));
        m_halves.setMinutes(partMinutes({first, whole - first}));
    }
    TimeEntryResponse shared = m_base;
    shared.shares.clear();
    for (const std::int64_t percent : m_parts.percents())
        shared.shares.emplace_back().percent = percent;
    m_parts.setMinutes(partMinutes(shareSeconds(shared, AppClock::now())));
    Q_EMIT momentChanged();
}

// Opening and leaving

bool SplitModel::open(const QString &id)
{
    const auto entry = m_tracker ? m_tracker->entry(id.toStdString()) : std::nullopt;
    if (!entry)
        return false;
    if (m_tracker->settings() && m_tracker->rules().isLocked(entry->start)) {
        m_app->notices()->tellFailure(tr("This entry lies in a locked period of the workspace."));
        return false;
    }
    m_entryId = entry->id;
    m_base = *entry;
    m_gesture.reset();
    m_moment = SplitMoment::within(m_base.start, end());
    m_mode = m_moment && !isSplit() ? Mode::AtTime : Mode::ByPercent;
    m_halves.reset({m_base, m_base});
    m_parts.reset(partEntries());
    m_parts.setPercents(partPercents());
    setProblem({});
    showMoment();
    Q_EMIT modeChanged();
    Q_EMIT partsChanged();
    Q_EMIT entryChanged();
    return true;
}

/// What the parts say at first: those there are, or the entry and a second one that is still to be told where
/// it goes.
std::vector<TimeEntryResponse> SplitModel::partEntries() const
{
    TimeEntryResponse bare = m_base;
    bare.shares.clear();
    std::vector<TimeEntryResponse> entries;
    for (const TimeShareResponse &share : m_base.shares) {
        TimeEntryResponse part = bare;
        part.description = share.description;
        part.projectId = share.projectId;
        part.taskId = share.taskId;
        part.isBillable = share.isBillable;
        entries.push_back(std::move(part));
    }
    if (entries.empty())
        entries.push_back(bare);
    bare.projectId.reset();
    bare.taskId.reset();
    bare.isBillable = false;
    while (entries.size() < SplitPercents::fewestParts)
        entries.push_back(bare);
    return entries;
}

SplitPercents::Percents SplitModel::partPercents() const
{
    SplitPercents::Percents percents;
    for (const TimeShareResponse &share : m_base.shares)
        percents.push_back(share.percent);
    if (percents.size() < SplitPercents::fewestParts)
        percents.assign(SplitPercents::fewestParts, 1);
    return SplitPercents::made(percents);
}

void SplitModel::cancel()
{
    close();
}

void SplitModel::close()
{
    if (m_entryId.empty())
        return;
    m_entryId.clear();
    setProblem({});
    Q_EMIT entryChanged();
}

void SplitModel::tellGone()
{
    m_app->notices()->tellFailure(tr("The entry was deleted meanwhile; nothing was changed."));
    close();
}

/// The entry may be gone by now, or lie at other times.
void SplitModel::takeEntry()
{
    if (m_entryId.empty())
        return;
    const auto entry = m_tracker->entry(m_entryId);
    if (!entry) {
        tellGone();
        return;
    }
    if (entry->start == m_base.start && entry->stop == m_base.stop)
        return;
    m_base.start = entry->start;
    m_base.stop = entry->stop;
    m_moment = m_moment ? m_moment->movedInto(m_base.start, end()) : SplitMoment::within(m_base.start, end());
    if (!m_moment)
        setMode(Mode::ByPercent);
    showMoment();
}

/// Of a running entry, the end moves on.
void SplitModel::tick()
{
    if (m_entryId.empty() || m_base.stop)
        return;
    const bool isTyping = m_typedMoment != momentText();
    m_moment = m_moment ? m_moment->movedInto(m_base.start, end()) : SplitMoment::within(m_base.start, end());
    if (!isTyping)
        m_typedMoment = momentText();
    showTimes();
}

// At a time

bool SplitModel::settleMoment()
{
    if (m_entryId.empty() || !m_moment)
        return false;
    const QString typed = m_typedMoment.trimmed();
    if (typed != momentText()) {
        const auto read = readNamedMoment(typed.toStdString(),
                                          EntrySentence::Options::of(m_app->account()->me().preferences),
                                          m_tracker->time(), AppClock::now());
        if (!read) {
            setProblem(tr("“%1” is not a time. Type 930, 9:30 or -15 for 15 min ago.").arg(typed), true);
            return false;
        }
        if (!m_moment->take(*read, m_tracker->time())) {
            const UserTime &time = m_tracker->time();
            setProblem(
                tr("The entry can be split from %1 to %2.")
                    .arg(utf16(time.clockLabel(m_moment->first())), utf16(time.clockLabel(m_moment->last()))),
                true);
            return false;
        }
    }
    setProblem({});
    showMoment();
    return true;
}

void SplitModel::nudgeMoment(int minutes)
{
    if (!settleMoment())
        return;
    m_moment->nudge(std::chrono::minutes{minutes});
    showMoment();
}

void SplitModel::moveMoment(double position)
{
    if (m_entryId.empty() || !m_moment)
        return;
    m_moment->moveTo(position);
    setProblem({});
    showMoment();
}

// By percents

void SplitModel::setPercents(const SplitPercents::Percents &percents)
{
    m_parts.setPercents(percents);
    setProblem({});
    showTimes();
}

const SplitPercents::Percents &SplitModel::percentsBefore(bool isBorder, int row)
{
    if (!m_gesture || m_gesture->isBorder != isBorder || m_gesture->row != row) {
        settlePercents();
        m_gesture = Gesture{isBorder, row, m_parts.percents()};
    }
    return m_gesture->before;
}

void SplitModel::typePercent(int row, const QString &text)
{
    if (m_entryId.empty() || row < 0 || row >= m_parts.count())
        return;
    const SplitPercents::Percents &before = percentsBefore(false, row);
    m_parts.setTypedPercent(row, text);
    QString digits = text.trimmed();
    if (digits.endsWith(QLatin1Char('%')))
        digits.chop(1);
    bool isNumber = false;
    const int wanted = digits.toInt(&isNumber);
    // What is no number yet leaves the parts as they were.
    setPercents(isNumber ? SplitPercents::given(before, static_cast<std::size_t>(row), wanted) : before);
}

void SplitModel::moveBorder(int row, double position)
{
    if (m_entryId.empty() || row < 0 || row >= m_parts.count() - 1)
        return;
    const auto at = std::llround(std::clamp(position, 0.0, 1.0) * SplitPercents::whole);
    setPercents(SplitPercents::moved(percentsBefore(true, row), static_cast<std::size_t>(row), at));
}

void SplitModel::settlePercents()
{
    m_gesture.reset();
    m_parts.setTypedPercent(-1, {});
}

void SplitModel::nudgePercent(int row, int by)
{
    if (m_entryId.empty() || row < 0 || row >= m_parts.count())
        return;
    settlePercents();
    const SplitPercents::Percents percents = m_parts.percents();
    const auto part = static_cast<std::size_t>(row);
    setPercents(SplitPercents::given(percents, part, percents[part] + by));
}

void SplitModel::addPart()
{
    if (m_entryId.empty() || m_mode != Mode::ByPercent || !canAddPart())
        return;
    settlePercents();
    const SplitPercents::Percents percents = SplitPercents::added(m_parts.percents());
    TimeEntryResponse part = m_base;
    part.shares.clear();
    part.projectId.reset();
    part.taskId.reset();
    part.isBillable = false;
    m_parts.append(part);
    setPercents(percents);
    Q_EMIT partsChanged();
}

void SplitModel::removePart(int row)
{
    if (m_entryId.empty() || !canRemovePart() || row < 0 || row >= m_parts.count())
        return;
    settlePercents();
    const SplitPercents::Percents percents =
        SplitPercents::without(m_parts.percents(), static_cast<std::size_t>(row));
    m_parts.remove(row);
    setPercents(percents);
    Q_EMIT partsChanged();
}

// Saving

void SplitModel::save()
{
    if (m_entryId.empty() || !m_tracker)
        return;
    const auto entry = m_tracker->entry(m_entryId);
    if (!entry)
        tellGone();
    else if (m_mode == Mode::AtTime)
        saveAtTime(*entry);
    else
        saveByPercent(*entry);
}

void SplitModel::saveAtTime(const TimeEntryResponse &entry)
{
    if (!settleMoment())
        return;
    std::optional<EntryDetails> first;
    if (m_halves.isChanged(0))
        first = m_halves.detailsOver(0, entry);
    write(m_tracker->splitAt(m_entryId, m_moment->at(), m_halves.detailsOver(1, entry), std::move(first)),
          tr("Split %1 at %2").arg(entryTitle(entry), momentText()));
}

void SplitModel::saveByPercent(const TimeEntryResponse &entry)
{
    settlePercents();
    std::vector<SplitPart> parts = m_parts.parts();
    if (parts == entryDetails(entry).shares) {
        close();
        return;
    }
    const QString done = tr("Split %1 into %2 parts").arg(entryTitle(entry)).arg(parts.size());
    write(m_tracker->split(m_entryId, std::move(parts)), done);
}

void SplitModel::joinAgain()
{
    const auto entry = m_tracker ? m_tracker->entry(m_entryId) : std::nullopt;
    if (!entry || !isSplit())
        return;
    write(m_tracker->split(m_entryId, {}), tr("Joined %1 again").arg(entryTitle(*entry)));
}

Task<> SplitModel::write(Task<SaveResult> saving, QString done)
{
    const QPointer<SplitModel> self(this);
    // What is refused without a server is refused at once, and what was typed stays.
    const bool isRefusedHere = saving.isReady();
    if (!isRefusedHere) {
        m_telling = Telling{m_entryId, std::move(done)};
        close();
    }
    const SaveResult result = co_await saving;
    if (!self)
        co_return;
    if (isRefusedHere)
        setProblem(utf16(result.message));
    else if (result.outcome == SaveOutcome::rejected || result.outcome == SaveOutcome::needsDetails ||
             result.outcome == SaveOutcome::failed)
        m_app->notices()->tellFailure(utf16(result.message));
}

/// It is done for its user from then on, whenever the server hears of it.
void SplitModel::tellStored(const StoredStep &stored)
{
    const bool isTold = m_telling && !stored.isTakeBack &&
                        std::ranges::any_of(stored.step.turns, [this](const EntryTurn &turn) {
                            return turn.id() == m_telling->entryId;
                        });
    if (!isTold)
        return;
    m_app->notices()->tell(m_telling->done, Notices::Action::Undo);
    m_telling.reset();
}

} // namespace orvane
