// SPDX-License-Identifier: GPL-3.0-or-later
#include "Screens/Timer/EntryField.h"

#include "AppModel/AppModel.h"
#include "AppModel/PickNotes.h"
#include "QuickEntry/PalettePicks.h"
#include "QuickEntry/SentenceNote.h"
#include "QuickEntry/UnreadTime.h"
#include "Time/AppClock.h"

namespace orvane {

namespace {

QString noteText(const SentenceNote &note)
{
    using Kind = SentenceNote::Kind;
    const QString text = QStringLiteral("“%1”").arg(QString::fromStdString(note.text));
    switch (note.kind) {
    case Kind::client:
        return EntryField::tr("%1 is a client; name one of its projects to put the entry there.").arg(text);
    case Kind::unknownTag:
        return EntryField::tr("No tag is called %1, so it stays in the description.").arg(text);
    case Kind::unknownName:
        return EntryField::tr("No project, task or client is called %1, so it stays in the description.")
            .arg(text);
    case Kind::ambiguousName:
        return EntryField::tr("Several names match %1; type more of the one you mean.").arg(text);
    case Kind::secondProject:
        return EntryField::tr("A project is named already, so %1 stays in the description.").arg(text);
    case Kind::surplusName:
        return EntryField::tr("%1 does not go with what else is named, so it stays in the description.")
            .arg(text);
    case Kind::bareHours:
        return EntryField::tr("%1 is not taken as a time; for one, write %2.")
            .arg(text, QString::fromStdString(note.suggestion));
    case Kind::day:
        return EntryField::tr("%1 is not taken as a day.").arg(text);
    case Kind::dayWithoutTime:
        return EntryField::tr("%1 is not taken as a day; a day needs its time beside it.").arg(text);
    case Kind::time:
        break;
    }
    return EntryField::tr("%1 is not taken as a time; it stays in the description.").arg(text);
}

QString unreadText(const UnreadTime &unread)
{
    const QString text = QStringLiteral("“%1”").arg(QString::fromStdString(unread.text));
    if (unread.why == UnreadTime::Why::noRange)
        return EntryField::tr("%1 lasts no time at all, or more than 16 hours; it stays in the description.")
            .arg(text);
    return EntryField::tr("%1 is not taken as a time, since “%2” stands behind it and names nothing.")
        .arg(text, QString::fromStdString(unread.mark));
}

QVariantMap chip(const char *kind, const std::string &name, const std::string &color = {})
{
    return {{QStringLiteral("kind"), QString::fromLatin1(kind)},
            {QStringLiteral("name"), QString::fromStdString(name)},
            {QStringLiteral("color"), QString::fromStdString(color)}};
}

bool isTaken(SaveOutcome outcome)
{
    return outcome == SaveOutcome::saved || outcome == SaveOutcome::waiting ||
           outcome == SaveOutcome::stopped;
}

} // namespace

EntryField::EntryField(AppModel &app, std::string place) : m_app(&app), m_place(std::move(place))
{
    connect(m_app, &AppModel::trackerChanged, this, &EntryField::follow);
    connect(&m_app->tick(), &SecondTick::ticked, this, [this] {
        // What it will do names the time that it is.
        if (!m_text.isEmpty() && floor<std::chrono::minutes>(AppClock::now()) != m_readAt)
            read();
    });
    follow();
}

void EntryField::follow()
{
    m_tracker = m_app->tracker();
    if (m_tracker) {
        connect(&m_tracker->catalog(), &Catalog::changed, this, &EntryField::readAgain);
        connect(m_tracker, &Tracker::timeChanged, this, &EntryField::read);
        connect(m_tracker, &Tracker::entriesChanged, this, &EntryField::read);
        connect(m_tracker, &Tracker::settingsChanged, this, &EntryField::read);
    }
    // What was typed before there was an account counts more than what was left of the last time.
    if (m_text.isEmpty())
        setText(m_app->draft(m_place));
    else
        m_app->setDraft(m_place, m_text);
    readAgain();
}

void EntryField::readAgain()
{
    m_areNamesStale = true;
    read();
}

const SentenceCatalog &EntryField::names()
{
    if (m_areNamesStale && m_tracker) {
        const Catalog &catalog = m_tracker->catalog();
        m_names = SentenceCatalog(catalog.projects(), catalog.clients(), catalog.tags());
        m_areNamesStale = false;
    }
    return m_names;
}

void EntryField::setText(const QString &text)
{
    if (m_text == text)
        return;
    m_text = text;
    m_app->setDraft(m_place, text);
    Q_EMIT textChanged();
    read();
}

void EntryField::read()
{
    m_reading = {};
    m_span.reset();
    m_notes.clear();
    m_plan = {};
    m_readAt = floor<std::chrono::minutes>(AppClock::now());
    if (m_tracker && !m_text.trimmed().isEmpty()) {
        const Catalog &catalog = m_tracker->catalog();
        const Instant now = AppClock::now();
        const auto options = EntrySentence::Options::of(m_app->account()->me().preferences);
        m_reading = EntrySentence::read(m_text.toStdString(), names(), options, now, m_tracker->time());
        if (m_reading.time)
            m_span = EntrySentence::resolve(*m_reading.time, m_reading.day, now, m_tracker->time());
        if (const auto unread = UnreadTime::of(m_reading, options, now, m_tracker->time()))
            m_notes.append(unreadText(*unread));
        else
            for (const SentenceNote &note : SentenceNote::of(m_reading, catalog))
                m_notes.append(noteText(note));
        m_plan = planned();
    }
    Q_EMIT readingChanged();
}

QVariantList EntryField::timeRanges() const
{
    QVariantList list;
    for (const TextRange &range : m_reading.timeRanges)
        list.append(QVariantMap{{QStringLiteral("start"), static_cast<int>(range.start)},
                                {QStringLiteral("length"), static_cast<int>(range.end - range.start)}});
    return list;
}

QVariantList EntryField::chips() const
{
    QVariantList list;
    if (!m_tracker)
        return list;
    const Catalog &catalog = m_tracker->catalog();
    for (const EntrySentence::ShownChip &shown : m_reading.chips()) {
        switch (shown.chip) {
        case EntrySentence::Chip::project:
            if (const ProjectResponse *project = catalog.project(shown.id)) {
                const TaskResponse *task = m_reading.taskID ? catalog.task(*m_reading.taskID) : nullptr;
                list.append(chip("project", project->name + (task != nullptr ? " › " + task->name : ""),
                                 project->color));
            }
            break;
        case EntrySentence::Chip::client:
            if (const ClientResponse *client = catalog.client(shown.id))
                list.append(chip("client", client->name));
            break;
        case EntrySentence::Chip::tag:
            if (const TagResponse *tag = catalog.tag(shown.id))
                list.append(chip("tag", "#" + tag->name));
            break;
        case EntrySentence::Chip::billable:
            list.append(chip("billable", "$"));
            break;
        }
    }
    return list;
}

QString EntryField::span() const
{
    if (!m_span)
        return {};
    const UserTime &time = m_tracker->time();
    const DayKey day = time.dayKey(m_span->start);
    const QString start = QString::fromStdString(time.clockLabel(m_span->start));
    const QString stop = m_span->stop ? QString::fromStdString(time.clockLabel(*m_span->stop)) : tr("now");
    const QString span = tr("%1 – %2").arg(start, stop);
    return day == time.today() ? span : tr("%1, %2").arg(QString::fromStdString(time.dayLabel(day)), span);
}

QString EntryField::spanLength() const
{
    if (!m_span)
        return {};
    return QString::fromStdString(
        Durations::shortLabel(secondsBetween(m_span->start, m_span->stop.value_or(AppClock::now()))));
}

SentencePlan EntryField::planned() const
{
    const Tracker &tracker = *m_tracker;
    const auto refusal = [&](const EntryRequest &request) {
        const auto refused = tracker.refusalOf(request);
        return refused ? refused->message : std::string();
    };
    return SentencePlan::of(m_reading, {.catalog = tracker.catalog(),
                                        .time = tracker.time(),
                                        .running = tracker.running(),
                                        .now = AppClock::now(),
                                        .refusal = refusal});
}

void EntryField::submit()
{
    if (m_tracker && !m_text.trimmed().isEmpty())
        record();
}

/// What is typed stays until it is recorded: whatever happens, it is either an entry or still in the field.
Task<> EntryField::record()
{
    const QPointer<EntryField> self(this);
    const QPointer<Tracker> tracker = m_tracker;
    read();
    if (m_plan.kind == SentencePlan::Kind::cannot || !m_plan.request) {
        m_app->notices()->tellFailure(plan());
        Q_EMIT recorded(false);
        co_return;
    }
    const QString typed = m_text;
    const PalettePicks picks = PalettePicks::of(m_reading);
    const EntryRequest request = *m_plan.request;
    setText({});
    const SaveResult result = co_await tracker->create(request);
    if (!self)
        co_return;
    if (!isTaken(result.outcome)) {
        if (m_text.isEmpty())
            setText(typed);
        m_app->notices()->tellFailure(QString::fromStdString(result.message));
        Q_EMIT recorded(false);
        co_return;
    }
    if (tracker)
        notePicks(m_app->installation(), *tracker, picks);
    Q_EMIT recorded(true);
}

} // namespace orvane
