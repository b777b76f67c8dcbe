// SPDX-License-Identifier: GPL-3.0-or-later
#include "Suggestions/SplitMath.h"

#include "Support/Require.h"

#include <algorithm>
#include <numeric>

namespace orvane::SplitMath {

namespace {

using Numbers = std::vector<std::int64_t>;

std::int64_t product(std::int64_t one, std::int64_t other)
{
    std::int64_t result = 0;
    ORVANE_REQUIRE(!__builtin_mul_overflow(one, other, &result), "a share leaves 64 bits");
    return result;
}

std::int64_t sum(const Numbers &numbers)
{
    std::int64_t result = 0;
    for (const std::int64_t number : numbers)
        ORVANE_REQUIRE(!__builtin_add_overflow(result, number, &result), "a sum of shares leaves 64 bits");
    return result;
}

std::int64_t spareOf(std::int64_t total, std::int64_t minimum, std::size_t count)
{
    const std::int64_t reserved = product(minimum, static_cast<std::int64_t>(count));
    std::int64_t spare = 0;
    ORVANE_REQUIRE(!__builtin_sub_overflow(total, reserved, &spare), "a total leaves 64 bits");
    return spare;
}

Numbers counted(std::span<const std::int64_t> weights)
{
    Numbers result(weights.begin(), weights.end());
    for (std::int64_t &weight : result)
        weight = std::max<std::int64_t>(weight, 0);
    if (std::ranges::all_of(result, [](std::int64_t weight) { return weight == 0; }))
        std::ranges::fill(result, 1);
    return result;
}

} // namespace

std::vector<std::int64_t> apportion(std::span<const std::int64_t> weights, std::int64_t total,
                                    std::int64_t minimum)
{
    if (weights.empty())
        return {};
    const std::int64_t spare = spareOf(total, minimum, weights.size());
    const Numbers counts = counted(weights);
    const std::int64_t whole = sum(counts);
    Numbers shares;
    Numbers remainders;
    for (const std::int64_t weight : counts) {
        const std::int64_t scaled = product(weight, spare);
        shares.push_back(scaled / whole);
        remainders.push_back(scaled % whole);
    }
    std::int64_t leftover = spare - sum(shares);

    std::vector<std::size_t> order(shares.size());
    std::iota(order.begin(), order.end(), std::size_t{0});
    std::ranges::sort(order, [&](std::size_t one, std::size_t other) {
        return remainders[one] != remainders[other] ? remainders[one] > remainders[other] : one < other;
    });
    for (const std::size_t i : order) {
        if (leftover-- > 0)
            ++shares[i];
        shares[i] += minimum;
    }
    return shares;
}

} // namespace orvane::SplitMath
