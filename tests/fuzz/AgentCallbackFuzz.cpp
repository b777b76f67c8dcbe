// SPDX-License-Identifier: GPL-3.0-or-later
// Whatever a browser, or a person, hands over for an agent's request: only the program's own address is read
// as one, and what was asked comes through as it was written.
#include "SignIn/AgentCallback.h"
#include "Support/Require.h"

#include <QUrl>
#include <cstdint>
#include <string>

using namespace orvane;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    const std::string text(reinterpret_cast<const char *>(data), size);
    const QString word = QString::fromStdString(text);
    ORVANE_REQUIRE(!AgentCallback::read(text) ||
                       word.trimmed().startsWith(QLatin1String("orvane:"), Qt::CaseInsensitive),
                   "an address of something else");
    const std::string written = std::string(AgentCallback::address) + "?client_id=a&redirect_uri=b&state=" +
                                QUrl::toPercentEncoding(word).toStdString();
    const auto read = AgentCallback::read(written);
    ORVANE_REQUIRE(read && read->state.value_or("") == word.toStdString(), "another state");
    (void)AgentCallback::isOnThisComputer(text);
    ORVANE_REQUIRE(!AgentCallback::leadsBack(*read, text) || text.starts_with("b?"),
                   "a way to somebody else");
    return 0;
}
