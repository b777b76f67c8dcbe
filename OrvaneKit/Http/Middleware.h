// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Http/HttpTransport.h"

#include <functional>
#include <memory>
#include <vector>

namespace orvane {

using HttpResult = Result<HttpResponse, CallError>;
/// Passes a request on; may be called more than once.
using SendNext = std::function<Task<HttpResult>(HttpRequest)>;

/// One layer around the transport. It sees each request on its way out and the answer on its way back, on the
/// network thread. `intercept` must not touch its object after it has suspended unless it keeps what it needs
/// alive by itself.
class Middleware {
public:
    Middleware() = default;
    Middleware(const Middleware &) = delete;
    Middleware &operator=(const Middleware &) = delete;
    virtual ~Middleware() = default;

    virtual Task<HttpResult> intercept(HttpRequest request, SendNext next) const = 0;
};

/// Middlewares around a transport (the first is the outermost) for one server's address. A value to copy; the
/// calls under way keep what they need alive.
class ClientChain {
public:
    ClientChain(std::shared_ptr<HttpTransport> transport, std::string baseUrl,
                std::vector<std::shared_ptr<const Middleware>> middlewares);

    /// `abort` as for HttpTransport.
    Task<HttpResult> send(HttpRequest request, std::shared_ptr<CallAbort> abort = {}) const;

private:
    struct Parts {
        std::shared_ptr<HttpTransport> transport;
        std::string baseUrl;
        std::vector<std::shared_ptr<const Middleware>> middlewares;
    };
    static Task<HttpResult> sendFrom(std::shared_ptr<const Parts> parts, std::size_t layer,
                                     HttpRequest request, std::shared_ptr<CallAbort> abort);

    std::shared_ptr<const Parts> m_parts;
};

} // namespace orvane
