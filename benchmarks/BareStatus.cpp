// SPDX-License-Identifier: GPL-3.0-or-later
// The measure for `orvane status`: asks the server on this computer for the same things, and does nothing
// with the answers. BareStatus SOCKET FROM TO, the range as ISO 8601.
#include "BareClient.h"

#include <vector>

using namespace orvane::bare;

int main(int argc, char **argv)
{
    const QCoreApplication application(argc, argv);
    const QStringList arguments = QCoreApplication::arguments();
    if (arguments.size() != 4)
        giveUp(QStringLiteral("SOCKET FROM TO are needed"));
    Client bare = signedIn(arguments[1]);
    const QString workspace = workspaceOf(bare);
    const std::vector<QNetworkReply *> replies{
        bare.get(workspace + QStringLiteral("/time-entries?from=%1&to=%2").arg(arguments[2], arguments[3])),
        bare.get(QStringLiteral("/api/me/time-entries/current")),
        bare.get(workspace + QStringLiteral("/settings")),
        bare.get(workspace + QStringLiteral("/projects?includeArchived=true")),
        bare.get(workspace + QStringLiteral("/clients?includeArchived=true")),
        bare.get(workspace + QStringLiteral("/tags")),
    };
    qsizetype received = 0;
    for (QNetworkReply *reply : replies)
        received += Client::body(reply).size();
    std::printf("%lld bytes\n", static_cast<long long>(received));
    return 0;
}
