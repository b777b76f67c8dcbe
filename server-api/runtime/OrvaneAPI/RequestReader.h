// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "OrvaneAPI/Checks.h"
#include "OrvaneAPI/HttpMessage.h"
#include "OrvaneAPI/ParameterText.h"
#include "OrvaneAPI/UriText.h"
#include "Support/Json.h"
#include "Support/Result.h"

#include <string>
#include <string_view>
#include <vector>

namespace orvane {

/// A request as a server took it apart.
struct RequestParts {
    /// In the order of the path; see matchRoute.
    std::vector<std::string> pathArguments{};
    /// Decoded; see parseQuery.
    QueryPairs query{};
    HttpHeaders headers{};
    std::string body{};
};

/// Why a request was not accepted. `fieldErrors` is empty when it was no JSON at all.
struct RequestProblem {
    int status = 400;
    std::string message;
    FieldErrors fieldErrors;

    bool operator==(const RequestProblem &) const = default;
};

/// Reads an operation's input strictly, noting everything that is wrong rather than the first thing.
class RequestReader {
public:
    /// The parts must outlive the reader.
    explicit RequestReader(const RequestParts &parts) : m_parts(parts) {}

    template <class T, class Rule = NoRule>
    void path(std::size_t index, std::string_view name, T &out, const Rule &rule = {})
    {
        if (index < m_parts.pathArguments.size())
            take(name, m_parts.pathArguments[index], out, rule);
        else
            missing(name);
    }
    template <class T, class Rule = NoRule>
    void query(std::string_view name, T &out, const Rule &rule = {})
    {
        takeOrMiss(name, queryValue(name), out, rule);
    }
    template <class T, class Rule = NoRule>
    void header(std::string_view name, T &out, const Rule &rule = {})
    {
        takeOrMiss(name, m_parts.headers.find(name), out, rule);
    }
    template <class T, class Rule>
    void body(T &out, const Rule &rule)
    {
        auto decoded = decodeJson<T>(m_parts.body, JsonReading{.strict = true});
        if (!decoded) {
            refuseBody(decoded.error());
            return;
        }
        out = std::move(*decoded);
        rule.apply(out, m_checks);
    }

    template <class Input>
    Result<Input, RequestProblem> finish(Input input)
    {
        if (hasProblem())
            return failure(takeProblem());
        return input;
    }

private:
    template <class T, class Rule>
    void takeOrMiss(std::string_view name, const std::optional<std::string> &text, T &out, const Rule &rule)
    {
        if (text)
            take(name, *text, out, rule);
        else
            missing(name);
    }
    template <class T, class Rule>
    void takeOrMiss(std::string_view name, const std::optional<std::string> &text, std::optional<T> &out,
                    const Rule &rule)
    {
        if (text)
            take(name, *text, out.emplace(), rule);
    }
    template <class T, class Rule>
    void take(std::string_view name, std::string_view text, T &out, const Rule &rule)
    {
        auto value = ParameterForm<T>::read(text);
        if (!value) {
            m_checks.refuse(name, std::string(ParameterForm<T>::form));
            return;
        }
        out = std::move(*value);
        m_checks.member(name, out, rule);
    }

    std::optional<std::string> queryValue(std::string_view name);
    void missing(std::string_view name);
    void refuseBody(const JsonError &error);
    bool hasProblem() const { return !m_message.empty() || !m_checks.errors().empty(); }
    RequestProblem takeProblem();

    const RequestParts &m_parts;
    Checks m_checks;
    std::string m_message;
};

} // namespace orvane
