// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Activity/ActivityDay.h"

#include <cstddef>
#include <map>
#include <span>
#include <string>
#include <vector>

namespace orvane {

/// What one repository had of some days, for a picture's row or column. A value; any thread.
struct RepositoryRow {
    SharedRepository repository;
    std::string name; ///< as the disk has it; with the folder above where two have the same
    std::vector<InstantInterval> attention;
    std::vector<InstantInterval> runs;
    double attended = 0;   ///< seconds
    double worked = 0;     ///< seconds
    std::size_t place = 0; ///< among the rows; gives the colour

    /// The repositories of these days: those attended to longest first, then those worked in longest, then by
    /// key.
    static std::vector<RepositoryRow> of(std::span<const ActivityDay> days);
};

/// The names that the rows give to their repositories. A value; any thread.
class RepositoryNames {
public:
    explicit RepositoryNames(std::span<const RepositoryRow> rows);

    /// The repository must be one of the rows'.
    const std::string &of(const ActivityRepository &repository) const { return m_names.at(repository.key); }

private:
    std::map<std::string, std::string> m_names;
};

} // namespace orvane
