// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "OrvaneAPI/HttpMessage.h"
#include "Requests/Call.h"

#include <functional>
#include <memory>
#include <optional>
#include <type_traits>
#include <variant>

namespace orvane::server {

struct Aside;
/// What a handler comes to: the answer, or work to be done first.
using Step = std::variant<HttpResponse, Aside>;

/// Work that takes long and touches nothing of the server's (a password's hash), so that others are answered
/// meanwhile; and what decides afterwards, in a transaction of its own. The world may have changed by then.
struct Aside {
    /// On any thread.
    std::function<void()> work;
    /// Inside a transaction, once `work` is done.
    std::function<Step(Call &)> finish;
};

/// `finish` takes the call and what `work` came to.
template <class Work, class Finish>
Aside aside(Work work, Finish finish)
{
    const auto outcome = std::make_shared<std::optional<std::invoke_result_t<Work>>>();
    return {[outcome, work = std::move(work)] { *outcome = work(); },
            [outcome, finish = std::move(finish)](Call &call) -> Step { return finish(call, **outcome); }};
}

} // namespace orvane::server
