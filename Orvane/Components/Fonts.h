// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

namespace orvane {

/// Makes the typeface of the window known and the application's own. Main thread, after QGuiApplication is
/// made and before the first QML is loaded. That it cannot be read is a fault of the build and aborts.
void loadFonts();

} // namespace orvane
