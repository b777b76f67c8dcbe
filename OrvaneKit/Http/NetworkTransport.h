// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Http/HttpTransport.h"

#include <chrono>
#include <cstddef>
#include <deque>
#include <functional>
#include <memory>
#include <set>

class QNetworkAccessManager;

namespace orvane {

class NetworkCall;

/// What a transport puts up with.
struct NetworkLimits {
    /// From the start of a call until its request is on its way (name look-up, TCP and TLS included).
    std::chrono::milliseconds connect = std::chrono::seconds{10};
    /// Without a byte in either direction after that.
    std::chrono::milliseconds idle = std::chrono::seconds{60};
    /// Bytes of an answer, unpacked; a longer one fails the call.
    std::size_t answer = std::size_t{256} << 20;
    /// Bytes kept of a refusal (status 400 and above). The rest is not read: one byte more than anybody looks
    /// at shows that it was too long.
    std::size_t refusal = (std::size_t{1} << 20) + 1;
    /// Calls at one time; the others wait in line, and their clocks do not run meanwhile.
    std::size_t atOnce = 6;
};

/// The real transport, over QtNetwork: the system's proxy (never for loopback addresses, whose tokens are not
/// to leave the machine) and its trust store, HTTP/2 over TLS where the server speaks it, gzip, no cookies,
/// no cache.
///
/// A redirect comes back as the answer that it is: followed automatically, it would carry the token to
/// wherever it points. When a kept connection closes unanswered, QtNetwork sends the request once more by
/// itself.
class NetworkTransport final : public HttpTransport {
public:
    explicit NetworkTransport(NetworkLimits limits = {});
    ~NetworkTransport() override;

    Task<Result<HttpResponse, ConnectionError>> send(HttpRequest request, std::string baseUrl,
                                                     std::shared_ptr<CallAbort> abort) override;

    /// Ends every call with a ConnectionError, and every later one at once. To be called on the thread of the
    /// calls, before it ends.
    void close();

private:
    friend class NetworkCall;
    void startWaiting();
    void ended(NetworkCall *call);

    NetworkLimits m_limits;
    std::unique_ptr<QNetworkAccessManager> m_manager;
    std::deque<NetworkCall *> m_waiting;
    std::set<NetworkCall *> m_running;
    bool m_closed = false;
};

} // namespace orvane
