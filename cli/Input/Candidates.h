// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Support/Result.h"

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace orvane {

/// Something that can be called by its name or its identifier.
struct Candidate {
    std::string id;
    std::string name;
    /// What tells it apart from others of its name ("of Website"); shown in messages alone.
    std::string context = {};
};

/// Which of the candidates a typed text means: the one with exactly this identifier, else this name (letter
/// case plays no part), else the only one whose name or identifier (of at least four characters) begins with
/// it. The error is a sentence that lists what could have been meant; `kind` names the sort of thing
/// ("project").
Result<std::size_t, std::string> choose(std::string_view kind, std::string_view typed,
                                        const std::vector<Candidate> &candidates);

/// The identifier that begins with what was typed, at any length. The message says how many there are.
struct NoSingleId {
    bool isAmbiguous = false;
    std::string message;
};
Result<std::string, NoSingleId> chooseById(std::string_view kind, std::string_view typed,
                                           const std::vector<std::string> &ids);

/// Beginnings of the identifiers, at least six characters each and all different.
std::vector<std::string> shortIds(const std::vector<std::string> &ids);

} // namespace orvane
