// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Catalog/Catalog.h"
#include "Catalog/EntryDetails.h"
#include "Catalog/EntryRequest.h"
#include "Input/Candidates.h"
#include "Input/MomentText.h"
#include "Output/CommandFailure.h"

#include <optional>
#include <string>
#include <vector>

namespace CLI {
class App;
}

namespace orvane {

/// What the options of `start`, `add` and `edit` say about an entry; what is not named is absent.
struct EntryOptions {
    std::optional<std::string> sentence;
    std::optional<std::string> description;
    std::optional<std::string> start;
    std::optional<std::string> stop;
    /// Names or identifiers; an empty text takes away what the entry had.
    std::optional<std::string> project;
    std::optional<std::string> task;
    std::optional<std::vector<std::string>> tags;
    std::optional<bool> billable;

    bool isEmpty() const;
};

/// Adds the options to a command; `options` outlives the tree's use.
void addEntryOptions(CLI::App *command, EntryOptions &options);

/// `details` with what the options say put in, all but the sentence. A task brings its project along; another
/// project takes away a task of the one before and the shares of a split, and brings its own choice of
/// billable unless that is named.
Result<EntryDetails, CommandFailure> withOptions(EntryDetails details, const EntryOptions &options,
                                                 const Catalog &catalog);

/// As `withOptions`, what belongs to a project included; for who has the identifiers already.
void takeProject(EntryDetails &details, std::optional<std::string> projectId, const Catalog &catalog,
                 bool takesBillable);

/// The named moments; a text that is no time is wrong usage.
struct NamedTimes {
    std::optional<TypedMoment> start;
    std::optional<TypedMoment> stop;
};
Result<NamedTimes, CommandFailure> namedTimes(const EntryOptions &options, const UserTime &time);

std::vector<Candidate> candidates(const std::vector<ProjectResponse> &projects, const Catalog &catalog);
std::vector<Candidate> candidates(const std::vector<ClientResponse> &clients);
std::vector<Candidate> candidates(const std::vector<TagResponse> &tags);
/// With the project's name as context.
std::vector<Candidate> candidates(const std::vector<TaskResponse> &tasks, const Catalog &catalog);
/// The tasks of every project, or of one.
std::vector<TaskResponse> tasksOf(const Catalog &catalog, const std::optional<std::string> &projectId = {});

} // namespace orvane
