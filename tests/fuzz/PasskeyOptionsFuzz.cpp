// SPDX-License-Identifier: GPL-3.0-or-later
// Whatever a server asks of a passkey: nothing is read that a key could not be asked, base64url has one form
// alone, and no server is let at another's passkeys. An input is a server's address, a line's end, and the
// options.
#include "Passkeys/PasskeyOptions.h"
#include "Support/Require.h"

#include <QUrl>
#include <cstdint>
#include <string>

using namespace orvane;

namespace {

void checkOptions(const std::string &text)
{
    const auto options = readRegistrationOptions(text);
    if (!options)
        return;
    ORVANE_REQUIRE(!options->challenge.empty() && !options->rp.id.empty(), "nothing to ask");
    ORVANE_REQUIRE(!options->user.id.empty() && options->user.id.size() <= 64,
                   "an account that no key takes");
}

void checkBytes(const std::string &text)
{
    ORVANE_REQUIRE(fromBase64Url(base64UrlOf(text)) == text, "other bytes came back");
    if (const auto bytes = fromBase64Url(text))
        ORVANE_REQUIRE(base64UrlOf(*bytes) == text, "a second form of the same bytes");
}

void checkParty(const std::string &server, const std::string &rpId)
{
    if (!isRelyingParty(rpId, server))
        return;
    const auto origin = passkeyOrigin(server);
    ORVANE_REQUIRE(origin && origin->starts_with("https://"), "a server without a name");
    const std::string host = QUrl(QString::fromStdString(*origin)).host(QUrl::FullyEncoded).toStdString();
    ORVANE_REQUIRE(host == rpId || host.ends_with("." + rpId), "another server's passkeys");
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    const std::string text(reinterpret_cast<const char *>(data), size);
    const std::size_t end = std::min(text.find('\n'), text.size());
    const std::string server = text.substr(0, end);
    const std::string rest = text.substr(std::min(end + 1, text.size()));
    checkOptions(rest);
    checkBytes(rest);
    checkParty(server, rest.substr(0, rest.find('\n')));
    return 0;
}
