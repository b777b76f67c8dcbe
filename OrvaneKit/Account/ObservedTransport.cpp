// SPDX-License-Identifier: GPL-3.0-or-later
#include "Account/ObservedTransport.h"

#include <optional>

namespace orvane {

namespace {

/// As the outbox has it: what such an answer refuses now may be taken later.
bool saysToTryLater(int status)
{
    return status >= 500 || status == 408 || status == 429;
}

std::optional<std::string> silence(const Result<HttpResponse, ConnectionError> &answer)
{
    if (!answer)
        return describe(CallError(answer.error()));
    if (saysToTryLater(answer->status))
        return "The server is busy or being worked on (" + std::to_string(answer->status) + ").";
    return std::nullopt;
}

Task<Result<HttpResponse, ConnectionError>> sendObserved(std::shared_ptr<HttpTransport> transport,
                                                         std::shared_ptr<ServerEcho> echo,
                                                         HttpRequest request, std::string baseUrl,
                                                         std::shared_ptr<CallAbort> abort)
{
    auto answer = co_await transport->send(std::move(request), std::move(baseUrl), abort);
    // Of what we gave up ourselves the server had no part.
    if (!abort || !abort->isAborted())
        echo->hear(answer);
    co_return std::move(answer);
}

} // namespace

void ServerEcho::hear(const Result<HttpResponse, ConnectionError> &answer)
{
    if (const auto why = silence(answer))
        Q_EMIT silent(QString::fromStdString(*why));
    else
        Q_EMIT answered();
}

ObservedTransport::ObservedTransport(std::shared_ptr<HttpTransport> transport,
                                     std::shared_ptr<ServerEcho> echo)
    : m_transport(std::move(transport)), m_echo(std::move(echo))
{
}

Task<Result<HttpResponse, ConnectionError>> ObservedTransport::send(HttpRequest request, std::string baseUrl,
                                                                    std::shared_ptr<CallAbort> abort)
{
    return sendObserved(m_transport, m_echo, std::move(request), std::move(baseUrl), std::move(abort));
}

} // namespace orvane
