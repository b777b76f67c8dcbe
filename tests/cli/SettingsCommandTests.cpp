// SPDX-License-Identifier: GPL-3.0-or-later
// The account's settings and the workspace's rules, with the real command and server.
#include "CommandFixture.h"

namespace orvane {
namespace {

using testing::AllOf;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;

class SettingsCommand : public Command {
protected:
    SettingsCommand() { installation.environment["TZ"] = "Europe/Paris"; }

    QJsonObject set(const char *section, const char *key, const std::string &value) const
    {
        return done({"settings", "set", key, value})[QLatin1String(section)].toObject();
    }
    std::string message(const std::string &key, const std::string &value) const
    {
        return text(failed(2, {"settings", "set", key, value})[u"message"]);
    }
};

TEST_F(SettingsCommand, ShowsAndSetsTheZone)
{
    EXPECT_EQ(text(done({"settings"})[u"profile"].toObject()[u"timeZone"]), "Europe/Paris");
    EXPECT_EQ(text(set("profile", "fullName", "Ada Lovelace")[u"fullName"]), "Ada Lovelace");
    const QJsonObject profile = set("profile", "timeZone", "asia/tokyo");
    EXPECT_EQ(text(profile[u"timeZone"]), "Asia/Tokyo");
    EXPECT_EQ(text(profile[u"fullName"]), "Ada Lovelace") << "what is not named stays";
    setNow("2026-03-04T12:00:00Z");
    EXPECT_EQ(text(entry({"add", "x", "--start", "9:00", "--stop", "10:00"})[u"start"]),
              "2026-03-04T00:00:00.000Z");
    EXPECT_THAT(message("zone", "Paris"), HasSubstr("Did you mean \"Europe/Paris\"?"));
    EXPECT_THAT(message("zone", "Europe/Pariss"), HasSubstr("Did you mean \"Europe/Paris\"?"));

    // The computer is still in Paris.
    EXPECT_EQ(installation.run({"status"}).errors,
              "Times are in Asia/Tokyo, the account's zone; this computer is in Europe/Paris. To follow it: "
              "orvane settings set zone Europe/Paris\n");
    EXPECT_THAT(installation.run({"--zone", "UTC", "status"}).errors, IsEmpty());
    set("profile", "zone", "Europe/Berlin");
    EXPECT_THAT(installation.run({"status"}).errors, IsEmpty()) << "both clocks show the same";
}

TEST_F(SettingsCommand, SetsTheRulesOfTheWorkspace)
{
    const QJsonObject before = done({"settings"})[u"workspace"].toObject();
    QJsonObject expected = before;
    expected[u"requireProject"] = true;
    EXPECT_EQ(set("workspace", "require-project", "on"), expected);
    expected[u"defaultHourlyRate"] = 80.5;
    EXPECT_EQ(set("workspace", "defaultHourlyRate", "80,50"), expected);
    expected[u"currency"] = QStringLiteral("USD");
    EXPECT_EQ(set("workspace", "currency", "usd"), expected);
    expected[u"lockedBefore"] = QStringLiteral("2026-02-28T23:00:00.000Z");
    EXPECT_EQ(set("workspace", "lockedBefore", "2026-03-01"), expected);
    EXPECT_THAT(installation.run({"settings"}).output,
                AllOf(HasSubstr("2026-03-01"), HasSubstr("80.50"), HasSubstr("monday")));
    expected[u"lockedBefore"] = QJsonValue();
    EXPECT_EQ(set("workspace", "lockedBefore", ""), expected);
    EXPECT_EQ(text(set("workspace", "workspaceName", "Acme")[u"name"]), "Acme");
    EXPECT_EQ(text(listed({"workspaces"})[0].toObject()[u"name"]), "Acme");
    EXPECT_EQ(text(installation.json({"start", "x"}).object()[u"outcome"]), "saved");
    EXPECT_EQ(text(installation.json({"stop"}).object()[u"outcome"]), "needsDetails");
}

TEST_F(SettingsCommand, SaysWhatThereIs)
{
    EXPECT_THAT(message("weekstrat", "monday"), HasSubstr("Did you mean \"weekStart\"?"));
    EXPECT_THAT(message("colour", "red"), AllOf(HasSubstr("There are:"), HasSubstr("lockedBefore: a day")));
    EXPECT_EQ(message("weekStart", "mnday"),
              "weekStart wants a weekday such as monday, not \"mnday\". Did you mean \"monday\"?");
    EXPECT_THAT(message("durationFormat", "hsm"), HasSubstr("Did you mean \"hms\"?"));
    for (const auto &[key, value] :
         {std::pair{"pomodoroMinutes", "241"}, std::pair{"requireTag", "maybe"},
          std::pair{"currency", "euro"}, std::pair{"defaultHourlyRate", "-1"},
          std::pair{"lockedBefore", "2026-02-30"}, std::pair{"workspaceName", " "}})
        EXPECT_THAT(message(key, value), HasSubstr(std::string(key) + " wants")) << value;
    const CommandRun set = installation.run({"settings", "set", "weekStart", "sun"});
    EXPECT_EQ(set.output, "weekStart is sunday now.\n") << set.all();
}

} // namespace
} // namespace orvane
