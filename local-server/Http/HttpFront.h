// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Http/RequestGate.h"
#include "Http/UpgradeDoor.h"
#include "OrvaneAPI/HttpMessage.h"
#include "Support/Result.h"

#include <QObject>
#include <functional>
#include <memory>
#include <optional>
#include <string>

namespace orvane::server {

/// The server's HTTP side: listens, and has `handle` answer what comes in, on the thread that made it. What
/// differs between versions of the HTTP library is in its source file alone.
class HttpFront : public QObject {
public:
    /// `isSignedIn` says whether the request came with a good access token.
    using Reply = std::function<void(HttpResponse response, bool isSignedIn)>;
    /// Calls `reply` once, at once or later; the connection may be gone by then, and the front too.
    using Handle = std::function<void(const HttpRequest &request, const std::string &peer, Reply reply)>;

    /// `trustedProxy` is the address of a proxy whose connections carry everybody's requests.
    explicit HttpFront(Handle handle, std::optional<std::string> trustedProxy = {},
                       std::optional<Upgrades> upgrades = {});
    ~HttpFront() override;

    /// Port 0 lets the system choose. Answers the port, or what the system said.
    Result<std::uint16_t, std::string> listen(const ListenPoint &point);
    void close();

private:
    class Bridge;
    std::optional<std::string> m_trustedProxy;
    std::string m_upgradePath;
    std::unique_ptr<UpgradeDoor> m_door;
    std::unique_ptr<Bridge> m_bridge;
};

} // namespace orvane::server
