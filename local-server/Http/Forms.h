// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "OrvaneAPI/RequestReader.h"

#include <initializer_list>
#include <optional>
#include <string>
#include <string_view>

/// What browsers' forms send. Pure functions, for any thread.
namespace orvane::server {

/// The decoded pairs of a form or of a form's query, in which a "+" is a space.
std::optional<QueryPairs> readForm(std::string_view text);
/// Nothing where the request brings no form, or one that is badly encoded.
std::optional<QueryPairs> formIn(const RequestParts &parts);
/// Empty where there is none, the first where there are several.
std::string fieldOf(const QueryPairs &form, std::string_view name);
/// Whether one of the fields stands there twice, so that readers may differ about it.
bool hasTwice(const QueryPairs &form, std::initializer_list<std::string_view> names);

} // namespace orvane::server
