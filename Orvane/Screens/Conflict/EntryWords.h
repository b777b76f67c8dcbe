// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Catalog/Catalog.h"
#include "Catalog/EntryRequest.h"
#include "Time/UserTime.h"

#include <QString>

namespace orvane {

/// What an entry says, field by field, in words. A value for the moment: it keeps references to what it is
/// made with, on whose thread it is used.
class EntryWords {
public:
    EntryWords(const Catalog &catalog, const UserTime &time) : m_catalog(&catalog), m_time(&time) {}

    static QString description(const EntryRequest &request);
    /// “…”, or "An entry without a description" at the beginning of a sentence.
    static QString quoted(const std::string &description);
    QString project(const std::optional<std::string> &id) const;
    QString task(const std::optional<std::string> &id) const;
    /// Empty without one.
    QString projectColor(const std::optional<std::string> &id) const;
    /// "Website › Docs", or of a split entry "Atlas API 60%, Website 40%".
    QString place(const EntryRequest &request) const;
    QString tags(const EntryRequest &request) const;
    static QString billing(const EntryRequest &request);
    /// With its day where that is wanted.
    QString clock(Instant at, bool withDay) const;
    /// With its day when that is not the start's.
    QString stop(const EntryRequest &request) const;
    /// Until now while it runs.
    static QString length(const EntryRequest &request);
    /// "13:15 – 14:20".
    QString times(const EntryRequest &request) const;

private:
    const Catalog *m_catalog;
    const UserTime *m_time;
};

} // namespace orvane
