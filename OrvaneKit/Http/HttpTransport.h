// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Http/CallAbort.h"
#include "Http/CallError.h"
#include "OrvaneAPI/HttpMessage.h"
#include "Support/Result.h"
#include "Support/Task.h"

#include <memory>
#include <string>

namespace orvane {

/// Carries one request to a server and brings its answer, whatever its status. Used on the network thread
/// only. Tests put their own in its place.
class HttpTransport {
public:
    HttpTransport() = default;
    HttpTransport(const HttpTransport &) = delete;
    HttpTransport &operator=(const HttpTransport &) = delete;
    virtual ~HttpTransport() = default;

    /// `baseUrl` is the server's address, without a slash at its end; the request's path is appended. A
    /// request may reach the server twice, so every request must bear that. With `abort`, which may be null,
    /// the request can be given up: it then fails with a ConnectionError.
    virtual Task<Result<HttpResponse, ConnectionError>> send(HttpRequest request, std::string baseUrl,
                                                             std::shared_ptr<CallAbort> abort) = 0;
};

} // namespace orvane
