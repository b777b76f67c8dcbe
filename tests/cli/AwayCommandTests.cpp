// SPDX-License-Identifier: GPL-3.0-or-later
// Commands while the server hangs or is gone, its folder is another one, or the store is damaged.
#include "CommandFixture.h"

#include "Catalog/EntryChange.h"
#include "LocalStore/LocalStore.h"
#include "Support/DateText.h"
#include "support/Await.h"

#include <QUuid>
#include <csignal>

namespace orvane {
namespace {

using ::testing::AllOf;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::Not;

/// A server that takes connections and says nothing, until this goes.
class HangingServer {
public:
    explicit HangingServer(std::int64_t pid) : m_pid(static_cast<pid_t>(pid))
    {
        EXPECT_EQ(::kill(m_pid, SIGSTOP), 0);
    }
    HangingServer(const HangingServer &) = delete;
    HangingServer &operator=(const HangingServer &) = delete;
    ~HangingServer() { ::kill(m_pid, SIGCONT); }

private:
    pid_t m_pid;
};

class AwayCommand : public Command {
protected:
    /// The stores in the folder, by name.
    QStringList stores() const
    {
        const QDir folder(QString::fromStdString(installation.folder()));
        return folder.entryList(QStringList(QStringLiteral("*.sqlite")), QDir::Files, QDir::Name);
    }
    std::shared_ptr<LocalStore> openStore() const
    {
        const QStringList names = stores();
        EXPECT_EQ(names.size(), 1);
        const auto opened =
            orvane::testing::await(LocalStore::open(installation.folder() + "/" + names[0].toStdString()));
        EXPECT_TRUE(opened);
        return opened.value_or(nullptr);
    }
    void runSql(const std::string &sql) const
    {
        EXPECT_TRUE(orvane::testing::await(openStore()->query(sql, {}))) << sql;
    }
    void moveServerFolder(const char *from, const char *to) const
    {
        QDir folder(QString::fromStdString(installation.folder()));
        ASSERT_TRUE(folder.rename(QLatin1String(from), QLatin1String(to)));
    }
    std::vector<std::string> descriptionsToday() const
    {
        std::vector<std::string> descriptions;
        for (const QJsonValue &item : done({"list"})[u"days"].toArray()[0].toObject()[u"entries"].toArray())
            descriptions.push_back(text(item.toObject()[u"description"]));
        return descriptions;
    }
    static double secondsAfter(const char *moment, const QJsonValue &instant)
    {
        return secondsBetween(instantFromIso8601(moment).value(), instantFromIso8601(text(instant)).value());
    }
};

/// Less than what a command spends on a server that does not answer.
constexpr double atOnce = 1.5;

TEST_F(AwayCommand, HappensWhenItWasAskedForThoughTheServerHangs)
{
    setNow("2026-03-04T09:00:00Z");
    done({"start", "Before"});
    {
        const HangingServer hanging(installation.hello().value().pid);
        setNow("2026-03-04T10:00:00Z");
        const QJsonObject started = done({"start", "Meanwhile"});
        EXPECT_EQ(text(started[u"outcome"]), "waiting");
        EXPECT_LT(secondsAfter("2026-03-04T10:00:00Z", started[u"entry"].toObject()[u"start"]), atOnce);
        setNow("2026-03-04T11:00:00Z");
        const QJsonObject stopped = done({"stop", "--at", "-15"});
        EXPECT_TRUE(stopped[u"queued"].toBool());
        EXPECT_LT(secondsAfter("2026-03-04T10:45:00Z", stopped[u"entry"].toObject()[u"stop"]), atOnce);
        const QJsonObject sentence = done({"start", "Reading 20m ago"})[u"entry"].toObject();
        EXPECT_LT(secondsAfter("2026-03-04T10:40:00Z", sentence[u"start"]), 60 + atOnce);

        const QJsonObject status = done({"status"});
        EXPECT_FALSE(status[u"server"].toObject()[u"reachable"].toBool(true));
        EXPECT_TRUE(status[u"outbox"].toObject()[u"offline"].toBool()) << "not sent because it is away";
    }
    EXPECT_EQ(compact(done({"status"})[u"outbox"]), R"({"conflicts":0,"offline":false,"pending":0})");
    EXPECT_EQ(descriptionsToday(), (Names{"Before", "Meanwhile", "Reading"}));
}

TEST_F(AwayCommand, DoesNotWaitForALongQueue)
{
    setNow("2026-03-04T09:00:00Z");
    const std::string workspace = text(done({"status"})[u"workspace"].toObject()[idKey]);
    const Instant nine = instantFromIso8601("2026-03-04T09:00:00Z").value();
    constexpr int many = 150;
    orvane::testing::await(openStore()->transact([&](Connection &connection) -> StoreStatus {
        StoreSteps steps(connection);
        for (int i = 0; i < many; ++i) {
            EntryRequest request;
            request.details.description = std::to_string(i);
            request.start = nine - std::chrono::minutes{many - i};
            request.stop = request.start + std::chrono::seconds{30};
            const std::string id = QUuid::createUuid().toString(QUuid::WithoutBraces).toStdString();
            std::int64_t seq = 0;
            steps.addRow({EntryChange::Create{std::move(request), id, workspace}}, seq);
        }
        return steps.status();
    }));
    setNow("2026-03-04T10:00:00Z");
    const QJsonObject started = done({"start", "The newest"});
    EXPECT_LT(secondsAfter("2026-03-04T10:00:00Z", started[u"entry"].toObject()[u"start"]), atOnce);
    EXPECT_THAT(installation.run({"outbox", "flush"}).errors, IsEmpty()) << "it goes on to the end";
    const QJsonObject status = done({"status"});
    EXPECT_EQ(compact(status[u"outbox"]), R"({"conflicts":0,"offline":false,"pending":0})");
    EXPECT_EQ(status[u"running"].toObject()[idKey], started[u"entry"].toObject()[idKey]);
    EXPECT_EQ(status[u"today"].toObject()[u"entries"].toArray().size(), many + 1);
}

TEST_F(AwayCommand, StartsThoughTheTimerBeforeIsRefused)
{
    done({"projects", "add", "Web"});
    done({"status"});
    ASSERT_TRUE(installation.killServer());
    done({"--no-start-server", "start", "On the web @web"});
    onAnotherDevice([&] { done({"projects", "delete", "Web", "--yes"}); });
    const CommandRun next = installation.run({"start", "Next"});
    EXPECT_EQ(next.exitStatus, 0) << next.all();
    EXPECT_THAT(next.errors, AllOf(HasSubstr("The timer before it could not be stopped: "),
                                   HasSubstr("Refused: a change made earlier to \"On the web\"")));
    EXPECT_EQ(text(done({"status"})[u"running"].toObject()[u"description"]), "Next");
}

TEST_F(AwayCommand, SaysThatTheServerCannotBeAskedForWhatItAloneKnows)
{
    setNow("2026-03-04T12:00:00Z");
    const std::string old =
        id(entry({"add", "Long ago", "--start", "2026-01-20 9:00", "--stop", "2026-01-20 9:30"}));
    setNow("2026-05-20T12:00:00Z");
    EXPECT_THAT(text(failed(1, {"edit", old.substr(0, 8), "x"})[u"message"]),
                AllOf(HasSubstr("in the last 8 weeks"), HasSubstr("whole identifier")));
    EXPECT_EQ(text(entry({"edit", old, "Longer ago"})[u"description"]), "Longer ago");
    const std::string nobody = "00000000-0000-4000-8000-000000000000";
    EXPECT_THAT(text(failed(1, {"delete", nobody})[u"message"]), HasSubstr("There is no entry"));

    ASSERT_TRUE(installation.killServer());
    for (const Arguments &command :
         {Arguments{"edit", old, "x"}, {"delete", old}, {"duplicate", old.substr(0, 8)}, {"continue"}}) {
        Arguments arguments{"--no-start-server"};
        arguments.insert(arguments.end(), command.begin(), command.end());
        EXPECT_THAT(text(failed(1, arguments)[u"message"]),
                    AllOf(HasSubstr("known on this computer, and the server cannot be asked"),
                          Not(HasSubstr("There is no entry"))));
    }
}

TEST_F(AwayCommand, TellsAStoreThatCannotBeReadFromAnEmptyOne)
{
    done({"status"});
    runSql("INSERT INTO outbox (change, created_at) VALUES (x'7b7d', 0)");
    const CommandRun list = installation.run({"outbox"});
    EXPECT_EQ(list.exitStatus, 0) << list.all();
    EXPECT_THAT(list.output, HasSubstr("Nothing else is waiting"));
    EXPECT_THAT(list.errors, AllOf(HasSubstr("1 queued change cannot be read"), HasSubstr(".sqlite")));
    const QJsonArray rows = listed({"outbox", "flush"});
    ASSERT_EQ(rows.size(), 1);
    EXPECT_TRUE(rows[0].toObject()[u"change"].isNull());
    EXPECT_THAT(installation.run({"start", "All the same"}).errors, HasSubstr("cannot be read"));
    EXPECT_EQ(listed({"outbox"}), rows) << "what can be read is sent past it";

    runSql("ALTER TABLE outbox RENAME TO lost");
    for (const Arguments &command : {Arguments{"outbox"}, {"outbox", "flush"}, {"status"}, {"start", "x"}})
        EXPECT_THAT(text(failed(1, command)[u"message"]), HasSubstr("could not be read or written"));

    // With the server away nothing but the store knows the account.
    ASSERT_TRUE(installation.killServer());
    runSql("ALTER TABLE document RENAME TO lostToo");
    EXPECT_THAT(text(failed(1, {"--no-start-server", "outbox"})[u"message"]),
                HasSubstr("could not be read or written"));
}

TEST_F(AwayCommand, KeepsTheQueueOfAnAccountWhoseServerIsAwayUntilItIsBack)
{
    done({"add", "Before", "--start", "-10", "--stop", "-9"});
    ASSERT_TRUE(installation.killServer());
    done({"--no-start-server", "add", "Queued", "--start", "-8", "--stop", "-7"});
    moveServerFolder("server", "aside");
    EXPECT_EQ(text(done({"--no-start-server", "add", "Away", "--start", "-6", "--stop", "-5"})[u"outcome"]),
              "waiting");

    // An empty folder means another account, which gets nothing of the first one's.
    EXPECT_THAT(descriptionsToday(), IsEmpty());
    const CommandRun other = installation.run({"outbox"});
    EXPECT_THAT(other.output, HasSubstr("Nothing else is waiting"));
    EXPECT_THAT(other.errors, HasSubstr("2 changes of another account of this computer wait"));
    EXPECT_THAT(installation.run({"status"}).errors, HasSubstr("2 changes of another account"));
    ASSERT_TRUE(installation.killServer());
    done({"--no-start-server", "add", "Of the other", "--start", "-4", "--stop", "-3"});

    moveServerFolder("server", "second");
    moveServerFolder("aside", "server");
    EXPECT_THAT(installation.run({"status"}).errors,
                HasSubstr("1 change of another account of this computer waits"));
    EXPECT_EQ(compact(done({"status"})[u"outbox"]), R"({"conflicts":0,"offline":false,"pending":0})");
    EXPECT_EQ(descriptionsToday(), (Names{"Before", "Queued", "Away"}));

    ASSERT_TRUE(installation.killServer());
    moveServerFolder("server", "first");
    moveServerFolder("second", "server");
    EXPECT_EQ(descriptionsToday(), Names{"Of the other"});
    EXPECT_THAT(installation.run({"outbox"}).errors, IsEmpty());
    EXPECT_EQ(stores().size(), 2) << "no store is left behind under an old address";
}

} // namespace
} // namespace orvane
