// SPDX-License-Identifier: GPL-3.0-or-later
#include "OrvaneAPI/RequestBuilder.h"

#include "OrvaneAPI/UriText.h"

namespace orvane {

void RequestBuilder::body(std::string json)
{
    m_request.headers.set("Content-Type", "application/json");
    m_request.body = std::move(json);
}

void RequestBuilder::appendArgument(std::string_view text)
{
    appendPercentEncoded(m_request.path, text);
}

void RequestBuilder::appendQuery(std::string_view name, std::string_view text)
{
    m_request.path += m_hasQuery ? '&' : '?';
    m_hasQuery = true;
    appendPercentEncoded(m_request.path, name);
    m_request.path += '=';
    appendPercentEncoded(m_request.path, text);
}

} // namespace orvane
