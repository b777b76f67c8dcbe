// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Client/CallError.h"
#include "Support/Result.h"

#include <utility>

/// Picking the success that a caller wants out of everything that an operation may answer.
namespace orvane {

template <class T>
using CallResult = Result<T, CallError>;

inline CallError unwantedAnswer(std::string_view operation)
{
    return DecodingError{std::string(operation) + ": not the success that was asked for"};
}

/// The body of whichever of the wanted cases it is.
template <class T, class... Wanted, class Output>
CallResult<T> wantedBody(CallResult<Output> answer, std::string_view operation)
{
    if (!answer)
        return failure(std::move(answer.error()));
    CallResult<T> result = failure(unwantedAnswer(operation));
    const auto take = [&result]<class Case>(Case *found) {
        if (found)
            result = std::move(found->body);
    };
    (take(std::get_if<Wanted>(&*answer)), ...);
    return result;
}

/// For successes without a body.
template <class Wanted, class Output>
CallResult<void> wantedCase(CallResult<Output> answer, std::string_view operation)
{
    if (!answer)
        return failure(std::move(answer.error()));
    if (!std::holds_alternative<Wanted>(*answer))
        return failure(unwantedAnswer(operation));
    return {};
}

} // namespace orvane
