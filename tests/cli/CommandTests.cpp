// SPDX-License-Identifier: GPL-3.0-or-later
// The real command against the real server that it starts by itself, without bus and display.
#include "CommandFixture.h"

#include "support/KernelKeys.h"

#include <QProcess>
#include <map>

namespace orvane {
namespace {

using ::testing::AllOf;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::Not;
using ::testing::StartsWith;

TEST_F(Command, TracksADay)
{
    setNow("2026-03-04T09:00:00Z");
    const QJsonObject started = done({"--zone", "Europe/Paris", "start", "Write", "the", "README"});
    EXPECT_EQ(keys(started), (Names{"entry", "message", "notes", "outcome", "queued"}));
    EXPECT_EQ(text(started[u"outcome"]), "saved");
    EXPECT_FALSE(started[u"queued"].toBool(true));
    const QJsonObject first = started[u"entry"].toObject();
    EXPECT_EQ(keys(first), (Names{"description", "id", "isBillable", "names", "projectId", "seconds",
                                  "shares", "start", "stop", "tagIds", "taskId", "version", "workspaceId"}));
    EXPECT_EQ(text(first[u"description"]), "Write the README");
    EXPECT_THAT(text(first[u"start"]), StartsWith("2026-03-04T09:00:"));
    EXPECT_TRUE(first[u"stop"].isNull());

    setNow("2026-03-04T09:30:00Z");
    const QJsonObject status = done({"status"});
    EXPECT_EQ(keys(status), (Names{"account", "outbox", "running", "server", "today", "workspace"}));
    EXPECT_EQ(id(status[u"running"].toObject()), id(first));
    EXPECT_NEAR(static_cast<double>(status[u"running"].toObject()[u"seconds"].toInteger()), 1800, 60);
    EXPECT_TRUE(status[u"server"].toObject()[u"local"].toBool());
    EXPECT_TRUE(status[u"server"].toObject()[u"reachable"].toBool());
    EXPECT_TRUE(status[u"account"].toObject()[u"automatic"].toBool());
    EXPECT_EQ(text(status[u"workspace"].toObject()[u"role"]), "owner");
    EXPECT_NEAR(static_cast<double>(status[u"today"].toObject()[u"seconds"].toInteger()), 1800, 60);
    EXPECT_EQ(compact(status[u"outbox"]), R"({"conflicts":0,"offline":false,"pending":0})");

    const QJsonObject second = done({"start", "Answer mail"});
    EXPECT_EQ(text(second[u"outcome"]), "saved");
    setNow("2026-03-04T10:00:00Z");
    const QJsonObject stopped = done({"stop", "--at", "-15"});
    EXPECT_EQ(text(stopped[u"outcome"]), "stopped");
    EXPECT_THAT(text(stopped[u"entry"].toObject()[u"stop"]), StartsWith("2026-03-04T09:45:"));
    EXPECT_EQ(text(done({"continue"})[u"entry"].toObject()[u"description"]), "Answer mail");

    const QJsonArray days = done({"list"})[u"days"].toArray();
    ASSERT_EQ(days.size(), 1);
    EXPECT_EQ(keys(days[0].toObject()), (Names{"day", "entries", "seconds"}));
    EXPECT_EQ(text(days[0].toObject()[u"day"]), "2026-03-04");
    EXPECT_EQ(days[0].toObject()[u"entries"].toArray().size(), 3);
    EXPECT_TRUE(days[0].toObject()[u"entries"].toArray()[0].toObject()[u"stop"].isString())
        << "the start of the second ended the first";
}

TEST_F(Command, TakesSentences)
{
    setNow("2026-03-04T12:00:00Z");
    const auto utc = [](Arguments arguments) {
        arguments.insert(arguments.begin(), {"--zone", "UTC"});
        return arguments;
    };
    const std::string client = id(done({"clients", "add", "Acme"}));
    const std::string project = id(done({"projects", "add", "Big Project", "--client", "Acme"}));
    const std::string api = id(done({"projects", "add", "API", "--billable"}));
    const std::string tag = id(done({"tags", "add", "deep-work"}));

    const QJsonObject added = entry(utc({"add", "Fix the sync bug @api #deep-work 9-10:30 $"}));
    EXPECT_EQ(text(added[u"description"]), "Fix the sync bug");
    EXPECT_EQ(text(added[u"projectId"]), api);
    EXPECT_EQ(text(added[u"tagIds"].toArray()[0]), tag);
    EXPECT_TRUE(added[u"isBillable"].toBool());
    EXPECT_EQ(text(added[u"start"]), "2026-03-04T09:00:00.000Z");
    EXPECT_EQ(text(added[u"stop"]), "2026-03-04T10:30:00.000Z");
    EXPECT_EQ(added[u"seconds"].toInteger(), 5400);
    EXPECT_EQ(keys(added[u"names"].toObject()), (Names{"client", "color", "project", "tags", "task"}));
    EXPECT_EQ(text(added[u"names"].toObject()[u"project"]), "API");
    EXPECT_TRUE(added[u"names"].toObject()[u"client"].isNull());
    EXPECT_EQ(text(added[u"names"].toObject()[u"tags"].toArray()[0]), "deep-work");

    // Options say the last word; a sentence changes only what it names, on the entry's own day.
    setNow("2026-03-06T12:00:00Z");
    const std::string entryId = id(added);
    const QJsonObject moved = entry(utc({"edit", entryId, "@big-project 9:15-10:00", "--no-billable"}));
    EXPECT_EQ(text(moved[u"description"]), "Fix the sync bug");
    EXPECT_EQ(text(moved[u"projectId"]), project);
    EXPECT_EQ(text(moved[u"names"].toObject()[u"client"]), "Acme");
    EXPECT_FALSE(moved[u"isBillable"].toBool(true));
    EXPECT_EQ(text(moved[u"start"]), "2026-03-04T09:15:00.000Z");
    EXPECT_EQ(text(entry(utc({"edit", entryId, "2h"}))[u"stop"]), "2026-03-04T11:15:00.000Z");

    const QJsonObject running = entry(utc({"start", "write docs since 11:40"}));
    EXPECT_EQ(text(running[u"start"]), "2026-03-06T11:40:00.000Z");
    EXPECT_TRUE(running[u"stop"].isNull());
    EXPECT_FALSE(entry(utc({"start", "stand-up 9:30-9:45"}))[u"stop"].isNull());
    EXPECT_THAT(text(failed(2, utc({"add", "no time in it"}))[u"message"]), HasSubstr("needs its time"));
    EXPECT_THAT(installation.run(utc({"start", "call @acme"})).errors, HasSubstr("\"Acme\" is a client"));

    const QJsonObject parsed = done(utc({"parse", "call @acme #deep-work yesterday 9-10:30pm $"}));
    EXPECT_EQ(keys(parsed), (Names{"clientId", "day", "description", "isBillable", "notes", "projectId",
                                   "span", "tagIds", "taskId", "time", "timeText", "unknown"}));
    EXPECT_EQ(text(parsed[u"clientId"]), client);
    EXPECT_TRUE(parsed[u"projectId"].isNull());
    EXPECT_EQ(compact(parsed[u"day"]), R"({"date":null,"kind":"yesterday","weekday":null})");
    EXPECT_EQ(compact(parsed[u"time"]), R"({"end":{"hours":10,"meridiem":"pm","minutes":30},"kind":"range",)"
                                        R"("start":{"hours":9,"meridiem":"pm","minutes":0}})");
    EXPECT_EQ(compact(parsed[u"span"]),
              R"({"start":"2026-03-05T21:00:00.000Z","stop":"2026-03-05T22:30:00.000Z"})");
    EXPECT_TRUE(done(utc({"parse", "just words"}))[u"time"].isNull());
    EXPECT_THAT(installation.run(utc({"parse", "call @acme 45m ago"})).output, HasSubstr("11:15 – now"));
    EXPECT_EQ(text(entry(utc({"add", "-h meeting 9-10:30"}))[u"description"]), "-h meeting");
}

TEST_F(Command, SaysWhatItDidNotTakeForATimeADayOrAName)
{
    setNow("2026-03-04T12:00:00Z");
    done({"projects", "add", "Web site"});
    done({"projects", "add", "Web shop"});
    const auto notes = [](const QJsonObject &answer) {
        Names notes;
        for (const QJsonValue &note : answer[u"notes"].toArray())
            notes.push_back(text(note));
        return notes;
    };
    const Names hours{
        "\"9-17\" was not read as a time, since it may be any two numbers; write 9:00-17:00 for one."};
    const Names unknown{
        "No project, task or client is called \"@acme\", so it stays in the description. To make "
        "a project: orvane projects add acme"};
    const Names several{
        "Several names match \"@web\", so it stays in the description; type more of the one you mean."};
    EXPECT_EQ(notes(done({"start", "work 9-17"})), hours);
    EXPECT_EQ(notes(done({"add", "call @acme 9-9:30"})), unknown);
    EXPECT_EQ(notes(done({"add", "call tomorrow with #2 10-10:30"})),
              Names{"\"tomorrow\" was not read as a day."});
    const QJsonObject first = done({"add", "mail 15m"});
    EXPECT_EQ(notes(first), Names{});
    const QJsonObject edited = done({"edit", id(first[u"entry"].toObject()), "mail @web"});
    EXPECT_EQ(notes(edited), several);
    EXPECT_EQ(text(edited[u"entry"].toObject()[u"description"]), "mail @web");
    setNow("2026-03-04T12:10:00Z");
    EXPECT_EQ(notes(done({"stop"})), Names{});
    setNow("2026-03-04T12:20:00Z");
    EXPECT_EQ(notes(done({"continue"})), Names{});
    setNow("2026-03-04T12:30:00Z");

    const QJsonObject parsed = done({"parse", "@acme, #2 C# #none"});
    EXPECT_EQ(notes(parsed), (Names{unknown.front(),
                                    "No tag is called \"#none\", so it stays in the description. To make it: "
                                    "orvane tags add none"}));
    EXPECT_EQ(QJsonDocument(parsed[u"unknown"].toArray()).toJson(QJsonDocument::Compact).toStdString(),
              R"(["@acme","#2","#none"])");

    // People are told beside what was recorded, and why nothing was.
    const CommandRun started = installation.run({"start", "call @acme"});
    EXPECT_THAT(started.output, HasSubstr("Started"));
    EXPECT_THAT(started.errors, HasSubstr("Note: " + unknown.front()));
    EXPECT_THAT(installation.run({"parse", "call @acme"}).errors, HasSubstr("Note: " + unknown.front()));
    EXPECT_THAT(text(failed(2, {"add", "work 9-17"})[u"message"]), HasSubstr(hours.front()));
}

TEST_F(Command, FindsByAFewLetters)
{
    EXPECT_THAT(installation.run({"find", "anything"}).output, HasSubstr("nothing to find yet"));
    const std::string client = id(done({"clients", "add", "Zebra"}));
    const std::string project = id(done({"projects", "add", "Big Project", "--client", "Zebra"}));
    done({"projects", "add", "Bipartite"});
    done({"add", "Paint the fence 9:00-9:10"});
    const QJsonArray initials = listed({"find", "bp"});
    ASSERT_EQ(initials.size(), 1);
    EXPECT_EQ(keys(initials[0].toObject()), (Names{"id", "kind", "name", "ranges", "score"}));
    EXPECT_EQ(text(initials[0].toObject()[u"id"]), project);
    EXPECT_EQ(initials[0].toObject()[u"score"].toDouble(), 55);
    EXPECT_EQ(QJsonDocument(initials[0].toObject()[u"ranges"].toArray())
                  .toJson(QJsonDocument::Compact)
                  .toStdString(),
              "[[0,1],[4,5]]");
    const QJsonArray byClient = listed({"find", "zebra"});
    ASSERT_EQ(byClient.size(), 2);
    EXPECT_EQ(text(byClient[0].toObject()[u"id"]), client);
    EXPECT_EQ(byClient[1].toObject()[u"score"].toDouble(), 80);
    EXPECT_EQ(text(listed({"find", "fence"})[0].toObject()[u"kind"]), "entry");
    EXPECT_THAT(installation.run({"find", "nowhere"}).output, HasSubstr("Nothing here is called"));

    // What was picked comes first from then on.
    EXPECT_EQ(text(listed({"find", "bi"})[0].toObject()[u"name"]), "Big Project");
    done({"start", "go on @bipartite"});
    EXPECT_EQ(text(listed({"find", "bi"})[0].toObject()[u"name"]), "Bipartite");
    const auto offered = [this](const char *shell, const std::string &line, const std::string &replaced) {
        const CommandRun run =
            installation.run({"complete-word", "--shell", shell, "--replaced=" + replaced, "--", line});
        EXPECT_EQ(run.exitStatus, 0) << run.all();
        return run.output;
    };
    EXPECT_EQ(offered("bash", "orvane start @bi", "@bi"), "@Bipartite\n@Big-Project\n");
    EXPECT_EQ(offered("bash", "orvane start \"Fix @big", "Fix @big"), "Fix @Big-Project\n");
    EXPECT_EQ(offered("zsh", "orvane start 'Fix @big", ""), "Fix @Big-Project\n");
    EXPECT_EQ(offered("fish", "orvane start Fix @\\\"big", ""), "@\"Big Project\"\n");
    EXPECT_EQ(offered("bash", "orvane start bi", "bi"), "");
}

TEST_F(Command, RecordsAndChangesEntries)
{
    setNow("2026-03-04T12:00:00Z");
    const Arguments utc{"--zone", "UTC"};
    const auto with = [&](Arguments arguments) {
        arguments.insert(arguments.begin(), utc.begin(), utc.end());
        return arguments;
    };
    const QJsonObject project = done({"projects", "add", "Website", "--billable"});
    const QJsonObject task = done({"tasks", "add", "website", "Design"});
    done({"tags", "add", "review"});
    const QJsonObject added = entry(with({"add", "[draft]", "--start", "9:00", "--stop",
                                          "2026-03-04T10:00:00Z", "--task", "des", "--tag", "Review"}));
    EXPECT_EQ(text(added[u"description"]), "[draft]");
    EXPECT_EQ(added[u"projectId"], project[idKey]) << "the task brings its project";
    EXPECT_EQ(added[u"taskId"], task[idKey]);
    EXPECT_TRUE(added[u"isBillable"].toBool()) << "as the project is";
    EXPECT_EQ(added[u"tagIds"].toArray().size(), 1);
    EXPECT_EQ(text(added[u"start"]), "2026-03-04T09:00:00.000Z");

    const std::string cut = id(added).substr(0, 8);
    const QJsonObject edited = entry(with({"edit", cut, "--stop", "11", "--tag", ""}));
    EXPECT_EQ(text(edited[u"stop"]), "2026-03-04T11:00:00.000Z");
    EXPECT_EQ(edited[u"start"], added[u"start"]);
    EXPECT_EQ(edited[u"taskId"], added[u"taskId"]) << "what is not named stays";
    EXPECT_TRUE(edited[u"tagIds"].toArray().isEmpty());
    EXPECT_NE(edited[u"version"], added[u"version"]);
    EXPECT_TRUE(entry(with({"edit", cut, "Final", "--project", ""}))[u"taskId"].isNull());

    const QJsonObject copy = entry(with({"duplicate", cut}));
    EXPECT_NE(copy[idKey], added[idKey]);
    EXPECT_EQ(text(copy[u"description"]), "Final");
    const QJsonObject removed = done(with({"delete", id(copy)}));
    EXPECT_EQ(text(removed[u"outcome"]), "saved");
    EXPECT_TRUE(removed[u"entry"].isNull());
    EXPECT_EQ(done(with({"list"}))[u"days"].toArray()[0].toObject()[u"seconds"].toInteger(), 7200);

    const QJsonObject night =
        entry(with({"start", "Deploy", "--start", "yesterday 23:00", "--stop", "0:30"}));
    EXPECT_EQ(text(night[u"start"]), "2026-03-03T23:00:00.000Z") << "a start with an end is a finished entry";
    const QJsonArray week = done(with({"list", "--week", "2026-03-04"}))[u"days"].toArray();
    ASSERT_EQ(week.size(), 7);
    EXPECT_EQ(done(with({"list", "--week"}))[u"days"].toArray(), week) << "this week unless one is named";
    EXPECT_EQ(text(week[0].toObject()[u"day"]), "2026-03-02");
    EXPECT_EQ(week[1].toObject()[u"seconds"].toInteger(), 5400);

    const QJsonObject old =
        entry(with({"add", "Long ago", "--start", "2026-01-20 9:00", "--stop", "2026-01-20 9:30"}));
    EXPECT_EQ(done(with({"list", "--day", "2026-01-20"}))[u"days"]
                  .toArray()[0]
                  .toObject()[u"entries"]
                  .toArray()
                  .size(),
              1);
    EXPECT_EQ(text(entry(with({"edit", id(old).substr(0, 13), "Longer ago"}))[u"description"]), "Longer ago")
        << "weeks before the loaded one are looked through";
}

TEST_F(Command, SaysWhatIsWrongWithACall)
{
    EXPECT_EQ(keys(failed(2, {"fly"})),
              (Names{"detail", "fieldErrors", "message", "status", "title", "type"}));
    failed(2, {"add", "No times"});
    failed(2, {"start", "x", "--start", "noonish"});
    failed(2, {"start", "x", "--stop", "9:00"});
    failed(2, {"edit", "abc"});
    failed(2, {"list", "--day", "2026-02-30"});
    failed(2, {"settings", "set", "weekStart", "9"});
    failed(2, {"settings", "set", "colour", "red"});
    EXPECT_THAT(text(failed(1, {"start", "x", "--project", "Nope"})[u"message"]),
                HasSubstr("no project \"Nope\""));
    EXPECT_THAT(text(failed(1, {"delete", "abcdef"})[u"message"]), HasSubstr("no entry"));
    failed(2, {"login", "--provider", "anyone", "--email", "ada@example.com"});
    failed(1, {"outbox", "keep-mine", "7"});
    failed(1, {"logout"});

    const CommandRun stop = installation.json({"stop"});
    EXPECT_EQ(stop.exitStatus, 1);
    EXPECT_EQ(keys(stop.object()), (Names{"entry", "error", "message", "notes", "outcome", "queued"}));
    EXPECT_EQ(text(stop.object()[u"outcome"]), "failed");

    for (const char *now : {"yesterday", "2026-03-04", "10:00"}) {
        setNow(now);
        failed(2, {"status"});
    }
    installation.environment.clear();
    const CommandRun broken =
        runProgram("bash", {"-c", builtProgram("orvane") + " --json start $'caf\\xe9'"});
    EXPECT_EQ(broken.exitStatus, 2) << broken.all();
    EXPECT_THAT(text(broken.object()[u"error"].toObject()[u"message"]), HasSubstr("UTF-8"));
}

TEST_F(Command, AmbiguousNamesAndIdentifiersListWhatIsThere)
{
    done({"projects", "add", "Website A"});
    done({"projects", "add", "Website B"});
    const std::string message = text(failed(1, {"start", "x", "--project", "web"})[u"message"]);
    EXPECT_THAT(message, HasSubstr("can mean 2 projects"));
    EXPECT_THAT(message, HasSubstr("Website B"));
    // Seventeen identifiers have sixteen first characters, so two share one.
    std::map<char, std::vector<std::string>> byFirst;
    for (int i = 0; i < 17; ++i) {
        const std::string minute = std::to_string(10 + i);
        const std::string added =
            id(entry({"add", "e", "--start", "2026-03-04 9:" + minute, "--stop", "9:59"}));
        byFirst[added[0]].push_back(added);
    }
    const auto shared =
        std::ranges::find_if(byFirst, [](const auto &item) { return item.second.size() > 1; });
    ASSERT_NE(shared, byFirst.end());
    setNow("2026-03-04T12:00:00Z");
    EXPECT_THAT(text(failed(1, {"delete", std::string(1, shared->first)})[u"message"]),
                HasSubstr("beginning of " + std::to_string(shared->second.size()) + " identifiers"));
}

TEST_F(Command, KeepsTheCatalog)
{
    const QJsonObject client = done({"clients", "add", "Acme"});
    EXPECT_EQ(keys(client), (Names{"id", "isArchived", "name", "workspaceId"}));
    const QJsonObject project =
        done({"projects", "add", "Website", "--client", "acme", "--color", "#102030"});
    EXPECT_EQ(keys(project), (Names{"clientId", "color", "estimateSeconds", "hourlyRate", "id", "isArchived",
                                    "isBillable", "isPrivate", "name", "tasks", "workspaceId"}));
    EXPECT_EQ(project[u"clientId"], client[idKey]);
    EXPECT_EQ(listed({"projects"}).size(), 1);
    EXPECT_TRUE(done({"projects", "archive", id(project).substr(0, 6)})[u"isArchived"].toBool());
    EXPECT_TRUE(listed({"projects"}).isEmpty());
    EXPECT_EQ(listed({"projects", "--archived"}).size(), 1);
    EXPECT_THAT(text(failed(1, {"start", "x", "--project", "Website"})[u"message"]), HasSubstr("archived"));
    const auto note = [&](const char *sentence) {
        return text(done({"parse", sentence})[u"notes"].toArray()[0]);
    };
    EXPECT_THAT(note("x @website"), HasSubstr("archived. Take it back with: orvane projects restore "))
        << "and it is not told to be made again";
    EXPECT_FALSE(done({"projects", "restore", "Website"})[u"isArchived"].toBool(true));

    const QJsonObject task = done({"tasks", "add", "Website", "Design"});
    EXPECT_EQ(keys(task), (Names{"id", "isActive", "name", "projectId"}));
    EXPECT_EQ(listed({"tasks"}).size(), 1);
    EXPECT_EQ(done({"tasks", "delete", "Design", "--yes"})[idKey], task[idKey]);
    EXPECT_TRUE(listed({"tasks"}).isEmpty());
    const QJsonObject tag = done({"tags", "add", "review"});
    EXPECT_EQ(keys(tag), (Names{"id", "name", "workspaceId"}));
    EXPECT_NE(failed(1, {"tags", "add", "review"})[u"status"].toInteger(), 0)
        << "the server refuses a second one";
    EXPECT_EQ(done({"tags", "delete", "review", "--yes"})[idKey], tag[idKey]);
    EXPECT_TRUE(done({"clients", "archive", "Acme"})[u"isArchived"].toBool());
    EXPECT_TRUE(listed({"clients"}).isEmpty());
    done({"clients", "restore", "Acme"});
    done({"clients", "delete", "Acme", "--yes"});
    done({"projects", "delete", "Website", "--yes"});
    EXPECT_TRUE(listed({"projects", "--archived"}).isEmpty());
}

TEST_F(Command, KeepsSettingsAndTheWorkspace)
{
    const auto preferences = [](const QJsonObject &settings) { return settings[u"preferences"].toObject(); };
    const QJsonObject before = done({"settings"});
    EXPECT_EQ(keys(before), (Names{"preferences", "profile", "workspace"}));
    EXPECT_EQ(keys(preferences(before)),
              (Names{"dateFormat", "durationFormat", "pomodoroAutoStop", "pomodoroBreakMinutes",
                     "pomodoroEnabled", "pomodoroMinutes", "timeFormat", "weekStart"}));
    EXPECT_EQ(keys(before[u"profile"].toObject()), (Names{"email", "fullName", "timeZone"}));
    EXPECT_EQ(text(preferences(done({"settings", "set", "durationformat", "decimal"}))[u"durationFormat"]),
              "decimal");
    EXPECT_TRUE(preferences(done({"settings", "set", "pomodoroEnabled", "on"}))[u"pomodoroEnabled"].toBool());
    EXPECT_EQ(preferences(done({"settings", "set", "weekStart", "Sunday"}))[u"weekStart"].toInteger(), 0);
    setNow("2026-03-04T12:00:00Z");
    EXPECT_EQ(text(done({"list", "--week", "today"})[u"days"].toArray()[0].toObject()[u"day"]), "2026-03-01")
        << "weeks begin on Sunday now";
    EXPECT_THAT(installation.run({"status"}).output, HasSubstr("Nothing tracked today"));

    const QJsonArray workspaces = listed({"workspaces"});
    ASSERT_EQ(workspaces.size(), 1);
    EXPECT_EQ(keys(workspaces[0].toObject()), (Names{"id", "name", "organizationId", "role"}));
    EXPECT_EQ(done({"workspaces", "use", id(workspaces[0].toObject()).substr(0, 8)}),
              workspaces[0].toObject());
    failed(1, {"workspaces", "use", "elsewhere"});
}

TEST_F(Command, QueuesWithoutTheServerAndDeliversWhenItIsBack)
{
    const QJsonObject online = done({"start", "Before"});
    ASSERT_TRUE(installation.killServer());
    const CommandRun stop = installation.json({"--no-start-server", "stop"});
    EXPECT_EQ(stop.exitStatus, 0) << stop.all();
    EXPECT_EQ(text(stop.object()[u"outcome"]), "stopped");
    EXPECT_TRUE(stop.object()[u"queued"].toBool());
    const QJsonObject waiting = done({"--no-start-server", "start", "Meanwhile"});
    EXPECT_EQ(text(waiting[u"outcome"]), "waiting");
    EXPECT_TRUE(waiting[u"queued"].toBool());

    const QJsonObject status = done({"--no-start-server", "status"});
    EXPECT_FALSE(status[u"server"].toObject()[u"reachable"].toBool(true));
    EXPECT_EQ(status[u"outbox"].toObject()[u"pending"].toInteger(), 2);
    EXPECT_EQ(text(status[u"running"].toObject()[u"description"]), "Meanwhile");
    EXPECT_THAT(installation.run({"--no-start-server", "list"}).errors,
                HasSubstr("Offline: 2 changes are waiting to be sent."));
    const QJsonArray queue = listed({"--no-start-server", "outbox"});
    ASSERT_EQ(queue.size(), 2);
    EXPECT_EQ(keys(queue[0].toObject()), (Names{"change", "conflict", "seq"}));
    EXPECT_TRUE(queue[0].toObject()[u"conflict"].isNull());
    EXPECT_EQ(text(queue[0].toObject()[u"change"].toObject()[u"stop"].toObject()[idKey]),
              text(online[u"entry"].toObject()[idKey]));
    const QJsonObject create = queue[1].toObject()[u"change"].toObject()[u"create"].toObject();
    EXPECT_THAT(text(create[u"_0"].toObject()[u"start"]), ::testing::EndsWith("Z")) << "dates in ISO form";
    EXPECT_TRUE(create[u"_0"].toObject()[u"stop"].isNull()) << "null, not left out";
    failed(1, {"--no-start-server", "projects", "add", "Later"});
    failed(1, {"--no-start-server", "list", "--day", "2020-01-01"});

    EXPECT_EQ(done({"status"})[u"outbox"].toObject()[u"pending"].toInteger(), 0);
    const QJsonArray entries = done({"list"})[u"days"].toArray()[0].toObject()[u"entries"].toArray();
    ASSERT_EQ(entries.size(), 2);
    EXPECT_TRUE(entries[0].toObject()[u"stop"].isString());
    EXPECT_EQ(text(entries[1].toObject()[u"description"]), "Meanwhile");
    EXPECT_THAT(installation.run({"outbox"}).output, HasSubstr("Nothing is waiting"));
}

TEST_F(Command, SettlesConflictsAndShowsRefusals)
{
    setNow("2026-03-04T12:00:00Z");
    const auto add = [&](const char *what) {
        return id(entry({"add", what, "--start", "2026-03-04T09:00:00Z", "--stop", "2026-03-04T10:00:00Z"}));
    };
    const std::string mine = add("mine");
    const std::string theirs = add("theirs");
    const std::string gone = add("gone");
    ASSERT_TRUE(installation.killServer());
    for (const std::string &edited : {mine, theirs, gone})
        EXPECT_EQ(text(done({"--no-start-server", "edit", edited, "Edited here"})[u"outcome"]), "waiting");
    onAnotherDevice([&] {
        done({"edit", mine, "Edited there"});
        done({"edit", theirs, "Edited there"});
        done({"delete", gone});
    });

    EXPECT_EQ(compact(done({"status"})[u"outbox"]), R"({"conflicts":2,"offline":false,"pending":2})");
    const CommandRun first = installation.run({"status"});
    EXPECT_THAT(first.errors, HasSubstr("Refused: a change made earlier to \"Edited here\""));
    EXPECT_THAT(first.errors, HasSubstr(gone)) << "the whole of it is shown";
    const CommandRun second = installation.run({"status"});
    EXPECT_THAT(second.errors, Not(HasSubstr("Refused"))) << "once";
    EXPECT_THAT(second.errors, HasSubstr("Changed on another device: \"Edited there\""));

    const QJsonArray queue = listed({"outbox"});
    ASSERT_EQ(queue.size(), 2);
    EXPECT_EQ(text(queue[0].toObject()[u"conflict"].toObject()[u"description"]), "Edited there");
    const auto seq = [&](int index) { return std::to_string(queue[index].toObject()[u"seq"].toInteger()); };
    EXPECT_THAT(second.errors, HasSubstr("orvane outbox keep-mine " + seq(0)));
    EXPECT_EQ(listed({"outbox", "keep-mine", seq(0)}).size(), 1);
    EXPECT_TRUE(listed({"outbox", "keep-theirs", seq(1)}).isEmpty());
    const auto descriptions = [&] {
        std::map<std::string, std::string> all;
        for (const QJsonValue &item : done({"list"})[u"days"].toArray()[0].toObject()[u"entries"].toArray())
            all[id(item.toObject())] = text(item.toObject()[u"description"]);
        return all;
    };
    EXPECT_EQ(descriptions(),
              (std::map<std::string, std::string>{{mine, "Edited here"}, {theirs, "Edited there"}}));
    done({"undo"});
    EXPECT_EQ(descriptions()[theirs], "Edited here") << "what was given up";
    done({"undo"});
    EXPECT_EQ(descriptions()[mine], "Edited there");
}

TEST_F(Command, SignsInElsewhereAndComesBack)
{
    if (!testing::hasKernelKeyring())
        GTEST_SKIP() << "nothing here would keep the sign-in";
    TestInstallation other;
    const CommandRun hosted = other.json({"status"});
    ASSERT_EQ(hosted.exitStatus, 0) << hosted.all();
    const std::string url = text(hosted.object()[u"server"].toObject()[u"url"]);
    const Arguments login{"--server", url, "login", "--email", "ada@example.com", "--password-stdin"};
    EXPECT_EQ(installation.json(login, "correct horse battery\n").exitStatus, 1) << "not registered yet";
    Arguments registering = login;
    registering.emplace_back("--register");
    EXPECT_EQ(installation.json(registering, "\n").exitStatus, 1) << "an empty password";
    const CommandRun registered = installation.json(registering, "correct horse battery\n");
    EXPECT_EQ(registered.exitStatus, 0) << registered.all();
    EXPECT_EQ(keys(registered.object()), (Names{"account", "notes", "server"}));
    EXPECT_EQ(text(registered.object()[u"account"].toObject()[u"email"]), "ada@example.com");
    EXPECT_FALSE(registered.object()[u"account"].toObject()[u"automatic"].toBool(true));
    EXPECT_THAT(installation.run(login, "wrong\n").exitStatus, 1);
    const CommandRun again = installation.run(login, "correct horse battery\n");
    EXPECT_EQ(again.exitStatus, 0) << again.all();
    EXPECT_THAT(again.output, HasSubstr("Signed in at " + url + " as ada@example.com."));
    EXPECT_THAT(again.errors + again.output, Not(HasSubstr("correct horse")));
    EXPECT_THAT(again.errors, Not(HasSubstr("not encrypted"))) << "it does not leave this computer";

    EXPECT_TRUE(done({"logout"})[u"account"].isNull());
    EXPECT_TRUE(done({"status"})[u"account"].toObject()[u"automatic"].toBool());
}

TEST_F(Command, WarnsOfASignInThatCanBeReadOnTheWay)
{
    const auto said = [&](const char *server) {
        return installation
            .run({"--server", server, "login", "--email", "ada@example.com", "--password-stdin"}, "secret\n")
            .errors;
    };
    EXPECT_THAT(said("http://orvane.invalid"),
                AllOf(HasSubstr("http://orvane.invalid is not encrypted"), HasSubstr("password")));
    for (const char *server :
         {"https://orvane.invalid", "http://127.0.0.1:1", "http://localhost:1", "http://[::1]:1"})
        EXPECT_THAT(said(server), Not(HasSubstr("not encrypted"))) << server;
}

TEST_F(Command, StaysSignedInWhereThereIsAKeychain)
{
    TestInstallation other;
    const std::string url = text(other.json({"status"}).object()[u"server"].toObject()[u"url"]);
    const std::string call = builtProgram("orvane") + " --json --data-dir " + installation.folder() + " ";
    const CommandRun session = runProgram(
        "dbus-run-session",
        {"--", "bash", "-c",
         "printf pw | gnome-keyring-daemon --unlock --components=secrets >/dev/null\n"
         "printf 'correct horse battery' | " +
             call + "--server " + url + " login --register --email ada@example.com --password-stdin\n" +
             call + "status\n" + call + "logout\n" + call + "logout\n" + call + "status\n"},
        {{"XDG_RUNTIME_DIR", installation.folder()}, {"HOME", installation.folder()}});
    const QStringList lines =
        QString::fromStdString(session.output).split(QLatin1Char('\n'), Qt::SkipEmptyParts);
    ASSERT_EQ(lines.size(), 5) << session.all();
    const auto answer = [&](int index) { return QJsonDocument::fromJson(lines[index].toUtf8()).object(); };
    EXPECT_EQ(text(answer(1)[u"server"].toObject()[u"url"]), url) << "the next command is signed in still";
    EXPECT_EQ(text(answer(1)[u"account"].toObject()[u"email"]), "ada@example.com");
    EXPECT_TRUE(answer(2)[u"account"].isNull());
    EXPECT_EQ(text(answer(2)[u"server"].toObject()[u"url"]), url);
    EXPECT_TRUE(answer(3).contains(u"error")) << "the account on this computer is not signed out of";
    EXPECT_TRUE(answer(4)[u"account"].toObject()[u"automatic"].toBool());
}

TEST_F(Command, ShowsADayToPeople)
{
    setNow("2026-03-04T12:00:00Z");
    EXPECT_THAT(installation.run({}).output,
                HasSubstr("Nothing tracked today. Start with: orvane start \"Write the README\""));
    done({"projects", "add", "Website"});
    done({"--zone", "UTC", "add", "日本語 and a break", "--start", "9", "--stop", "10:30", "--project",
          "Website"});
    const CommandRun started = installation.run({"--zone", "UTC", "start", "Review"});
    EXPECT_THAT(started.output, StartsWith("Started  "));
    const CommandRun list = installation.run({"--zone", "UTC", "list"});
    EXPECT_EQ(list.exitStatus, 0);
    EXPECT_THAT(list.output, HasSubstr("09:00 – 10:30  1:30:00  日本語 and a break  Website\n"));
    EXPECT_THAT(list.output, Not(HasSubstr("\x1b"))) << "no colour in a pipe, no escape from a description";
    EXPECT_THAT(list.output, StartsWith("Today"));
    EXPECT_THAT(list.errors, IsEmpty());
    // Each command sets its clock anew, so the next one has to begin later.
    setNow("2026-03-04T12:05:00Z");
    const CommandRun stopped = installation.run({"stop"});
    EXPECT_THAT(stopped.output, StartsWith("Stopped  ")) << stopped.all();
}

TEST_F(Command, EndsCleanlyWhenItsOutputCannotBeWritten)
{
    const std::string call = builtProgram("orvane") + " --data-dir " + installation.folder();
    const CommandRun full = runProgram("bash", {"-c", call + " list > /dev/full"});
    EXPECT_EQ(full.exitStatus, 1);
    EXPECT_THAT(full.errors, HasSubstr("could not be written"));
    const CommandRun closed = runProgram("bash", {"-c", call + " --help | true; echo ${PIPESTATUS[0]}"});
    EXPECT_THAT(closed.output, ::testing::AnyOf("1\n", "0\n")) << closed.all();
    EXPECT_THAT(closed.errors, IsEmpty());
    const CommandRun reader = runProgram("bash", {"-c", call + " list >&-; echo $?"});
    EXPECT_EQ(reader.output, "1\n") << reader.all();
}

TEST_F(Command, AnswersHelpAndVersion)
{
    EXPECT_EQ(installation.run({"--version"}).output, "orvane " ORVANE_VERSION "\n");
    const CommandRun help = installation.run({"help", "projects", "add"});
    EXPECT_EQ(help.exitStatus, 0);
    EXPECT_THAT(help.output, HasSubstr("Usage: orvane projects add [OPTIONS] NAME"));
    EXPECT_EQ(help.output, installation.run({"projects", "add", "--help"}).output)
        << "also where NAME is missing";
    EXPECT_EQ(installation.run({"help", "fly"}).exitStatus, 2);
    EXPECT_EQ(installation.run({"completion", "tcsh"}).exitStatus, 2);
    EXPECT_THAT(installation.run({"completion", "fish"}).output, HasSubstr("complete -c orvane"));

    const QJsonObject tree = done({"help"});
    EXPECT_EQ(keys(tree), (Names{"arguments", "commands", "more", "name", "options", "summary", "usage"}));
    EXPECT_EQ(tree, done({"--help"}));
    const QJsonObject add = done({"projects", "add", "--help"});
    EXPECT_EQ(text(add[u"usage"]), "orvane projects add [OPTIONS] NAME");
    EXPECT_EQ(compact(add[u"arguments"].toArray()[0]),
              R"({"help":"The project's name","name":"NAME","repeats":false,"required":true})");
    EXPECT_EQ(
        compact(add[u"options"].toArray()[0]),
        R"({"help":"Whom it is for: a name or an identifier; \"\" for nobody","name":"--client","short":null,"value":"CLIENT"})");
    const QJsonArray commands = tree[u"commands"].toArray();
    const auto projects = std::ranges::find_if(
        commands, [](const QJsonValue &command) { return text(command.toObject()[u"name"]) == "projects"; });
    ASSERT_NE(projects, commands.end());
    EXPECT_TRUE((*projects).toObject()[u"commands"].toArray().contains(add)) << "whole, at any depth";
    EXPECT_FALSE(installation.hello()) << "none of this starts a server";
}

TEST_F(Command, ServesInTheForegroundUntilItIsTold)
{
    const CommandRun refused = installation.run({"serve", "--trusted-proxy", "nowhere"});
    EXPECT_THAT(refused.errors, HasSubstr("--trusted-proxy takes an address")) << "the server's own answer";
    const auto server = installation.start({"serve"});
    ASSERT_TRUE(server->waitForReadyRead(20'000)) << server->readAllStandardError().toStdString();
    const QByteArray address = server->readLine().trimmed();
    EXPECT_TRUE(address.startsWith("http://127.0.0.1:")) << address.toStdString();
    EXPECT_EQ(installation.hello().value().address, address.toStdString());
    EXPECT_EQ(installation.hello().value().pid, server->processId()) << "it takes the command's place";
    EXPECT_EQ(text(done({"--no-start-server", "status"})[u"server"].toObject()[u"url"]),
              address.toStdString());
    server->terminate();
    EXPECT_TRUE(server->waitForFinished(20'000));
    EXPECT_EQ(server->exitStatus(), QProcess::NormalExit);
}

} // namespace
} // namespace orvane
