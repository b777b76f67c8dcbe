// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Http/Middleware.h"

#include <mutex>
#include <optional>
#include <string>

namespace orvane {

/// The identifier of the live-sync connection, while there is one. Live sync sets it, requests read it; from
/// any thread.
class SyncConnection {
public:
    std::optional<std::string> value() const
    {
        const std::lock_guard lock(m_mutex);
        return m_value;
    }
    void set(std::optional<std::string> value)
    {
        const std::lock_guard lock(m_mutex);
        m_value = std::move(value);
    }

private:
    mutable std::mutex m_mutex;
    std::optional<std::string> m_value;
};

/// Tells the server which live-sync connection a change comes from, so that it is not told of its own change.
/// Innermost.
class SyncConnectionMiddleware final : public Middleware {
public:
    explicit SyncConnectionMiddleware(std::shared_ptr<const SyncConnection> connection)
        : m_connection(std::move(connection))
    {
    }

    Task<HttpResult> intercept(HttpRequest request, SendNext next) const override
    {
        if (auto identifier = m_connection->value())
            request.headers.set("X-Sync-Connection", std::move(*identifier));
        return next(std::move(request));
    }

private:
    std::shared_ptr<const SyncConnection> m_connection;
};

} // namespace orvane
