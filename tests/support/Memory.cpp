// SPDX-License-Identifier: GPL-3.0-or-later
#include "support/Memory.h"

#if defined(__has_feature) && __has_feature(address_sanitizer)
#include <sanitizer/allocator_interface.h>
#elif defined(__APPLE__)
#include <mach/mach.h>
#include <malloc/malloc.h>
#else
#include <fstream>
#include <malloc.h>
#include <unistd.h>
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

std::optional<std::size_t> residentMemory()
{
#if defined(__has_feature) && __has_feature(address_sanitizer)
    return std::nullopt;
#elif defined(__APPLE__)
    mach_task_basic_info info{};
    mach_msg_type_number_t count = MACH_TASK_BASIC_INFO_COUNT;
    if (task_info(mach_task_self(), MACH_TASK_BASIC_INFO, reinterpret_cast<task_info_t>(&info), &count) !=
        KERN_SUCCESS)
        return std::nullopt;
    return info.resident_size;
#else
    std::ifstream pages("/proc/self/statm");
    std::size_t all = 0;
    std::size_t resident = 0;
    if (!(pages >> all >> resident))
        return std::nullopt;
    return resident * static_cast<std::size_t>(::sysconf(_SC_PAGESIZE));
#endif
}

} // namespace orvane::testing
