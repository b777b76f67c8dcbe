// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QNetworkAccessManager>
#include <QString>
#include <QUrl>
#include <utility>

namespace orvane::testing {

/// What a person does in a browser on the server's page for signing in by a name.
class FormBrowser {
public:
    /// Opens a sign-in's start address and sends the form there with these fields ("name=grace"); answers the
    /// address that the browser ends at.
    QByteArray signIn(const QString &startAddress, const char *fields);

private:
    /// Where it is sent on to, and what it is shown.
    std::pair<QUrl, QString> fetch(const QUrl &address, const QByteArray &form = {});

    QNetworkAccessManager m_network;
};

} // namespace orvane::testing
