// SPDX-License-Identifier: GPL-3.0-or-later
#include "SignIn/SchemeHandler.h"

namespace orvane {

// The application's bundle names the scheme, which is all that the system wants.
bool registerSchemeHandler(const std::string &)
{
    return true;
}

} // namespace orvane
