// SPDX-License-Identifier: GPL-3.0-or-later
#include "Input/SettingList.h"

#include "Catalog/TypedAmounts.h"
#include "Input/NearestName.h"
#include "QuickEntry/FoldedText.h"
#include "Support/ZoneNames.h"
#include "Terminal/TextWidth.h"
#include "Time/TextScanner.h"
#include "Time/TypedDay.h"

#include <algorithm>

namespace orvane {

namespace {

using Choices = std::vector<std::string>;

// Where a member of the server's types lies among all settings.
template <class All>
auto &partFor(All &all, const PreferencesResponse *)
{
    return all.preferences;
}
template <class All>
auto &partFor(All &all, const AccountSettings::Profile *)
{
    return all.profile;
}
template <class All>
auto &partFor(All &all, const WorkspaceSettingsResponse *)
{
    return *all.workspace;
}

template <class Part>
constexpr Setting::Group groupOf =
    std::is_same_v<Part, PreferencesResponse>         ? Setting::Group::preferences
    : std::is_same_v<Part, WorkspaceSettingsResponse> ? Setting::Group::workspace
                                                      : Setting::Group::profile;

/// How the values of one kind are read and written.
template <class T>
struct ValueKind {
    std::string meaning;
    std::function<std::string(const T &, const UserTime &)> shown;
    std::function<std::optional<T>(const std::string &, const UserTime &)> read;
    std::function<Choices()> choices = [] { return Choices(); };
};

template <class Part, class T>
Setting makeSetting(std::string name, T Part::*member, ValueKind<T> kind)
{
    constexpr const Part *which = nullptr;
    return {
        .name = std::move(name),
        .group = groupOf<Part>,
        .meaning = kind.meaning,
        .shown =
            [member, shown = kind.shown](const AccountSettings &all, const UserTime &time) {
                return shown(partFor(all, which).*member, time);
            },
        .take =
            [member, read = kind.read](AccountSettings &all, const std::string &typed, const UserTime &time) {
                auto value = read(typed, time);
                if (value)
                    partFor(all, which).*member = std::move(*value);
                return value.has_value();
            },
        .choices = kind.choices};
}

/// The one of the choices that was typed, in whatever letter case.
std::optional<std::string> chosenText(const Choices &choices, std::string_view typed)
{
    const std::string wanted = asciiLowered(TextScanner::trimmed(typed));
    const auto found =
        std::ranges::find(choices, wanted, [](const std::string &choice) { return asciiLowered(choice); });
    return found == choices.end() ? std::nullopt : std::optional(*found);
}

ValueKind<bool> toggleKind(std::string meaning)
{
    return {.meaning = std::move(meaning),
            .shown = [](bool value, const UserTime &) { return std::string(value ? "on" : "off"); },
            .read = [](const std::string &typed, const UserTime &) -> std::optional<bool> {
                if (chosenText({"on", "true", "yes"}, typed))
                    return true;
                return chosenText({"off", "false", "no"}, typed) ? std::optional(false) : std::nullopt;
            },
            .choices = [] { return Choices{"on", "off"}; }};
}

ValueKind<std::string> choiceKind(std::string meaning, Choices choices)
{
    return {
        .meaning = std::move(meaning),
        .shown = [](const std::string &value, const UserTime &) { return printable(value); },
        .read = [choices](const std::string &typed, const UserTime &) { return chosenText(choices, typed); },
        .choices = [choices] { return choices; }};
}

ValueKind<std::string> textKind(std::string meaning, bool canBeEmpty)
{
    return {.meaning = std::move(meaning),
            .shown = [](const std::string &value, const UserTime &) { return printable(value); },
            .read =
                [canBeEmpty](const std::string &typed, const UserTime &) {
                    const bool isEmpty = TextScanner::trimmed(typed).empty();
                    return isEmpty && !canBeEmpty ? std::nullopt : std::optional(typed);
                }};
}

/// Whole minutes, with or without their unit.
ValueKind<std::int64_t> minutesKind(std::string meaning, std::int64_t most)
{
    return {.meaning = std::move(meaning),
            .shown = [](std::int64_t value, const UserTime &) { return std::to_string(value); },
            .read = [most](const std::string &typed, const UserTime &) -> std::optional<std::int64_t> {
                TextScanner scanner(TextScanner::trimmed(typed));
                const std::string_view digits = scanner.takeDigits();
                const std::int64_t value = cappedValue(digits);
                const bool isMinutes = scanner.atEnd() || (scanner.take('m') && scanner.atEnd());
                return isMinutes && value >= 1 && value <= most ? std::optional(value) : std::nullopt;
            }};
}

Choices weekdayNames()
{
    Choices names;
    for (int day = 0; day < 7; ++day)
        names.emplace_back(weekdayName(day));
    return names;
}

/// The server numbers the weekdayNames, which can be typed too.
ValueKind<std::int64_t> weekdayKind()
{
    return {.meaning = "a weekday such as monday",
            .shown =
                [](std::int64_t day, const UserTime &) {
                    return day >= 0 && day < 7 ? std::string(weekdayName(static_cast<int>(day)))
                                               : std::to_string(day);
                },
            .read = [](const std::string &typed, const UserTime &) -> std::optional<std::int64_t> {
                const std::string_view text = TextScanner::trimmed(typed);
                if (text.size() == 1 && text.front() >= '0' && text.front() <= '6')
                    return text.front() - '0';
                const auto day = parseTypedWeekday(text);
                return day ? std::optional<std::int64_t>(*day) : std::nullopt;
            },
            .choices = weekdayNames};
}

ValueKind<std::string> zoneKind()
{
    return {.meaning = "a time zone such as Europe/Paris",
            .shown = [](const std::string &value, const UserTime &) { return printable(value); },
            .read =
                [](const std::string &typed, const UserTime &) {
                    return isUtc(typed) ? std::optional(typed) : chosenText(zoneNames(), typed);
                },
            .choices = [] { return zoneNames(); }};
}

ValueKind<std::string> currencyKind()
{
    return {.meaning = "three letters such as EUR",
            .shown = [](const std::string &value, const UserTime &) { return printable(value); },
            .read = [](const std::string &typed, const UserTime &) -> std::optional<std::string> {
                std::string letters(TextScanner::trimmed(typed));
                for (char &c : letters) {
                    if (c >= 'a' && c <= 'z')
                        c = static_cast<char>(c - 'a' + 'A');
                }
                const bool isCode = letters.size() == 3 &&
                                    std::ranges::all_of(letters, [](char c) { return c >= 'A' && c <= 'Z'; });
                return isCode ? std::optional(letters) : std::nullopt;
            }};
}

/// The outer one of what `read` gives says whether the text can be used; an empty text takes the value away.
ValueKind<std::optional<double>> rateKind()
{
    using Rate = std::optional<double>;
    return {.meaning = "an amount such as 12.50; \"\" for none",
            .shown = [](const Rate &value, const UserTime &) { return value ? rateText(*value) : ""; },
            .read = [](const std::string &typed, const UserTime &) -> std::optional<Rate> {
                const Rate rate = parseTypedRate(typed);
                if (!rate && !typed.empty())
                    return std::nullopt;
                return rate;
            }};
}

/// A day's beginning in the user's zone; what was tracked before it cannot be changed.
ValueKind<std::optional<Instant>> dayKind()
{
    using Begin = std::optional<Instant>;
    return {.meaning = "a day such as 2026-03-01; \"\" for none",
            .shown =
                [](const Begin &value, const UserTime &time) {
                    if (!value)
                        return std::string();
                    const DayKey day = time.dayKey(*value);
                    const bool isBegin = time.startOfDay(day) == *value;
                    return day.description() + (isBegin ? "" : " " + time.clockLabel(*value));
                },
            .read = [](const std::string &typed, const UserTime &time) -> std::optional<Begin> {
                const auto day = parseTypedDay(typed, time.today());
                if (!day && !typed.empty())
                    return std::nullopt;
                return day ? Begin(time.startOfDay(*day)) : Begin();
            }};
}

std::vector<Setting> allSettings()
{
    using Preferences = PreferencesResponse;
    using Profile = AccountSettings::Profile;
    using Rules = WorkspaceSettingsResponse;
    const ValueKind<bool> onOff = toggleKind("on or off");
    const ValueKind<bool> required = toggleKind("on or off: needed to end an entry");
    return {
        makeSetting("zone", &Profile::timeZone, zoneKind()),
        makeSetting("fullName", &Profile::fullName, textKind("your name", true)),
        makeSetting("weekStart", &Preferences::weekStart, weekdayKind()),
        makeSetting("dateFormat", &Preferences::dateFormat,
                    choiceKind("dd/MM/yyyy, MM/dd/yyyy, yyyy-MM-dd or dd.MM.yyyy",
                               {"dd/MM/yyyy", "MM/dd/yyyy", "yyyy-MM-dd", "dd.MM.yyyy"})),
        makeSetting("timeFormat", &Preferences::timeFormat, choiceKind("24h or 12h", {"24h", "12h"})),
        makeSetting("durationFormat", &Preferences::durationFormat,
                    choiceKind("hms (2:05:09), hm (2:05) or decimal (2.09 h)", {"hms", "hm", "decimal"})),
        makeSetting("pomodoroEnabled", &Preferences::pomodoroEnabled, onOff),
        makeSetting("pomodoroMinutes", &Preferences::pomodoroMinutes,
                    minutesKind("1 to 240 minutes of work", 240)),
        makeSetting("pomodoroBreakMinutes", &Preferences::pomodoroBreakMinutes,
                    minutesKind("1 to 120 minutes of rest", 120)),
        makeSetting("pomodoroAutoStop", &Preferences::pomodoroAutoStop, onOff),
        makeSetting("workspaceName", &Rules::name, textKind("the workspace's name", false)),
        makeSetting("currency", &Rules::currency, currencyKind()),
        makeSetting("defaultHourlyRate", &Rules::defaultHourlyRate, rateKind()),
        makeSetting("requireDescription", &Rules::requireDescription, required),
        makeSetting("requireProject", &Rules::requireProject, required),
        makeSetting("requireTask", &Rules::requireTask, required),
        makeSetting("requireTag", &Rules::requireTag, required),
        makeSetting("onlyAdminsCreateProjects", &Rules::onlyAdminsCreateProjects,
                    toggleKind("on or off: clients and tasks too")),
        makeSetting("onlyAdminsCreateTags", &Rules::onlyAdminsCreateTags, onOff),
        makeSetting("lockedBefore", &Rules::lockedBefore, dayKind()),
    };
}

/// What the server and people call a setting beside its name here.
std::string withoutAlias(const std::string &joined)
{
    return joined == "timezone" ? "zone" : joined;
}

/// A zone is also found by its city.
std::string suggestionFor(const std::string &typed, const Choices &choices)
{
    std::string near = didYouMean(typed, choices);
    if (!near.empty())
        return near;
    Choices lastParts;
    for (const std::string &choice : choices)
        lastParts.push_back(choice.substr(choice.rfind('/') + 1));
    const auto part = nearestName(typed, lastParts);
    if (!part)
        return {};
    const auto place = std::ranges::find(lastParts, *part) - lastParts.begin();
    return " Did you mean \"" + choices[static_cast<std::size_t>(place)] + "\"?";
}

} // namespace

Result<AccountSettings, std::string> Setting::with(AccountSettings settings, const std::string &typed,
                                                   const UserTime &time) const
{
    if (!take(settings, typed, time))
        return failure(name + " wants " + meaning + ", not \"" + printable(typed) + "\"." +
                       suggestionFor(typed, choices()));
    return settings;
}

const std::vector<Setting> &settingList()
{
    static const std::vector<Setting> list = allSettings();
    return list;
}

Result<Setting, std::string> settingNamed(std::string_view typed)
{
    const std::string wanted = withoutAlias(FoldedText::of(typed).joined());
    Choices names;
    for (const Setting &setting : settingList()) {
        if (FoldedText::of(setting.name).joined() == wanted)
            return setting;
        names.push_back(setting.name);
    }
    const std::string unknown = "There is no setting \"" + printable(typed) + "\".";
    const std::string near = didYouMean(typed, names);
    if (!near.empty())
        return failure(unknown + near);
    std::string listed;
    for (const Setting &setting : settingList())
        listed += "\n  " + setting.name + ": " + setting.meaning;
    return failure(unknown + " There are:" + listed);
}

} // namespace orvane
