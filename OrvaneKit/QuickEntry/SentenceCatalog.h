// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "OrvaneAPI/Schemas.h"

#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace orvane {

/// The names that a sentence can mention, made ready once for many sentences. It keeps what it needs of the
/// lists; make it anew when they change. A value that is cheap to copy; any thread.
///
/// Archived projects with their tasks, tasks that are not active and archived clients are no candidates.
class SentenceCatalog {
public:
    enum class Kind { project, client, task };

    /// What an "@" mention means.
    struct Meaning {
        Kind kind = Kind::project;
        std::string id;
        std::string projectID; ///< of a task, else empty
    };

    /// A project or a task found in it.
    struct Place {
        std::string projectID;
        std::optional<std::string> taskID;
    };

    SentenceCatalog() : SentenceCatalog({}, {}, {}) {}
    SentenceCatalog(const std::vector<ProjectResponse> &projects, const std::vector<ClientResponse> &clients,
                    const std::vector<TagResponse> &tags);

    /// Whether what parts the words of a name may be typed otherwise, or left out.
    enum class Spelling { free, literal };

    /// What these words mean, by the rules of EntrySentence; nothing when nothing matches well, or several
    /// things equally. A known client tells projects of one name apart.
    std::optional<Meaning> meaning(std::string_view name, const std::optional<std::string> &clientID,
                                   Spelling spelling = Spelling::free) const;
    /// The task of this project alone.
    std::optional<std::string> task(std::string_view name, const std::string &projectID) const;
    /// A task in a project, or a project of a client.
    std::optional<Place> place(std::string_view outer, std::string_view inner) const;
    std::optional<std::string> tag(std::string_view name) const;
    /// Whether something is called just so behind this sign, but for letter case and accents; of one word
    /// also where it leaves out what parts the words of the name.
    bool isWholeName(char sign, std::string_view name) const;
    /// Whether several things match these words equally well, behind this sign.
    bool isAmbiguous(char sign, std::string_view name) const;

private:
    struct Lists;
    std::shared_ptr<const Lists> m_lists; ///< never null
};

} // namespace orvane
