// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "AppModel/AppModel.h"
#include "support/Await.h"
#include "support/CommandRun.h"
#include "support/MidweekClock.h"

#include <gtest/gtest.h>

namespace orvane::testing {

/// The application without its windows, over a server of its own; each test begins with all loaded and saved.
class OpenedApp : public ::testing::Test {
    MidweekClock midweek;

protected:
    void SetUp() override
    {
        app.open();
        ASSERT_TRUE(eventually([this] {
            return app.tracker() != nullptr && app.sync()->kind() == SyncStatus::Kind::Saved;
        })) << app.problem().toStdString();
        ASSERT_TRUE(eventually([this] { return tracker().state() == LoadState::loaded; }));
    }
    void TearDown() override { await(app.close()); }

    Tracker &tracker() const { return *app.tracker(); }

    TestInstallation installation;
    AppModel app{{.folder = installation.folder(), .serverProgram = builtProgram("orvane-server")}};
};

} // namespace orvane::testing
