// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "support/CommandRun.h"

#include <QDir>
#include <QJsonDocument>
#include <algorithm>
#include <functional>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace orvane {

inline const QString idKey = QStringLiteral("id");

using Names = std::vector<std::string>;

/// Sorted.
inline Names keys(const QJsonObject &object)
{
    Names names;
    for (const QString &key : object.keys())
        names.push_back(key.toStdString());
    return names;
}

inline std::string compact(const QJsonValue &object)
{
    return QJsonDocument(object.toObject()).toJson(QJsonDocument::Compact).toStdString();
}

inline std::string text(const QJsonValue &value)
{
    return value.toString().toStdString();
}

/// The real command against the real server that it starts by itself, without bus and display.
class Command : public ::testing::Test {
protected:
    /// Runs with --json and expects exit status 0.
    QJsonObject done(const Arguments &arguments) const
    {
        const CommandRun run = installation.json(arguments);
        EXPECT_EQ(run.exitStatus, 0) << arguments.front() << ": " << run.all();
        EXPECT_EQ(std::ranges::count(run.output, '\n'), 1) << "one value on one line";
        EXPECT_EQ(run.errors, "") << "and nothing beside it";
        return run.object();
    }
    QJsonArray listed(const Arguments &arguments) const
    {
        const CommandRun run = installation.json(arguments);
        EXPECT_EQ(run.exitStatus, 0) << run.all();
        return run.array();
    }
    /// Runs with --json, expects this exit status and answers the error.
    QJsonObject failed(int exitStatus, const Arguments &arguments) const
    {
        const CommandRun run = installation.json(arguments);
        EXPECT_EQ(run.exitStatus, exitStatus) << run.all();
        EXPECT_EQ(run.errors, "");
        return run.object()[u"error"].toObject();
    }
    QJsonObject entry(const Arguments &arguments) const { return done(arguments)[u"entry"].toObject(); }
    std::string id(const QJsonObject &object) const { return text(object[idKey]); }
    void setNow(const char *instant) { installation.environment["ORVANE_NOW"] = instant; }

    /// Does it with another local store of the same account, as a second device has one.
    void onAnotherDevice(const std::function<void()> &work) const
    {
        const QDir folder(QString::fromStdString(installation.folder()));
        const QString aside = folder.filePath(QStringLiteral("aside"));
        ASSERT_TRUE(folder.mkpath(aside));
        const QStringList stores = folder.entryList(QStringList(QStringLiteral("*.sqlite*")), QDir::Files);
        ASSERT_FALSE(stores.isEmpty());
        for (const QString &name : stores)
            ASSERT_TRUE(QFile::rename(folder.filePath(name), aside + QLatin1Char('/') + name));
        work();
        for (const QString &name : folder.entryList(QStringList(QStringLiteral("*.sqlite*")), QDir::Files))
            ASSERT_TRUE(QFile::remove(folder.filePath(name)));
        for (const QString &name : stores)
            ASSERT_TRUE(QFile::rename(aside + QLatin1Char('/') + name, folder.filePath(name)));
    }

    TestInstallation installation;
};

} // namespace orvane
