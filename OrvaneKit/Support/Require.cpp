// SPDX-License-Identifier: GPL-3.0-or-later
#include "Support/Require.h"

#include <cstdio>
#include <cstdlib>

namespace orvane {

void stopOnProgrammingError(const char *message, std::source_location where)
{
    std::fprintf(stderr, "orvane: %s:%u: %s\n", where.file_name(), static_cast<unsigned>(where.line()),
                 message);
    std::abort();
}

} // namespace orvane
