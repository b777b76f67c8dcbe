// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <string>
#include <string_view>

/// What the server does with texts that people typed.
namespace orvane::server {

/// Without white space at either end.
std::string trimmed(std::string_view text);
/// A name in the form in which two are compared: without regard to case, to white space at the ends and to
/// how accents are encoded.
std::string nameKey(std::string_view name);
/// Whether a text holds a character that no one types: a control character other than tab and line end.
bool hasControlCharacter(std::string_view text);
/// Why a name cannot be one (blank, or with control characters), for people; empty when it can.
std::string nameFault(std::string_view name);
/// Something before and after one "@", all of it characters that can be seen.
bool isEmailAddress(std::string_view text);

} // namespace orvane::server
