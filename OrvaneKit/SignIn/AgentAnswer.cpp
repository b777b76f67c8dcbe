// SPDX-License-Identifier: GPL-3.0-or-later
#include "SignIn/AgentAnswer.h"

#include "SignIn/AgentCallback.h"
#include "Support/Eventual.h"

#include <QNetworkAccessManager>
#include <QNetworkProxy>
#include <QNetworkReply>

namespace orvane {

Task<bool> tellAgent(std::string answer)
{
    constexpr int patience = 5000; // milliseconds
    if (!AgentCallback::isOnThisComputer(answer))
        co_return false;
    QNetworkAccessManager network;
    network.setProxy(QNetworkProxy(QNetworkProxy::NoProxy));
    QNetworkRequest request(QUrl(QString::fromStdString(answer), QUrl::StrictMode));
    request.setTransferTimeout(patience);
    request.setAttribute(QNetworkRequest::RedirectPolicyAttribute, QNetworkRequest::ManualRedirectPolicy);
    const Eventual<bool> heard(ResumeWaiters::fromTheirLoops);
    QNetworkReply *reply = network.get(request);
    // Whatever it answers, it has heard, and the rest is not waited for.
    const auto settle = [heard, reply] {
        if (!heard.isFinished())
            heard.finish(reply->attribute(QNetworkRequest::HttpStatusCodeAttribute).isValid());
    };
    QObject::connect(reply, &QNetworkReply::metaDataChanged, reply, settle);
    QObject::connect(reply, &QNetworkReply::finished, reply, settle);
    auto waiting = heard;
    co_return co_await std::move(waiting);
}

} // namespace orvane
