// SPDX-License-Identifier: GPL-3.0-or-later
// What a process that stays open does by itself: it knows how it stands with the server, comes back, and
// tells everybody who listens.
#include "simulator/LivingAccountTest.h"

namespace orvane::simulator {
namespace {

using std::chrono::hours;
using std::chrono::minutes;
using std::chrono::seconds;
using Kind = AccountState::Kind;

EntryDetails details(const std::string &description)
{
    EntryDetails details;
    details.description = description;
    return details;
}

TEST_F(LivingAccountTest, KnowsHowItStandsAndComesBackByItself)
{
    window = open(true);
    ASSERT_TRUE(window);
    AccountState &state = window->state();
    EXPECT_EQ(state.kind(), Kind::online);
    std::vector<Kind> kinds;
    QObject::connect(&state, &AccountState::changed, &state, [&] {
        if (kinds.empty() || kinds.back() != state.kind())
            kinds.push_back(state.kind());
    });

    link->isUp = false;
    // Of nothing that waits, so that the queue has no reason to be tried again.
    EXPECT_FALSE(run(window->tracker().refresh(Topic::running)));
    EXPECT_EQ(state.kind(), Kind::offline);
    EXPECT_FALSE(state.reason().empty());
    ASSERT_TRUE(state.nextTry());
    EXPECT_GE(*state.nextTry(), world.now());
    EXPECT_EQ(window->tracker().state(), LoadState::loaded) << "what was asked for quietly fails quietly";
    world.runUntil(world.now() + minutes{10});
    EXPECT_EQ(state.kind(), Kind::offline);
    recordElsewhere("meanwhile", world.now() - hours{2});
    link->isUp = true;
    world.runUntil(world.now() + minutes{2});
    EXPECT_EQ(state.kind(), Kind::online);
    EXPECT_TRUE(state.reason().empty());
    EXPECT_FALSE(state.nextTry());
    EXPECT_FALSE(window->tracker().missed());

    link->isUp = false;
    EXPECT_EQ(run(window->tracker().start(details("offline"), world.now())).outcome, SaveOutcome::waiting);
    EXPECT_TRUE(window->outbox().isOffline());
    EXPECT_EQ(state.kind(), Kind::offline);
    link->isUp = true;
    world.runUntil(world.now() + minutes{2});
    EXPECT_TRUE(window->outbox().pending().empty());
    EXPECT_EQ(kinds, (std::vector{Kind::offline, Kind::online, Kind::offline, Kind::online}));
}

TEST_F(LivingAccountTest, TellsEveryListenerWhichEntriesAndDaysChanged)
{
    window = open(true);
    ASSERT_TRUE(window);
    Tracker &first = window->tracker();
    Tracker second({.workspace = first.workspace(),
                    .time = first.time(),
                    .api = window->access().client(),
                    .store = {},
                    .outbox = &window->outbox(),
                    .outcomes = &window->outcomes()});
    EntriesChange heard;
    QObject::connect(&second, &Tracker::entriesChanged, &second, [&](const EntriesChange &change) {
        heard.entries.insert(change.entries.begin(), change.entries.end());
        heard.days.insert(change.days.begin(), change.days.end());
    });
    const DayKey today = first.time().today();
    const Instant began = world.now() - minutes{30};
    const SaveResult started = run(first.start(details("seen by both"), began));
    ASSERT_TRUE(started.entry);
    const std::string id = started.entry->id;
    ASSERT_TRUE(second.running());
    EXPECT_EQ(second.running()->id, id);
    EXPECT_EQ(second.running()->version, first.running()->version) << "of the server's answer both hear";
    EXPECT_EQ(heard, (EntriesChange{{id}, {today}}));

    // A move to another day touches both days.
    heard = {};
    EntryRequest request;
    request.details = details("moved");
    request.start = began - hours{24};
    request.stop = request.start + hours{1};
    EXPECT_EQ(run(first.update(id, request)).outcome, SaveOutcome::saved);
    EXPECT_EQ(heard, (EntriesChange{{id}, {today, today.adding(-1)}}));

    // A start ends what runs, here without a word of the server. Who has not looked for a while is told too
    // much.
    const std::string ended = run(first.start(details("a"), world.now())).entry->id;
    link->isUp = false;
    EXPECT_EQ(second.running()->id, ended);
    heard = {};
    const std::string begun = run(first.start(details("b"), world.now())).entry->id;
    EXPECT_EQ(heard.entries, (std::set{ended, begun})) << id;
    link->isUp = true;
}

TEST_F(LivingAccountTest, RefreshesByTopicWithoutAWord)
{
    window = open(true);
    ASSERT_TRUE(window);
    Tracker &tracker = window->tracker();
    int states = 0;
    std::vector<EntriesChange> changes;
    QObject::connect(&tracker, &Tracker::stateChanged, &tracker, [&] { ++states; });
    QObject::connect(&tracker, &Tracker::entriesChanged, &tracker,
                     [&](const EntriesChange &change) { changes.push_back(change); });
    EXPECT_TRUE(run(tracker.refresh(allTopics)));
    EXPECT_TRUE(changes.empty()) << "nothing is otherwise";

    const DayKey yesterday = tracker.time().today().adding(-1);
    recordElsewhere("phone", tracker.time().date(yesterday, 10, 0));
    EXPECT_TRUE(run(tracker.refresh(Topic::running)));
    EXPECT_TRUE(changes.empty()) << "entries were not asked for";
    // Asked twice at once, answered by one after the other.
    auto one = tracker.refresh(Topic::entries);
    auto other = tracker.refresh(Topics(Topic::entries) | Topic::catalog);
    EXPECT_TRUE(run(std::move(other)));
    EXPECT_TRUE(run(std::move(one)));
    ASSERT_EQ(changes.size(), 1U);
    EXPECT_EQ(changes.front(), (EntriesChange{{"phone"}, {yesterday}}));

    link->isUp = false;
    recordElsewhere("later", tracker.time().date(yesterday, 12, 0));
    EXPECT_FALSE(run(tracker.refresh(Topic::entries)));
    EXPECT_EQ(tracker.missed(), Topics(Topic::entries));
    EXPECT_FALSE(tracker.entry("later"));
    link->isUp = true;
    world.runUntil(world.now() + minutes{2});
    EXPECT_TRUE(tracker.entry("later")) << "made good without being asked again";
    EXPECT_EQ(states, 0);
}

TEST_F(LivingAccountTest, KnowsDaysByAnswersAndFollowsTheProfile)
{
    window = open(true);
    ASSERT_TRUE(window);
    Tracker &tracker = window->tracker();
    const UserTime time = tracker.time();
    const DayKey monday = time.weekStartContaining(time.today());
    EXPECT_TRUE(tracker.knownDays().contains(monday, 7));
    EXPECT_FALSE(tracker.knownDays().contains(monday.adding(-1), 1));
    recordElsewhere("before", time.date(monday.adding(-3), 10, 0));
    EXPECT_TRUE(run(tracker.loadDays(monday.adding(-3), 1)));
    EXPECT_EQ(tracker.calendarDays(), std::set{monday.adding(-3)});
    EXPECT_TRUE(run(tracker.loadWeekBefore()));
    EXPECT_EQ(tracker.weeksLoaded(), 1);
    EXPECT_TRUE(tracker.knownDays().contains(monday.adding(-7), 14));

    // A Sunday night without the server: what was known is known still, and what was recorded is kept.
    link->isUp = false;
    world.runUntil(time.startOfDay(monday.adding(7)) + minutes{10});
    const Instant now = world.now();
    EXPECT_EQ(run(tracker.start(details("monday"), now)).outcome, SaveOutcome::waiting);
    EXPECT_TRUE(tracker.knownDays().contains(monday.adding(-7), 14));
    EXPECT_FALSE(tracker.knownDays().contains(monday.adding(7), 1));
    EXPECT_TRUE(tracker.entry("before"));
    link->isUp = true;
    world.runUntil(world.now() + minutes{3});
    EXPECT_TRUE(tracker.knownDays().contains(monday, 14)) << "one week before the new one";
    EXPECT_TRUE(tracker.running());

    int told = 0;
    QObject::connect(&tracker, &Tracker::timeChanged, &tracker, [&] { ++told; });
    MeResponse me = window->me();
    me.preferences.timeFormat = "12h";
    run(window->updateMe(me));
    EXPECT_EQ(told, 1);
    EXPECT_TRUE(tracker.time().hour12());
    me.timeZone = "Asia/Tokyo";
    run(window->updateMe(me));
    EXPECT_EQ(told, 2);
    EXPECT_EQ(tracker.time().timeZone(), "Asia/Tokyo");
    EXPECT_FALSE(tracker.knownDays().contains(monday, 1)) << "days are others there";
    world.runUntil(world.now() + seconds{5});
    EXPECT_TRUE(tracker.knownDays().contains(tracker.time().today(), 1));
}

} // namespace
} // namespace orvane::simulator
