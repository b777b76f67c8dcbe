// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "OrvaneAPI/HttpMessage.h"
#include "OrvaneAPI/RequestReader.h"
#include "OrvaneAPI/Responses.h"

#include <span>
#include <variant>

/// JSON and inputs for every schema and operation, which make_samples.py derives from the API's document on
/// its own, so that the generator's reading of the document is compared with a second one.
namespace orvane::samples {

struct SchemaSample {
    std::string_view name;
    /// With every member, and with the required ones alone, as our own writing would have it.
    std::string_view full;
    std::string_view least;
    std::string_view leastWritten;
    /// Reads strictly and writes again; "path: message" when it cannot be read.
    std::string (*again)(std::string_view json);
};

struct AnswerSample {
    int status;
    std::string_view body;
};

struct OperationSample {
    std::string_view name;
    std::string_view path;
    HttpRequest (*request)();
    /// Whether a server reads the input out of the request that made it.
    bool (*readsBack)(const RequestParts &parts);
    std::span<const AnswerSample> answers;
    /// Which case of the output an answer becomes, and of how many; nothing for a DecodingError.
    std::optional<std::size_t> (*caseOf)(const HttpResponse &response);
    std::size_t cases;
};

std::span<const SchemaSample> schemaSamples();
std::span<const OperationSample> operationSamples();

template <class T>
std::string again(std::string_view json)
{
    const auto value = decodeJson<T>(json, {.strict = true});
    return value ? encodeJson(*value) : value.error().path + ": " + value.error().message;
}

template <class T>
T decoded(std::string_view json)
{
    return decodeJson<T>(json, {.strict = true}).value();
}

/// Specialised in the samples for each operation.
template <class Operation>
typename Operation::Input inputOf();

template <class Operation>
constexpr OperationSample operationSample(std::string_view path, std::span<const AnswerSample> answers)
{
    return {Operation::name,
            path,
            [] { return Operation::request(inputOf<Operation>()); },
            [](const RequestParts &parts) { return Operation::read(parts) == inputOf<Operation>(); },
            answers,
            [](const HttpResponse &response) {
                const auto output = Operation::output(response);
                return output ? std::optional{output->index()} : std::nullopt;
            },
            std::variant_size_v<typename Operation::Output>};
}

} // namespace orvane::samples
