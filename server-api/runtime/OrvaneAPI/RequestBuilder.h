// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "OrvaneAPI/HttpMessage.h"
#include "OrvaneAPI/ParameterText.h"

#include <optional>
#include <string>
#include <string_view>

namespace orvane {

/// Puts an operation's request together; parameters without a value are left out.
class RequestBuilder {
public:
    explicit RequestBuilder(HttpMethod method) { m_request.method = method; }

    /// A piece of the path as the template has it.
    void literal(std::string_view piece) { m_request.path += piece; }
    template <class T>
    void argument(const T &value)
    {
        appendArgument(parameterText(value));
    }
    template <class T>
    void query(std::string_view name, const T &value)
    {
        appendQuery(name, parameterText(value));
    }
    template <class T>
    void query(std::string_view name, const std::optional<T> &value)
    {
        if (value)
            query(name, *value);
    }
    template <class T>
    void header(std::string_view name, const T &value)
    {
        m_request.headers.set(name, parameterText(value));
    }
    template <class T>
    void header(std::string_view name, const std::optional<T> &value)
    {
        if (value)
            header(name, *value);
    }
    /// The JSON of the body.
    void body(std::string json);

    HttpRequest take() { return std::move(m_request); }

private:
    void appendArgument(std::string_view text);
    void appendQuery(std::string_view name, std::string_view text);

    HttpRequest m_request;
    bool m_hasQuery = false;
};

} // namespace orvane
