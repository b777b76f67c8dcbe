// SPDX-License-Identifier: GPL-3.0-or-later
#include "Account/ObservedTransport.h"

namespace orvane {

namespace {

/// As the outbox has it: what such an answer refuses now may be taken later.
bool saysToTryLater(int status)
{
    return status >= 500 || status == 408 || status == 429;
}

QString reasonFor(int status)
{
    constexpr int tooManyRequests = 429;
    return (status == tooManyRequests
                ? QStringLiteral("The server was asked too often and wants a pause (%1).")
                : QStringLiteral("The server is busy or being worked on (%1)."))
        .arg(status);
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
    if (!answer)
        Q_EMIT silent(QString::fromStdString(describe(CallError(answer.error()))));
    else if (saysToTryLater(answer->status))
        Q_EMIT turnedAway(reasonFor(answer->status));
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
