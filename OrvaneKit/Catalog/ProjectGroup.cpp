// SPDX-License-Identifier: GPL-3.0-or-later
#include "Catalog/ProjectGroup.h"

#include "Catalog/NameOrder.h"

#include <algorithm>
#include <compare>
#include <tuple>
#include <unordered_map>

namespace orvane {

namespace {

/// Where a client or a project stands; the identifier decides between equal names.
struct Place {
    std::string name;
    std::string_view id;

    auto operator<=>(const Place &) const = default;
};

struct PlacedProject {
    const ClientResponse *client = nullptr;
    Place clientPlace; ///< empty without a client, which comes before every name
    Place place;
    const ProjectResponse *project = nullptr;

    auto order() const { return std::tie(clientPlace, place); }
};

} // namespace

std::vector<ProjectGroup> ProjectGroup::of(const std::vector<ProjectResponse> &projects,
                                           const std::vector<ClientResponse> &clients)
{
    struct PlacedClient {
        const ClientResponse *client;
        Place place;
    };
    std::unordered_map<std::string_view, PlacedClient> clientsById;
    for (const ClientResponse &client : clients)
        clientsById.try_emplace(client.id, &client, Place{nameOrderKey(client.name), client.id});

    std::vector<PlacedProject> placed;
    for (const ProjectResponse &project : projects) {
        if (project.isArchived)
            continue;
        PlacedProject item;
        item.place = {nameOrderKey(project.name), project.id};
        item.project = &project;
        const auto found = project.clientId ? clientsById.find(*project.clientId) : clientsById.end();
        if (found != clientsById.end()) {
            item.client = found->second.client;
            item.clientPlace = found->second.place;
        }
        placed.push_back(std::move(item));
    }
    std::ranges::sort(placed, {}, &PlacedProject::order);

    std::vector<ProjectGroup> groups;
    const ClientResponse *last = nullptr;
    for (const PlacedProject &item : placed) {
        if (groups.empty() || item.client != last)
            groups.push_back({item.client != nullptr ? std::optional{*item.client} : std::nullopt, {}});
        last = item.client;
        groups.back().projects.push_back(*item.project);
    }
    return groups;
}

} // namespace orvane
