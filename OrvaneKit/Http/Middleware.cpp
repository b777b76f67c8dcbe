// SPDX-License-Identifier: GPL-3.0-or-later
#include "Http/Middleware.h"

namespace orvane {

ClientChain::ClientChain(std::shared_ptr<HttpTransport> transport, std::string baseUrl,
                         std::vector<std::shared_ptr<const Middleware>> middlewares)
    : m_parts(std::make_shared<Parts>(std::move(transport), std::move(baseUrl), std::move(middlewares)))
{
}

Task<HttpResult> ClientChain::send(HttpRequest request, std::shared_ptr<CallAbort> abort) const
{
    return sendFrom(m_parts, 0, std::move(request), std::move(abort));
}

Task<HttpResult> ClientChain::sendFrom(std::shared_ptr<const Parts> parts, std::size_t layer,
                                       HttpRequest request, std::shared_ptr<CallAbort> abort)
{
    if (layer < parts->middlewares.size()) {
        const SendNext next = [parts, layer, abort](HttpRequest passed) {
            return sendFrom(parts, layer + 1, std::move(passed), abort);
        };
        co_return co_await parts->middlewares[layer]->intercept(std::move(request), next);
    }
    auto answer = co_await parts->transport->send(std::move(request), parts->baseUrl, std::move(abort));
    if (!answer)
        co_return failure(CallError(std::move(answer.error())));
    co_return std::move(*answer);
}

} // namespace orvane
