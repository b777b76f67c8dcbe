// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "CommandContext.h"
#include "OrvaneAPI/Schemas.h"

#include <string>

namespace orvane {

/// Signs in through a provider in the browser, at the server that the context has met.
Task<Result<Account *, CommandFailure>> signInWithBrowser(Context context, ServerResponse server,
                                                          std::string address, std::string provider);

} // namespace orvane
