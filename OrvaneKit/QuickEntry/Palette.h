// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "OrvaneAPI/Schemas.h"
#include "QuickEntry/PaletteMatch.h"
#include "QuickEntry/PaletteUsage.h"

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace orvane {

/// Something that the palette offers. A value; any thread.
struct PaletteItem {
    enum class Kind { project, task, client, tag, recentEntry };

    Kind kind = Kind::project;
    std::string id; ///< of a recent entry, the entry that is the last of its like
    std::string name;
    /// What else it is known by: a project by its client's name; a task by its project's and that one's
    /// client's; a recent entry by those of its task, its project, the client and its tags. Clients and tags
    /// have none.
    std::vector<std::string> alternatives;
    /// What PaletteUsage remembers it by: the kind and the identifier ("project:..."). A recent entry has a
    /// number made of what it says instead, since the next one of its like has another identifier.
    std::string key;

    bool operator==(const PaletteItem &) const = default;

    /// The key of a thing of the catalog; a recent entry is none.
    static std::string keyOf(Kind kind, const std::string &id);

    /// All projects, then tasks, clients and tags, in the order of the lists. Archived projects with their
    /// tasks, tasks that are not active and archived clients are left out.
    static std::vector<PaletteItem> ofCatalog(const std::vector<ProjectResponse> &projects,
                                              const std::vector<ClientResponse> &clients,
                                              const std::vector<TagResponse> &tags);

    /// What was worked on lately, in the order of the list (newest first, as the store gives it): of entries
    /// with the same description, project, task, tags and billable mark only the first. Without a description
    /// there is nothing to find, and none is made.
    static std::vector<PaletteItem> ofRecent(const std::vector<TimeEntryResponse> &entries,
                                             const std::vector<ProjectResponse> &projects,
                                             const std::vector<ClientResponse> &clients,
                                             const std::vector<TagResponse> &tags);
};

/// What decides the place of a row in the palette.
struct PaletteStanding {
    double score = 0;         ///< of its match, 0 to 100
    double weight = 0;        ///< of its use, 0 to 1
    std::size_t nameRank = 0; ///< its place among all items by name

    bool operator==(const PaletteStanding &) const = default;
};

/// The order of the palette: the better match comes first; of equal matches what is used more; of equally
/// used ones (most are used never) the name decides, as people order names. Thus a rare exact hit beats a
/// favourite that only contains what was typed, and a query without words lists the favourites first.
bool comesBefore(const PaletteStanding &a, const PaletteStanding &b);

/// Items made ready to be searched at every key press. Made anew when the lists change. A value that is cheap
/// to copy; any thread.
class Palette {
public:
    struct Found {
        std::size_t item = 0; ///< its number in items()
        PaletteMatch::Match match;
        PaletteStanding standing;

        bool operator==(const Found &) const = default;
    };

    explicit Palette(std::vector<PaletteItem> items = {});

    const std::vector<PaletteItem> &items() const;

    /// The items that answer the query, in the order of `comesBefore` and otherwise in that of items(); at
    /// most `limit`.
    std::vector<Found> find(std::string_view query, const PaletteUsage &usage, Instant now,
                            std::size_t limit = SIZE_MAX) const;

private:
    struct Prepared;
    std::shared_ptr<const Prepared> m_prepared; ///< never null
};

} // namespace orvane
