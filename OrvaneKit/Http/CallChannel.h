// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Http/CallError.h"
#include "Http/CallScope.h"
#include "Http/Middleware.h"
#include "OrvaneAPI/ResponseReader.h"

#include <memory>
#include <optional>
#include <string_view>
#include <vector>

namespace orvane {

class NetworkThread;

/// A success that a call wants, and how its answer becomes the call's value.
struct Success {
    /// Reads into what `value` points at, a value of the call's type.
    using Read = std::optional<DecodingError> (*)(const HttpResponse &response, void *value);

    int status = 0;
    /// None when there is nothing to read: the value stays as it was made.
    Read read = nullptr;
};

/// A JSON body.
template <class Body>
std::optional<DecodingError> readJson(const HttpResponse &response, void *value)
{
    return decodingError(decodeJsonInto<Body>(response.body, value));
}
/// A JSON body where another success has none.
template <class Body>
std::optional<DecodingError> readOptionalJson(const HttpResponse &response, void *value)
{
    return readJson<Body>(response, &static_cast<std::optional<Body> *>(value)->emplace());
}
/// The bytes of the body, as a std::string.
std::optional<DecodingError> readBytes(const HttpResponse &response, void *value);
/// Where a redirect points, as a std::string.
std::optional<DecodingError> readLocation(const HttpResponse &response, void *value);

/// One call of an operation, as data.
struct ServerCall {
    std::string_view operation;
    HttpRequest request;
    /// Whatever else the server answers is a DecodingError.
    std::vector<Success> wanted;
};

/// What the generated calls go through: a request is sent, and its answer read, on the network thread, which
/// must outlive the call; the caller resumes on its own. A value to copy; the calls under way keep what they
/// need alive.
class CallChannel {
public:
    CallChannel(NetworkThread &thread, ClientChain chain);

    /// The same channel for calls that end with the scope.
    CallChannel within(const CallScope &scope) const;

    template <class T>
    Task<CallResult<T>> ask(ServerCall call) const
    {
        if constexpr (std::is_void_v<T>)
            return exchange(*this, std::move(call), nullptr);
        else
            return valueOf<T>(*this, std::move(call));
    }

private:
    using Done = CallResult<void>;

    template <class T>
    static Task<CallResult<T>> valueOf(CallChannel channel, ServerCall call)
    {
        // On the heap since the network thread may still read into it when the call has been given up here.
        const auto value = std::make_shared<T>();
        Done done = co_await exchange(std::move(channel), std::move(call), value);
        co_return done ? CallResult<T>(std::move(*value)) : CallResult<T>(failure(std::move(done.error())));
    }

    static Task<Done> exchange(CallChannel channel, ServerCall call, std::shared_ptr<void> value);
    static Task<Done> exchangeWithin(CallChannel channel, ServerCall call, std::shared_ptr<void> value);
    static Task<Done> exchangeOnThread(CallChannel channel, ServerCall call, std::shared_ptr<void> value,
                                       std::shared_ptr<CallAbort> abort);
    static Task<Done> exchangeHere(ClientChain chain, ServerCall call, std::shared_ptr<void> value,
                                   std::shared_ptr<CallAbort> abort);

    NetworkThread *m_thread;
    ClientChain m_chain;
    std::shared_ptr<CallScope::State> m_scope;
};

} // namespace orvane
