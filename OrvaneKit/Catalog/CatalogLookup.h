// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Catalog/Catalog.h"
#include "Catalog/NameLookup.h"

#include <optional>
#include <string>
#include <string_view>
#include <vector>

/// What people call things of the catalog by. Main thread, like the catalog.
namespace orvane {

/// A project's context is its client.
std::vector<NamedItem> namedItems(const std::vector<ProjectResponse> &projects, const Catalog &catalog);
std::vector<NamedItem> namedItems(const std::vector<ClientResponse> &clients);
std::vector<NamedItem> namedItems(const std::vector<TagResponse> &tags);
/// A task's context is its project; one that is no longer active counts as archived.
std::vector<NamedItem> namedItems(const std::vector<TaskResponse> &tasks, const Catalog &catalog);

/// The tasks of every project, or of one.
std::vector<TaskResponse> tasksOf(const Catalog &catalog, const std::optional<std::string> &projectId = {});

// What an entry can be given by a typed name or identifier; each answers the identifier.

/// Only what is active can be chosen, but naming an archived project deserves a better answer than "unknown".
Result<std::string, NoSingleItem> lookUpProject(std::string_view typed, const Catalog &catalog);
/// Among the active tasks of one project, or of all.
Result<std::string, NoSingleItem> lookUpTask(std::string_view typed, const Catalog &catalog,
                                             const std::optional<std::string> &projectId = {});
Result<std::string, NoSingleItem> lookUpTag(std::string_view typed, const Catalog &catalog);

} // namespace orvane
