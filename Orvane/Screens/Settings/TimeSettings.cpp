// SPDX-License-Identifier: GPL-3.0-or-later
#include "Screens/Settings/TimeSettings.h"

#include "AppModel/AppModel.h"
#include "Catalog/EntrySeconds.h"
#include "Screens/Settings/SettingsWriter.h"
#include "Support/ZoneNames.h"
#include "Time/AppClock.h"
#include "Time/DateFormatters.h"
#include "Time/DayFigures.h"
#include "Time/SystemZone.h"
#include "Time/TypedDay.h"

#include <QVariantMap>
#include <array>

namespace orvane {

namespace {

constexpr int mostZones = 200;
/// What the examples have been running for: hours, minutes and seconds that are told apart.
constexpr std::chrono::seconds exampleLength{5076};

QString exampleText(const std::string &text)
{
    return QString::fromStdString(text);
}

QVariantMap choice(const QString &value, const QString &text, const QString &example, const QString &chosen)
{
    return {{QStringLiteral("value"), value},
            {QStringLiteral("text"), text},
            {QStringLiteral("example"), example},
            {QStringLiteral("isChosen"), value == chosen}};
}

QVariantMap reading(const char *typed, const std::string &read)
{
    return {{QStringLiteral("typed"), QString::fromUtf8(typed)}, {QStringLiteral("read"), exampleText(read)}};
}

} // namespace

TimeSettings::TimeSettings(AppModel &app, SettingsWriter &writer) : m_app(&app), m_writer(&writer)
{
    connect(m_writer, &SettingsWriter::changed, this, &TimeSettings::changed);
}

/// As it is chosen, which is ahead of the account's by what is on its way.
UserTime TimeSettings::time() const
{
    const auto &shown = m_writer->shown();
    if (!shown)
        return UserTime::utc();
    const auto made = UserTime::make(shown->profile.timeZone, static_cast<int>(shown->preferences.weekStart),
                                     shown->preferences.timeFormat == "12h", durationFormat());
    return made.value_or(m_app->tracker() != nullptr ? m_app->tracker()->time() : UserTime::utc());
}

Durations::Format TimeSettings::durationFormat() const
{
    const auto &shown = m_writer->shown();
    const std::string text = shown ? shown->preferences.durationFormat : std::string();
    return Durations::formatFromText(text).value_or(Durations::Format::hms);
}

QString TimeSettings::zone() const
{
    return m_writer->shown() ? exampleText(m_writer->shown()->profile.timeZone) : QString();
}

QString TimeSettings::zoneOffset() const
{
    const auto minutes = std::chrono::floor<std::chrono::minutes>(time().offset(AppClock::now())).count();
    const auto ahead = std::abs(minutes);
    return QStringLiteral("UTC%1%2:%3")
        .arg(minutes < 0 ? QStringLiteral("−") : QStringLiteral("+"))
        .arg(ahead / 60, 2, 10, QLatin1Char('0'))
        .arg(ahead % 60, 2, 10, QLatin1Char('0'));
}

QString TimeSettings::zoneSays() const
{
    const UserTime time = this->time();
    const Instant now = AppClock::now();
    const QString clock =
        tr("%1 on %2.")
            .arg(exampleText(time.clockLabel(now)), exampleText(DateFormatters::string(now, "EEEE", time)));
    const auto here = systemZone();
    if (!here)
        return clock;
    const std::string chosen = zone().toStdString();
    const bool isSame = *here == chosen || (isUtc(*here) && isUtc(chosen));
    return clock + QLatin1Char(' ') +
           (isSame ? tr("This computer's zone is the same.")
                   : tr("This computer's zone is %1.").arg(exampleText(*here)));
}

int TimeSettings::weekStart() const
{
    return m_writer->shown() ? static_cast<int>((m_writer->shown()->preferences.weekStart + 6) % 7) : 0;
}

QString TimeSettings::weekSays() const
{
    const UserTime time = this->time();
    const Instant now = AppClock::now();
    const auto week = time.weekContaining(time.today());
    const bool isOneMonth = week.front().month == week.back().month;
    const QString first =
        exampleText(DateFormatters::string(time.startOfDay(week.front()), isOneMonth ? "d" : "d MMMM", time));
    std::int64_t seconds = 0;
    const InstantInterval interval = time.weekInterval(time.today());
    if (const Tracker *tracker = m_app->tracker())
        seconds = entrySeconds(tracker->entries(), interval, now);
    return tr("This week is %1 – %2, %3 so far.")
        .arg(first, exampleText(time.dayTitle(week.back())),
             exampleText(Durations::shortLabel(static_cast<double>(seconds))));
}

QVariantList TimeSettings::clocks() const
{
    const QString chosen =
        m_writer->shown() ? exampleText(m_writer->shown()->preferences.timeFormat) : QString();
    const ClockTime now = time().timeOfDay(AppClock::now());
    return {choice(QStringLiteral("24h"), tr("24-hour"), exampleText(now.text(false)), chosen),
            choice(QStringLiteral("12h"), tr("12-hour"), exampleText(now.text(true)), chosen)};
}

QVariantList TimeSettings::durations() const
{
    const QString chosen = QString::fromUtf8(Durations::text(durationFormat()));
    const std::array<QString, 3> texts{tr("Hours, minutes, seconds"), tr("Hours and minutes"),
                                       tr("Decimal hours")};
    QVariantList choices;
    for (std::size_t i = 0; i < Durations::formats.size(); ++i) {
        const Durations::Format format = Durations::formats[i];
        choices << choice(QString::fromUtf8(Durations::text(format)), texts[i],
                          exampleText(Durations::format(static_cast<double>(exampleLength.count()), format)),
                          chosen);
    }
    return choices;
}

QVariantList TimeSettings::dates() const
{
    const QString chosen =
        m_writer->shown() ? exampleText(m_writer->shown()->preferences.dateFormat) : QString();
    const std::array<std::pair<const char *, QString>, 4> formats{
        {{"dd/MM/yyyy", tr("Day, month, year")},
         {"dd.MM.yyyy", tr("Day, month, year with points")},
         {"MM/dd/yyyy", tr("Month, day, year")},
         {"yyyy-MM-dd", tr("Year, month, day")}}};
    const DayKey today = time().today();
    QVariantList choices;
    for (const auto &[format, text] : formats)
        choices << choice(QLatin1String(format), text, exampleText(dayFigures(today, format)), chosen);
    return choices;
}

QString TimeSettings::since() const
{
    return tr("since %1").arg(exampleText(time().clockLabel(AppClock::now() - exampleLength)));
}

QString TimeSettings::elapsed() const
{
    return exampleText(time().duration(static_cast<double>(exampleLength.count())));
}

QString TimeSettings::times() const
{
    const UserTime time = this->time();
    return QStringLiteral("%1 – %2").arg(exampleText(ClockTime{9, 10}.text(time.hour12())),
                                         exampleText(ClockTime{10, 35}.text(time.hour12())));
}

QVariantList TimeSettings::typed() const
{
    const UserTime time = this->time();
    QVariantList readings;
    for (const char *text : {"930", "9p", "-15"}) {
        if (const auto moment = time.resolveClock(text, time.today()))
            readings << reading(text, time.clockLabel(*moment));
    }
    if (const auto length = Durations::parse("1,5h"))
        readings << reading("1,5h", Durations::shortLabel(*length));
    if (const auto day = parseTypedDay("yesterday", time.today()))
        readings << reading("yesterday", DateFormatters::string(time.startOfDay(*day), "EEE, d MMM", time));
    return readings;
}

QStringList TimeSettings::zonesCalled(const QString &text) const
{
    QString wanted = text.trimmed();
    wanted.replace(QLatin1Char(' '), QLatin1Char('_'));
    QStringList found;
    for (const std::string &name : zoneNames()) {
        const QString zone = exampleText(name);
        if (found.size() < mostZones && zone.contains(wanted, Qt::CaseInsensitive))
            found << zone;
    }
    return found;
}

// Changes

void TimeSettings::setZone(const QString &zone)
{
    const std::string name = zone.toStdString();
    if (isZone(name) || isUtc(name))
        m_writer->change([name](AccountSettings &settings) { settings.profile.timeZone = name; });
}

void TimeSettings::setWeekStart(int day)
{
    if (day >= 0 && day < 7)
        m_writer->change(
            [day](AccountSettings &settings) { settings.preferences.weekStart = (day + 1) % 7; });
}

void TimeSettings::setClock(const QString &format)
{
    m_writer->change(
        [text = format.toStdString()](AccountSettings &settings) { settings.preferences.timeFormat = text; });
}

void TimeSettings::setDuration(const QString &format)
{
    m_writer->change([text = format.toStdString()](AccountSettings &settings) {
        settings.preferences.durationFormat = text;
    });
}

void TimeSettings::setDate(const QString &format)
{
    m_writer->change(
        [text = format.toStdString()](AccountSettings &settings) { settings.preferences.dateFormat = text; });
}

} // namespace orvane
