// SPDX-License-Identifier: GPL-3.0-or-later
#include "support/Memory.h"

#if defined(__has_feature) && __has_feature(address_sanitizer)
#include <sanitizer/allocator_interface.h>
#elif defined(__APPLE__)
#include <malloc/malloc.h>
#else
#include <malloc.h>
#endif

namespace orvane::testing {

std::size_t heapInUse()
{
#if defined(__has_feature) && __has_feature(address_sanitizer)
    return __sanitizer_get_current_allocated_bytes();
#elif defined(__APPLE__)
    malloc_statistics_t statistics{};
    malloc_zone_statistics(nullptr, &statistics);
    return statistics.size_in_use;
#else
    return mallinfo2().uordblks;
#endif
}

} // namespace orvane::testing
