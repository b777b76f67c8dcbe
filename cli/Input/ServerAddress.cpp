// SPDX-License-Identifier: GPL-3.0-or-later
#include "Input/ServerAddress.h"

#include "Terminal/TextWidth.h"

#include <QUrl>

namespace orvane {

Result<std::string, std::string> serverAddress(const std::string &typed)
{
    const QUrl url(QString::fromStdString(typed), QUrl::StrictMode);
    const bool isHttp = url.scheme() == QLatin1String("http") || url.scheme() == QLatin1String("https");
    if (!url.isValid() || !isHttp || url.host().isEmpty() || url.hasQuery() || url.hasFragment())
        return failure("wants an address such as https://time.example.com, not \"" + printable(typed) +
                       "\".");
    std::string address = typed;
    while (address.ends_with('/'))
        address.pop_back();
    return address;
}

Result<std::string, std::string> serverAddressOf(const std::string &answer)
{
    const std::string typed = QString::fromStdString(answer).trimmed().toStdString();
    return serverAddress(typed.find("://") == std::string::npos ? "https://" + typed : typed);
}

} // namespace orvane
