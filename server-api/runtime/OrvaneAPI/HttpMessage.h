// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

/// HTTP messages as values, shared by the generated calls, the client's chain and the server. Bodies are held
/// whole.
namespace orvane {

enum class HttpMethod { get, post, put, delete_ };

std::string_view text(HttpMethod method);

struct HttpHeader {
    std::string name;
    std::string value;

    bool operator==(const HttpHeader &) const = default;
};

/// Header fields in their order; names are compared without regard to case.
class HttpHeaders {
public:
    std::optional<std::string> find(std::string_view name) const;
    /// Replaces the field of that name, or adds it.
    void set(std::string_view name, std::string value);
    const std::vector<HttpHeader> &all() const { return m_fields; }

    bool operator==(const HttpHeaders &) const = default;

private:
    std::vector<HttpHeader> m_fields;
};

struct HttpRequest {
    HttpMethod method = HttpMethod::get;
    /// Percent-encoded, from the leading "/", the query included.
    std::string path;
    HttpHeaders headers;
    std::string body;

    bool operator==(const HttpRequest &) const = default;
};

struct HttpResponse {
    int status = 0;
    HttpHeaders headers;
    std::string body;

    bool operator==(const HttpResponse &) const = default;
};

} // namespace orvane
