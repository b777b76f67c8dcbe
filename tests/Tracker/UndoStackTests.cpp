// SPDX-License-Identifier: GPL-3.0-or-later
// What the user does is undone and done again, over the real server on this computer and without it.
#include "Tracker/UndoStack.h"

#include "Account/Account.h"
#include "Account/SettingsChange.h"
#include "Catalog/EntryConversions.h"
#include "Client/OrvaneClient.h"
#include "Time/AppClock.h"
#include "Tracker/CatalogChange.h"
#include "support/AccountStack.h"
#include "support/Await.h"
#include "support/CommandRun.h"
#include "support/MidweekClock.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace orvane {
namespace {

using namespace orvane::testing;
using std::chrono::minutes;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::SizeIs;

using Contents = std::vector<std::pair<std::string, EntryRequest>>;

/// What entries say, whatever their identifiers and versions.
Contents contentsOf(const std::vector<TimeEntryResponse> &entries)
{
    Contents contents;
    for (const TimeEntryResponse &entry : entries)
        contents.emplace_back(entry.description, entryRequest(entry));
    std::ranges::sort(contents, {}, [](const auto &one) {
        return std::tuple(one.second.start, one.second.stop, one.first);
    });
    return contents;
}

EntryDetails details(const std::string &description)
{
    EntryDetails details;
    details.description = description;
    return details;
}

class UndoStackTest : public ::testing::Test {
    MidweekClock midweek;

protected:
    void open(bool startsServer = true)
    {
        auto opened = await(openAccount(installation, startsServer));
        ASSERT_TRUE(opened) << opened.error().message;
        account = std::move(*opened);
        await(account->tracker().load());
        stack = std::make_unique<UndoStack>(account->tracker(), account->outcomes(), account->history());
    }
    void close()
    {
        stack.reset();
        if (account)
            await(account->close());
        account.reset();
    }
    void SetUp() override { open(); }
    void TearDown() override { close(); }

    Tracker &tracker() { return account->tracker(); }
    Contents shown() { return contentsOf(tracker().entries()); }
    Contents held()
    {
        auto entries = await(account->client().listTimeEntries(
            tracker().workspace().id, now - std::chrono::days{8}, now + std::chrono::days{8}));
        EXPECT_TRUE(entries);
        return entries ? contentsOf(*entries) : Contents{};
    }
    std::string made(const std::string &description, minutes ago)
    {
        const SaveResult result =
            await(tracker().create({details(description), now - ago, now - ago + minutes{10}, false}));
        EXPECT_FALSE(result.error) << result.message;
        return result.entry ? result.entry->id : "";
    }
    void rename(const std::string &id, const std::string &description)
    {
        EntryRequest request = entryRequest(*tracker().entry(id));
        request.details.description = description;
        EXPECT_FALSE(await(tracker().update(id, request)).error);
    }
    /// Runs `orvane` beside this process, which holds the turn to send while a pass of its own ends.
    CommandRun command(const Arguments &arguments)
    {
        EXPECT_TRUE(eventually([&] { return !account->outbox().isFlushing(); }));
        return folder.run(arguments);
    }
    std::string undoText() const { return stack->undoText().toStdString(); }
    std::string undone() { return await(stack->undo()).sentence; }

    void doEverything(std::vector<Contents> &states, std::vector<std::string> &sentences);

