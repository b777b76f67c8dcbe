// SPDX-License-Identifier: GPL-3.0-or-later
#include "support/FormBrowser.h"

#include "support/Await.h"

#include <QNetworkReply>
#include <QRegularExpression>
#include <memory>

namespace orvane::testing {

namespace {

QString hiddenField(const QString &page, const char *name)
{
    const QRegularExpression pattern(
        QStringLiteral("name=\"%1\" value=\"([^\"]*)\"").arg(QLatin1String(name)));
    return pattern.match(page).captured(1);
}

} // namespace

std::pair<QUrl, QString> FormBrowser::fetch(const QUrl &address, const QByteArray &form)
{
    QNetworkRequest request(address);
    request.setAttribute(QNetworkRequest::RedirectPolicyAttribute, QNetworkRequest::ManualRedirectPolicy);
    request.setHeader(QNetworkRequest::ContentTypeHeader,
                      QStringLiteral("application/x-www-form-urlencoded"));
    const std::unique_ptr<QNetworkReply> reply(form.isEmpty() ? m_network.get(request)
                                                              : m_network.post(request, form));
    (void)eventually([&] { return reply->isFinished(); });
    return {address.resolved(QUrl::fromEncoded(reply->rawHeader("Location"))),
            QString::fromUtf8(reply->readAll())};
}

QByteArray FormBrowser::signIn(const QString &startAddress, const char *fields)
{
    const QUrl page = fetch(QUrl(startAddress)).first;
    const QString form = fetch(page).second;
    const QString filled =
        QStringLiteral("attempt=%1&token=%2&%3")
            .arg(hiddenField(form, "attempt"), hiddenField(form, "token"), QLatin1String(fields));
    return fetch(page.resolved(QUrl(QStringLiteral("/dev-provider/sign-in"))), filled.toLatin1())
        .first.toEncoded();
}

} // namespace orvane::testing
