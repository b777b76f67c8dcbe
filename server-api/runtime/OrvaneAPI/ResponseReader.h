// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "OrvaneAPI/HttpMessage.h"
#include "OrvaneAPI/Responses.h"
#include "Support/Json.h"
#include "Support/Result.h"

#include <optional>
#include <utility>

/// The steps of reading an answer, which the generated operations choose from by status.
namespace orvane {

/// "shares[0].percent: is not a whole number".
DecodingError decodingError(const JsonError &error);
std::optional<DecodingError> decodingError(const std::optional<JsonError> &error);

template <class Output>
Result<Output, DecodingError> undocumented(const HttpResponse &response)
{
    return Output(Undocumented{response.status, response.body});
}

template <class Output, class Case>
Result<Output, DecodingError> bodyAnswer(const HttpResponse &response)
{
    using Body = decltype(Case::body);
    auto body = decodeJson<Body>(response.body);
    if (!body)
        return failure(decodingError(body.error()));
    return Output(Case{std::move(*body)});
}

/// A failure keeps its status whatever its body is: what stands between client and server answers in its own
/// way.
template <class Output, class Case>
Result<Output, DecodingError> problemAnswer(const HttpResponse &response)
{
    using Body = decltype(Case::body);
    auto body = decodeJson<Body>(response.body);
    if (!body)
        return undocumented<Output>(response);
    return Output(Case{std::move(*body)});
}

template <class Output, class Case>
Result<Output, DecodingError> binaryAnswer(const HttpResponse &response)
{
    return Output(Case{response.body});
}

template <class Output, class Case>
Result<Output, DecodingError> emptyAnswer(const HttpResponse &)
{
    return Output(Case{});
}

template <class Output, class Case>
Result<Output, DecodingError> redirectAnswer(const HttpResponse &response)
{
    auto location = response.headers.find("Location");
    if (!location)
        return failure(DecodingError{"The redirect has no Location"});
    return Output(Case{std::move(*location)});
}

} // namespace orvane
