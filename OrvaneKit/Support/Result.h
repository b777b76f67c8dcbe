// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <tl/expected.hpp>

namespace orvane {

/// What a fallible call returns: the value, or the error as a value. (`std::expected` of libstdc++ 12 does
/// not compile inside coroutine tasks.)
template <class T, class E>
using Result = tl::expected<T, E>;

template <class E>
tl::unexpected<std::decay_t<E>> failure(E &&error)
{
    return tl::unexpected<std::decay_t<E>>(std::forward<E>(error));
}

} // namespace orvane
