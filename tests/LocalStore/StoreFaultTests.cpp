// SPDX-License-Identifier: GPL-3.0-or-later
#include "StoreFixture.h"

#include <filesystem>
#include <set>
#include <sys/prctl.h>
#include <sys/resource.h>
#include <unistd.h>

namespace orvane {
namespace {

using std::chrono::milliseconds;
using Kind = StoreError::Kind;

const StoreOptions impatient{.busyTimeout = milliseconds{50}};

class StoreFaultTest : public StoreTest {
protected:
    void fillStore(int count)
    {
        const auto store = openStore();
        for (int i = 0; i < count; ++i)
            ASSERT_TRUE(wait(store->enqueue(sampleChange(std::to_string(i)))));
    }

    /// Opening fails as `kind`, in words, and leaves every byte where it was.
    void expectRefused(Kind kind)
    {
        const std::string before = bytesOf(m_path);
        const StoreError error = openError(m_path, impatient);
        EXPECT_EQ(error.kind, kind) << error.message;
        EXPECT_NE(describe(error).find(m_path), std::string::npos) << describe(error);
        EXPECT_NE(describe(error).find(error.message), std::string::npos);
        EXPECT_EQ(bytesOf(m_path), before);
    }
};

/// A user other than root for a while: root may write to a file whatever its mode says.
class OrdinaryUser {
public:
    OrdinaryUser() : m_wasRoot(::geteuid() == 0)
    {
        if (m_wasRoot)
            EXPECT_EQ(::seteuid(65534), 0);
    }
    OrdinaryUser(const OrdinaryUser &) = delete;
    OrdinaryUser &operator=(const OrdinaryUser &) = delete;
    ~OrdinaryUser()
    {
        if (m_wasRoot)
            EXPECT_EQ(::seteuid(0), 0);
        // The leak checker looks into its own process, which a change of user forbids.
        ::prctl(PR_SET_DUMPABLE, 1);
    }

private:
    bool m_wasRoot;
};

TEST_F(StoreFaultTest, refusesWhatIsNotADatabase)
{
    writeBytes(m_path, "These are my notes; please keep them.\n");
    expectRefused(Kind::notADatabase);
    writeBytes(m_path, std::string(100'000, '\0'));
    expectRefused(Kind::notADatabase);

    m_path = m_folder.path().toStdString();
    EXPECT_EQ(openError(m_path).kind, Kind::cannotOpen);
    EXPECT_EQ(openError("").kind, Kind::cannotOpen);
    EXPECT_EQ(openError("/dev/null/Orvane/store.sqlite").kind, Kind::cannotOpen);
}

TEST_F(StoreFaultTest, refusesATruncatedFile)
{
    fillStore(200);
    const std::string whole = bytesOf(m_path);
    ASSERT_GT(whole.size(), 20'000U);
    for (const std::size_t size : {std::size_t{10}, std::size_t{99}, std::size_t{4096}, whole.size() / 2}) {
        SCOPED_TRACE(size);
        writeBytes(m_path, std::string_view(whole).substr(0, size));
        expectRefused(Kind::notADatabase);
    }
    writeBytes(m_path, whole);
    EXPECT_EQ(wait(openStore()->pending()).size(), 200U);
}

TEST_F(StoreFaultTest, keepsTheLogOfAnEmptiedFile)
{
    const auto store = openStore();
    ASSERT_TRUE(wait(store->enqueue(sampleChange("a"))));
    const std::string copy = m_folder.filePath(QStringLiteral("copy.sqlite")).toStdString();
    const std::string log = bytesOf(m_path + "-wal");
    writeBytes(copy, "");
    writeBytes(copy + "-wal", log);
    m_path = copy;
    expectRefused(Kind::notADatabase);
    EXPECT_EQ(bytesOf(copy + "-wal"), log);
}

TEST_F(StoreFaultTest, refusesAFileThatCannotBeWritten)
{
    fillStore(1);
    std::filesystem::permissions(m_folder.path().toStdString(), std::filesystem::perms::all);
    std::filesystem::permissions(m_path, std::filesystem::perms(0444));
    {
        const OrdinaryUser user;
        expectRefused(Kind::readOnly);
    }
    std::filesystem::permissions(m_folder.path().toStdString(), std::filesystem::perms(0755));
    {
        const OrdinaryUser user;
        EXPECT_EQ(openError(m_folder.filePath(QStringLiteral("new.sqlite")).toStdString()).kind,
                  Kind::cannotOpen);
    }
    std::filesystem::permissions(m_path, std::filesystem::perms(0600));
    EXPECT_EQ(wait(openStore()->pending()).size(), 1U);
}

TEST(StoreChild, DISABLED_holdsTheFile)
{
    RawDatabase raw(Child::storePath());
    raw.execute("PRAGMA locking_mode = EXCLUSIVE; UPDATE outbox SET created_at = 1");
    Child::say("held");
    Child::waitForParent();
}

TEST_F(StoreFaultTest, saysThatAnotherProcessHoldsTheFile)
{
    fillStore(2);
    Child child("StoreChild.DISABLED_holdsTheFile", m_path);
    ASSERT_TRUE(child.line("held"));
    expectRefused(Kind::locked);
    child.release();
    ASSERT_EQ(child.exitCode(), 0);
    EXPECT_EQ(wait(openStore()->pending()).size(), 2U);
}

TEST_F(StoreFaultTest, refusesAChangeWhileAnotherWriterIsBusy)
{
    const auto store = openStore(impatient);
    ASSERT_TRUE(wait(store->enqueue(sampleChange("a"))));
    RawDatabase raw(m_path);
    raw.execute("BEGIN IMMEDIATE");
    const auto refused = wait(store->enqueue(sampleChange("b")));
    ASSERT_FALSE(refused);
    EXPECT_EQ(refused.error().kind, Kind::locked);
    EXPECT_EQ(refused.error().message, "database is locked");
    EXPECT_FALSE(wait(store->replace(1, sampleChange("c"))));
    EXPECT_EQ(wait(store->pending()), (std::vector<PendingChange>{{1, sampleChange("a")}}));
    raw.execute("COMMIT");
    EXPECT_EQ(wait(store->enqueue(sampleChange("b"))), 2);
}

TEST(StoreChild, DISABLED_fillsTheDisk)
{
    const auto store = QCoro::waitFor(LocalStore::open(Child::storePath())).value();
    const rlimit limit{100'000, 100'000};
    ASSERT_EQ(::setrlimit(RLIMIT_FSIZE, &limit), 0);
    int accepted = 0;
    for (;;) {
        const auto seq = QCoro::waitFor(store->enqueue(sampleChange(std::to_string(accepted))));
        if (!seq) {
            EXPECT_EQ(seq.error().kind, Kind::full) << seq.error().message;
            EXPECT_NE(describe(seq.error()).find("is full"), std::string::npos);
            break;
        }
        ASSERT_LT(++accepted, 5000);
    }
    // What is there can still be read by the process that met the limit.
    EXPECT_EQ(QCoro::waitFor(store->pending()).size(), static_cast<std::size_t>(accepted) + 3);
    Child::say("accepted " + std::to_string(accepted));
}

TEST_F(StoreFaultTest, refusesAChangeThatFindsNoRoom)
{
    fillStore(3);
    Child child("StoreChild.DISABLED_fillsTheDisk", m_path);
    const auto accepted = child.line("accepted ");
    ASSERT_EQ(child.exitCode(), 0);
    ASSERT_TRUE(accepted);
    const auto store = openStore();
    EXPECT_EQ(wait(store->pending()).size(), std::stoul(*accepted) + 3);
    EXPECT_TRUE(wait(store->enqueue(sampleChange("after"))));
}

TEST(StoreChild, DISABLED_enqueuesMany)
{
    const auto store = QCoro::waitFor(LocalStore::open(Child::storePath())).value();
    for (int i = 0; i < 300; ++i)
        Child::say("kept " +
                   std::to_string(QCoro::waitFor(store->enqueue(sampleChange(std::to_string(i)))).value()));
}

TEST_F(StoreFaultTest, keepsEveryAcknowledgedChangeOfAKilledProcess)
{
    std::set<std::int64_t> acknowledged;
    for (const int killAfter : {1, 17, 120, 250}) {
        Child child("StoreChild.DISABLED_enqueuesMany", m_path);
        for (int i = 0;; ++i) {
            const auto seq = child.line("kept ");
            if (!seq)
                break;
            EXPECT_TRUE(acknowledged.insert(std::stoll(*seq)).second) << *seq << " was given twice";
            if (i == killAfter)
                child.kill();
        }
        child.exitCode();
        const std::vector<PendingChange> changes = wait(openStore()->pending());
        std::set<std::int64_t> kept;
        for (const PendingChange &change : changes)
            kept.insert(change.seq);
        for (const std::int64_t seq : acknowledged)
            EXPECT_TRUE(kept.contains(seq)) << seq;
        EXPECT_EQ(wait(openStore()->query("PRAGMA integrity_check", {})).value()[0][0],
                  LocalStore::Value("ok"));
    }
    EXPECT_GE(acknowledged.size(), 388U);
}

TEST(StoreChild, DISABLED_opensAndEnqueues)
{
    Child::say("ready");
    Child::waitForParent();
    const LocalStore::Opened store = QCoro::waitFor(LocalStore::open(Child::storePath()));
    ASSERT_TRUE(store) << describe(store.error());
    EXPECT_TRUE(QCoro::waitFor((*store)->enqueue(sampleChange(std::to_string(::getpid())))));
}

TEST_F(StoreFaultTest, processesThatCreateTheFileTogetherShareIt)
{
    for (int round = 0; round < 5; ++round) {
        m_path = m_folder.filePath(QStringLiteral("%1.sqlite").arg(round)).toStdString();
        std::vector<std::unique_ptr<Child>> children;
        for (int i = 0; i < 4; ++i)
            children.push_back(std::make_unique<Child>("StoreChild.DISABLED_opensAndEnqueues", m_path));
        for (const auto &child : children)
            ASSERT_TRUE(child->line("ready"));
        for (const auto &child : children)
            child->release();
        for (const auto &child : children)
            EXPECT_EQ(child->exitCode(), 0);
        EXPECT_EQ(wait(openStore()->pending()).size(), 4U);
    }
}

} // namespace
} // namespace orvane
