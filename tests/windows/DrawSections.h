// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

namespace orvane::testing {

class Album;

/// The sections beside the timer's: projects, clients and tags, and the pages of settings.
void drawSections(Album &album);

} // namespace orvane::testing
