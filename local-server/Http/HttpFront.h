// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Http/RequestGate.h"
#include "OrvaneAPI/HttpMessage.h"
#include "Support/Result.h"

#include <QObject>
#include <functional>
#include <memory>
#include <string>

namespace orvane::server {

/// The server's HTTP side: listens, and has `handle` answer what comes in, on the thread that made it. What
/// differs between versions of the HTTP library is in its source file alone.
class HttpFront : public QObject {
public:
    using Handle = std::function<HttpResponse(const HttpRequest &request, const std::string &peer)>;

    explicit HttpFront(Handle handle);
    ~HttpFront() override;

    /// Port 0 lets the system choose. Answers the port, or what the system said.
    Result<std::uint16_t, std::string> listen(const ListenPoint &point);
    void close();

private:
    class Bridge;
    std::unique_ptr<Bridge> m_bridge;
};

} // namespace orvane::server
