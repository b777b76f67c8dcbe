// SPDX-License-Identifier: GPL-3.0-or-later
#include "Session/KernelKeyring.h"

namespace orvane {

std::shared_ptr<TokenStore> makeKernelKeyring(const std::string &)
{
    return {};
}

} // namespace orvane
