// SPDX-License-Identifier: GPL-3.0-or-later
// The window's model over the real server and its hub, while another device of the account changes things.
#include "AppModel/AppModel.h"
#include "Client/OrvaneClient.h"
#include "Http/NetworkThread.h"
#include "LocalServer/LocalAccount.h"
#include "Screens/Timer/TimerModel.h"
#include "Session/MemoryTokenStore.h"
#include "Time/AppClock.h"
#include "support/Await.h"
#include "support/CommandRun.h"

#include <QUuid>
#include <gtest/gtest.h>

namespace orvane {
namespace {

using namespace std::chrono_literals;
using testing::await;
using testing::eventually;

class LiveWindow : public ::testing::Test {
protected:
    void SetUp() override
    {
        app.open();
        ASSERT_TRUE(eventually([&] { return app.live() != nullptr && app.live()->watched(); }))
            << (app.live() ? app.live()->problem() : app.problem().toStdString());
        link = LocalServerLink::make(
            *network, {.folder = installation.serverFolder(), .program = builtProgram("orvane-server")});
        const auto hello = await(link->hello());
        ASSERT_TRUE(hello);
        AuthSessionOptions options{.server = hello->address,
                                   .tokenStore = std::make_shared<MemoryTokenStore>(),
                                   .deviceName = "another device",
                                   .reauthenticator = localReauthenticator(link, "Europe/Paris", true)};
        const auto transport = std::make_shared<LocalServerTransport>(link, network->transport(), true);
        otherDevice = std::make_shared<OrvaneClient>(
            network, AuthSession::make(*network, transport, std::move(options)), transport);
    }
    void TearDown() override { await(app.close()); }

    const TimeEntryResponse *shown(const std::string &description) const
    {
        const auto &entries = app.tracker()->entries();
        const auto found = std::ranges::find(entries, description, &TimeEntryResponse::description);
        return found == entries.end() ? nullptr : &*found;
    }
    bool appears(const std::string &description)
    {
        return eventually([&] { return shown(description) != nullptr; });
    }
    /// Nothing of it passes this computer's store.
    TimeEntryResponse addElsewhere(const std::string &description)
    {
        CreateTimeEntryRequest request;
        request.id = QUuid::createUuid().toString(QUuid::WithoutBraces).toStdString();
        request.description = description;
        request.start = AppClock::now() - 2min;
        request.stop = AppClock::now() - 1min;
        const auto added = await(otherDevice->createTimeEntry(app.tracker()->workspace().id, request));
        EXPECT_TRUE(added) << (added ? "" : describe(added.error()));
        return added.value_or(TimeEntryResponse{});
    }
    void renameElsewhere(const TimeEntryResponse &entry, const std::string &description)
    {
        TimeEntryRequest request;
        request.description = description;
        request.start = entry.start;
        request.stop = entry.stop;
        const auto renamed =
            await(otherDevice->updateTimeEntry(entry.workspaceId, entry.id, request, entry.version));
        EXPECT_TRUE(renamed) << (renamed ? "" : describe(renamed.error()));
    }

    TestInstallation installation;
    AppModel app{{.folder = installation.folder(), .serverProgram = builtProgram("orvane-server")}};
    TimerModel timer{app};
    std::shared_ptr<NetworkThread> network = std::make_shared<NetworkThread>();
    std::shared_ptr<LocalServerLink> link;
    std::shared_ptr<OrvaneClient> otherDevice;
};

TEST_F(LiveWindow, ShowsWhatAnotherDeviceDoesAndKeepsWhatIsTyped)
{
    const TimeEntryResponse entry = addElsewhere("Recorded elsewhere");
    ASSERT_TRUE(appears("Recorded elsewhere"));

    timer.field()->setText(QStringLiteral("Half a sen"));
    EntryEditor &editor = *timer.editor();
    ASSERT_TRUE(editor.open(QString::fromStdString(entry.id)));
    editor.setProperty("description", QStringLiteral("Recorded, and half typed"));
    renameElsewhere(*shown("Recorded elsewhere"), "Renamed elsewhere");
    ASSERT_TRUE(appears("Renamed elsewhere"));
    addElsewhere("Another one");
    ASSERT_TRUE(appears("Another one"));
    EXPECT_EQ(timer.field()->text(), QStringLiteral("Half a sen"));
    EXPECT_EQ(editor.entryId().toStdString(), entry.id);
    EXPECT_EQ(editor.property("description").toString(), QStringLiteral("Recorded, and half typed"));
    editor.save();
    EXPECT_TRUE(appears("Recorded, and half typed"));
}

TEST_F(LiveWindow, CatchesUpAfterTheServerWasKilled)
{
    ASSERT_TRUE(installation.killServer());
    ASSERT_TRUE(eventually([&] { return app.live()->state() == LiveSync::State::connecting; }));
    addElsewhere("While nobody watched");
    EXPECT_TRUE(appears("While nobody watched"));
    ASSERT_TRUE(eventually([&] { return app.live()->watched().has_value(); }));
    addElsewhere("Watched again");
    EXPECT_TRUE(appears("Watched again"));
}

} // namespace
} // namespace orvane