    TestInstallation folder;
    Installation installation{folder.folder()};
    std::unique_ptr<Account> account;
    std::unique_ptr<UndoStack> stack;
    const Instant now = millisecondsFloor(AppClock::now());
};

/// An action of each kind, with what is shown after each.
void UndoStackTest::doEverything(std::vector<Contents> &states, std::vector<std::string> &sentences)
{
    const auto note = [&](const SaveResult &result) {
        EXPECT_FALSE(result.turns.empty()) << result.message;
        states.push_back(shown());
        sentences.push_back(undoText());
    };
    states.push_back(shown());
    note(await(tracker().start(details("first"), now - minutes{300})));
    note(await(tracker().start(details("second"), now - minutes{240})));
    note(await(tracker().stop(now - minutes{200})));
    SaveResult made =
        await(tracker().create({details("third"), now - minutes{180}, now - minutes{120}, false}));
    note(made);
    const std::string third = made.entry->id;
    EntryRequest other = entryRequest(*tracker().entry(third));
    other.details.isBillable = true;
    note(await(tracker().update(third, other)));
    SplitPart half;
    half.percent = 50;
    note(await(tracker().split(third, {half, half})));
    const SaveResult copy = await(tracker().duplicate(third));
    note(copy);
    other.start -= minutes{5};
    note(await(tracker().updateAll({{third, other}, {copy.entry->id, other}})));
    note(await(tracker().splitAt(third, now - minutes{150}, details("the rest"))));
    note(await(tracker().remove(copy.entry->id)));
    note(await(tracker().start(details("runs"), now - minutes{60})));
    note(await(tracker().splitAt(tracker().running()->id, now - minutes{30}, details("runs on"))));
    std::vector<std::string> ids;
    for (const TimeEntryResponse &entry : tracker().entries())
        ids.push_back(entry.id);
    note(await(tracker().removeAll(ids)));
}

const std::vector<std::string> everySentence{
    "Started “first”", "Started “second”", "Stopped “second”",  "Added “third”",     "Changed “third”",
    "Split “third”",   "Added “third”",    "Changed 2 entries", "Split “third” at ", "Deleted “third”",
    "Started “runs”",  "Split “runs” at ", "Deleted 6 entries",
};

TEST_F(UndoStackTest, TakesEveryActionBackAndDoesItAgain)
{
    std::vector<Contents> states;
    std::vector<std::string> sentences;
    doEverything(states, sentences);
    ASSERT_THAT(sentences, SizeIs(everySentence.size()));
    for (std::size_t i = 0; i < sentences.size(); ++i)
        EXPECT_THAT(sentences[i], HasSubstr(everySentence[i]));
    for (int round = 0; round < 2; ++round) {
        for (std::size_t i = states.size() - 1; i > 0; --i) {
            ASSERT_TRUE(stack->canUndo());
            const UndoStack::Answer answer = await(stack->undo());
            ASSERT_TRUE(answer.isDone) << sentences[i - 1] << ": " << answer.sentence;
            EXPECT_EQ(answer.sentence, "Undone: " + sentences[i - 1]);
            ASSERT_EQ(shown(), states[i - 1]) << "before " << sentences[i - 1];
            ASSERT_EQ(held(), states[i - 1]) << "before " << sentences[i - 1];
        }
        EXPECT_FALSE(stack->canUndo());
        EXPECT_EQ(undone(), "There is nothing to undo.");
        for (std::size_t i = 1; i < states.size(); ++i) {
            EXPECT_EQ(stack->redoText().toStdString(), sentences[i - 1]);
            const UndoStack::Answer answer = await(stack->redo());
            ASSERT_TRUE(answer.isDone) << sentences[i - 1] << ": " << answer.sentence;
            ASSERT_EQ(shown(), states[i]) << "after " << sentences[i - 1];
        }
        EXPECT_FALSE(stack->canRedo());
    }
    EXPECT_EQ(held(), states.back());
}

TEST_F(UndoStackTest, WorksWithoutTheServerAndAllOfItArrivesOnce)
{
    close();
    ASSERT_TRUE(folder.killServer());
    open(false);
    std::vector<Contents> states;
    std::vector<std::string> sentences;
    doEverything(states, sentences);
    for (std::size_t i = states.size() - 1; i > 0; --i) {
        ASSERT_TRUE(await(stack->undo()).isDone) << sentences[i - 1];
        ASSERT_EQ(shown(), states[i - 1]) << "before " << sentences[i - 1];
    }
    for (std::size_t i = 1; i < states.size() - 1; ++i) {
        ASSERT_TRUE(await(stack->redo()).isDone) << sentences[i - 1];
        ASSERT_EQ(shown(), states[i]) << "after " << sentences[i - 1];
    }
    close();
    open();
    await(account->outbox().flush());
    await(tracker().load());
    EXPECT_THAT(account->outbox().pending(), IsEmpty());
    EXPECT_EQ(held(), states[states.size() - 2]);
    EXPECT_EQ(shown(), states[states.size() - 2]);
    EXPECT_FALSE(stack->canUndo()) << "a stack is of one process";
}

TEST_F(UndoStackTest, RefusesWhatWasChangedElsewhereAndGetsItOutOfTheWay)
{
    const std::string other = made("other", minutes{120});
    const std::string mine = made("mine", minutes{60});
    rename(mine, "mine again");
    EntryRequest theirs = entryRequest(*tracker().entry(mine));
    theirs.details.description = "theirs";
    ASSERT_TRUE(await(account->client().updateTimeEntry(
        tracker().workspace().id, mine, timeEntryRequest(theirs), tracker().entry(mine)->version)));
    ASSERT_TRUE(await(tracker().refresh(allTopics)));
    for (int step = 0; step < 2; ++step) {
        const UndoStack::Answer answer = await(stack->undo());
        EXPECT_FALSE(answer.isDone);
        EXPECT_EQ(answer.sentence, "That cannot be taken back: the entry was changed since then.");
    }
    EXPECT_EQ(tracker().entry(mine)->description, "theirs");
    EXPECT_EQ(undone(), "Undone: Added “other”");
    EXPECT_FALSE(tracker().entry(other));
    EXPECT_FALSE(stack->canUndo());
}

TEST_F(UndoStackTest, FollowsAnEntryThatCameBackUnderAnotherIdentifier)
{
    const std::string first = made("one", minutes{60});
    rename(first, "two");
    await(tracker().remove(first));
    EXPECT_EQ(undone(), "Undone: Deleted “two”");
    ASSERT_THAT(tracker().entries(), SizeIs(1));
    const std::string second = tracker().entries().front().id;
    EXPECT_NE(second, first);
    EXPECT_EQ(undone(), "Undone: Changed “two”") << "the earlier step follows";
    EXPECT_EQ(tracker().entry(second)->description, "one");
    EXPECT_EQ(undone(), "Undone: Added “one”");
    EXPECT_TRUE(await(stack->redo()).isDone);
    EXPECT_TRUE(await(stack->redo()).isDone) << "the later step follows";
    EXPECT_TRUE(await(stack->redo()).isDone);
    EXPECT_THAT(tracker().entries(), IsEmpty());
    EXPECT_TRUE(await(stack->undo()).isDone);
    made("new", minutes{30});
    EXPECT_FALSE(stack->canRedo()) << "what is done now leads elsewhere";
}

TEST_F(UndoStackTest, UndoesWhatTheServerHasNotAnsweredYet)
{
    const std::string first = made("one", minutes{60});
    const std::string second = made("two", minutes{30});
    auto removing = tracker().removeAll({first, second});
    ASSERT_TRUE(eventually([&] { return undoText() == "Deleted 2 entries"; }));
    // At once, one after the other: each takes a step of its own.
    auto back = stack->undo();
    auto further = stack->undo();
    EXPECT_EQ(await(std::move(further)).sentence, "Undone: Added “two”");
    EXPECT_EQ(await(std::move(back)).sentence, "Undone: Deleted 2 entries");
    await(std::move(removing));
    await(account->outbox().flush());
    ASSERT_THAT(tracker().entries(), SizeIs(1));
    EXPECT_EQ(tracker().entries().front().description, "one");
    EXPECT_EQ(held(), shown());
}

TEST_F(UndoStackTest, HasNoStepOfWhatTheServerRefused)
{
    const std::string kept = made("kept", minutes{60});
    // Of a rule of the workspace that is not known here yet.
    WorkspaceSettingsRequest stricter;
    stricter.name = tracker().settings()->name;
    stricter.currency = tracker().settings()->currency;
    stricter.requireDescription = true;
    ASSERT_TRUE(await(account->client().updateWorkspaceSettings(tracker().workspace().id, stricter)));
    const SaveResult refused =
        await(tracker().create({details(""), now - minutes{40}, now - minutes{35}, false}));
    ASSERT_EQ(refused.outcome, SaveOutcome::rejected);
    EXPECT_EQ(undoText(), "Added “kept”");

    EntryRequest nameless = entryRequest(*tracker().entry(kept));
    nameless.details.description.clear();
    const std::string other = made("other", minutes{20});
    EntryRequest billable = entryRequest(*tracker().entry(other));
    billable.details.isBillable = true;
    const SaveResult partly = await(tracker().updateAll({{kept, nameless}, {other, billable}}));
    EXPECT_EQ(partly.outcome, SaveOutcome::rejected);
    EXPECT_THAT(partly.message, HasSubstr("1 of 2 entries were not changed: "));
    EXPECT_THAT(partly.turns, SizeIs(1));
    EXPECT_TRUE(await(stack->undo()).isDone) << "of the rest";
    EXPECT_FALSE(tracker().entry(other)->isBillable);
    EXPECT_EQ(undoText(), "Added “other”");
    EXPECT_EQ(await(account->history().last())->turns.front().id(), other);
}

TEST_F(UndoStackTest, SharesTheStoredHistoryWithTheCommand)
{
    made("one", minutes{60});
    made("two", minutes{30});
    EXPECT_EQ(undone(), "Undone: Added “two”");
    CommandRun run = command({"undo"});
    EXPECT_EQ(run.exitStatus, 0) << run.all();
    EXPECT_THAT(run.output, HasSubstr("one")) << "what was undone here is forgotten there";
    ASSERT_TRUE(await(tracker().refresh(allTopics)));
    EXPECT_THAT(tracker().entries(), IsEmpty());
    EXPECT_FALSE(await(stack->undo()).isDone) << "it is undone already";

    run = command({"add", "three 9:00-9:10 yesterday"});
    ASSERT_EQ(run.exitStatus, 0) << run.all();
    ASSERT_TRUE(await(tracker().refresh(allTopics)));
    EXPECT_FALSE(stack->canUndo()) << "what the command did is not this user's last action here";
    EXPECT_TRUE(await(stack->redo()).isDone);
    EXPECT_THAT(command({"undo"}).output, HasSubstr("two")) << "done again, so it is the last";
}

TEST_F(UndoStackTest, DoesNotStartASecondTimerButKeepsTheStep)
{
    await(tracker().start(details("first"), now - minutes{60}));
    await(tracker().stop(now - minutes{50}));
    // As another device does.
    CreateTimeEntryRequest theirs = createTimeEntryRequest(
        {details("theirs"), now - minutes{10}, std::nullopt, false}, "7d1fd1bc-5ad1-4e4f-9df5-2d2d87be2b80");
    ASSERT_TRUE(await(account->client().createTimeEntry(tracker().workspace().id, theirs)));
    ASSERT_TRUE(await(tracker().refresh(allTopics)));
    EXPECT_EQ(undone(), "That cannot be taken back: another timer runs by now. Stop it first.");
    EXPECT_EQ(undoText(), "Stopped “first”");
    ASSERT_TRUE(await(account->client().stopTimeEntry(tracker().workspace().id, theirs.id,
                                                      StopTimeEntryRequest{now - minutes{5}}, {})));
    ASSERT_TRUE(await(tracker().refresh(allTopics)));
    EXPECT_EQ(undone(), "Undone: Stopped “first”");
    EXPECT_EQ(tracker().running()->description, "first");
}

// Beside entries

class FakeChange final : public UndoableChange {
public:
    explicit FakeChange(int &state, int number) : m_state(state), m_number(number) {}
    std::string sentence() const override { return "Change " + std::to_string(m_number); }
    Task<Outcome> undo() override
    {
        if (ending == Ending::done)
            m_state = m_number - 1;
        co_return Outcome{ending, ending == Ending::done ? "" : "It was not done."};
    }
    Task<Outcome> redo() override
    {
        m_state = m_number;
        co_return Outcome{};
    }
    Ending ending = Ending::done;

private:
    int &m_state;
    int m_number;
};

TEST_F(UndoStackTest, TakesASettlementBack)
{
    const auto says = [&](const std::string &id) {
        const auto entry = tracker().entry(id);
        return entry ? entry->description : "";
    };
    /// An entry that both sides renamed, or that this side deleted; answers its identifier.
    const auto contested = [&](minutes ago, bool isDeleted) {
        const std::string id = made("mine", ago);
        EntryRequest theirs = entryRequest(*tracker().entry(id));
        theirs.details.description = "theirs";
        EXPECT_TRUE(await(account->client().updateTimeEntry(
            tracker().workspace().id, id, timeEntryRequest(theirs), tracker().entry(id)->version)));
        if (isDeleted)
            await(tracker().remove(id));
        else
            rename(id, "mine again");
        return id;
    };
    const auto settle = [&](Settlement settlement) {
        const auto conflict = account->outbox().conflicts().at(0);
        EXPECT_TRUE(*await(tracker().settle(conflict.seq, std::move(settlement), *conflict.conflict)));
    };

    const std::string kept = contested(minutes{300}, false);
    settle(KeepTheirs{});
    EXPECT_EQ(says(kept), "theirs");
    EXPECT_EQ(undone(), "Undone: Settled “theirs”");
    EXPECT_EQ(says(kept), "mine again") << "what was given up";
    EXPECT_TRUE(await(stack->redo()).isDone);
    EXPECT_EQ(says(kept), "theirs");

    const std::string merged = contested(minutes{200}, false);
    EntryRequest both = entryRequest(*account->outbox().conflicts().at(0).conflict);
    both.details.description = "of both";
    settle(KeepMerged{both});
    EXPECT_EQ(undone(), "Undone: Settled “of both”");
    EXPECT_EQ(says(merged), "theirs");

    const std::string gone = contested(minutes{100}, true);
    settle(KeepMine{});
    EXPECT_EQ(says(gone), "");
    EXPECT_EQ(undone(), "Undone: Settled “theirs”");
    EXPECT_THAT(shown(), ::testing::Contains(::testing::Key("theirs")).Times(3));
    EXPECT_EQ(held(), shown());
    EXPECT_EQ(await(tracker().settle(9999, KeepMine{}, *tracker().entry(kept))).value(), std::nullopt);
}

TEST_F(UndoStackTest, KeepsAHundredStepsAndThoseThatCanBeTriedAgain)
{
    int state = 0;
    std::shared_ptr<FakeChange> last;
    for (int number = 1; number <= 105; ++number) {
        last = std::make_shared<FakeChange>(state, number);
        stack->add(last);
    }
    last->ending = UndoableChange::Ending::away;
    EXPECT_EQ(undone(), "It was not done.");
    EXPECT_EQ(undoText(), "Change 105") << "it can be tried again";
    last->ending = UndoableChange::Ending::changedSince;
    EXPECT_EQ(undone(), "It was not done.");
    EXPECT_EQ(undoText(), "Change 104") << "it is out of the way";
    int count = 0;
    while (stack->canUndo() && count < 200) {
        ASSERT_TRUE(await(stack->undo()).isDone);
        ++count;
    }
    EXPECT_EQ(count, 99);
    EXPECT_EQ(state, 5);
    EXPECT_EQ(await(stack->redo()).sentence, "Done again: Change 6");
    EXPECT_EQ(state, 6);
}

TEST_F(UndoStackTest, TakesBackWhatWasChangedInTheCatalog)
{
    CatalogEditor editor(account->client(), tracker());
    ProjectFields fields;
    fields.name = "Website";
    fields.color = "#2a7f62";
    const ProjectResponse before = *await(editor.createProject(fields));
    fields.name = "Site";
    const ProjectResponse renamed = *await(editor.updateProject(before.id, fields));
    stack->add(undoableChange(editor, tracker(), before, renamed));
    const ProjectResponse archived = *await(editor.archiveProject(before.id));
    stack->add(undoableChange(editor, tracker(), renamed, archived));
    EXPECT_EQ(undoText(), "Archived “Site”");

    const auto project = [&] { return *tracker().catalog().project(before.id); };
    EXPECT_EQ(undone(), "Undone: Archived “Site”");
    EXPECT_FALSE(project().isArchived);
    EXPECT_EQ(undone(), "Undone: Renamed “Website” to “Site”");
    EXPECT_EQ(project().name, "Website");
    EXPECT_TRUE(await(stack->redo()).isDone);
    EXPECT_TRUE(await(stack->redo()).isDone);
    EXPECT_EQ(project(), archived);

    const TagResponse tag = *await(editor.createTag("one"));
    stack->add(undoableChange(editor, tracker(), tag, *await(editor.renameTag(tag.id, "two"))));
    ASSERT_TRUE(await(account->client().updateTag(tracker().workspace().id, tag.id, {"theirs"})));
    EXPECT_EQ(undone(), "That cannot be undone: “two” was changed since then.");
    EXPECT_EQ(tracker().catalog().tag(tag.id)->name, "theirs");
    EXPECT_EQ(undoText(), "Archived “Site”");
}

TEST_F(UndoStackTest, TakesBackSettingsAndLeavesTheOthers)
{
    const AccountSettings before = *await(freshSettings(account.get()));
    AccountSettings wanted = before;
    wanted.preferences.weekStart = before.preferences.weekStart == 1 ? 0 : 1;
    wanted.profile.fullName = "Ada";
    const AccountSettings after = *await(saveSettings(account.get(), before, wanted));
    stack->add(undoableChange(*account, before, after));
    PreferencesRequest elsewhere;
    elsewhere.timeFormat = before.preferences.timeFormat == "24h" ? "12h" : "24h";
    ASSERT_TRUE(await(account->client().updatePreferences(elsewhere)));

    EXPECT_EQ(undone(), "Undone: Changed your settings");
    const AccountSettings now = *await(freshSettings(account.get()));
    EXPECT_EQ(now.preferences.weekStart, before.preferences.weekStart);
    EXPECT_EQ(now.profile, before.profile);
    EXPECT_EQ(now.preferences.timeFormat, elsewhere.timeFormat) << "another device's choice stays";
    EXPECT_TRUE(await(stack->redo()).isDone);
    EXPECT_EQ(account->me().fullName, "Ada");

    ASSERT_TRUE(await(account->client().updateProfile({"Grace", before.profile.timeZone})));
    EXPECT_EQ(undone(), "That cannot be undone: the settings were changed since then.");
    EXPECT_EQ(account->me().fullName, "Grace");
    EXPECT_FALSE(stack->canUndo());
}

} // namespace
} // namespace orvane
