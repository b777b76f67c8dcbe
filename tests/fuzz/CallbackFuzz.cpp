// SPDX-License-Identifier: GPL-3.0-or-later
// Whatever a browser, or a person, hands over for the end of a sign-in: only the program's own address is
// read as one, and a code comes back as it was written.
#include "SignIn/ExternalSignIn.h"
#include "Support/Require.h"

#include <QUrl>
#include <cstdint>
#include <string>

using namespace orvane;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    const std::string text(reinterpret_cast<const char *>(data), size);
    const QString word = QString::fromStdString(text);
    ORVANE_REQUIRE(!ExternalSignIn::readCallback(text) ||
                       word.trimmed().startsWith(QLatin1String("orvane:"), Qt::CaseInsensitive),
                   "an address of something else");
    const std::string written =
        std::string(ExternalSignIn::callbackAddress) + "?code=" + QUrl::toPercentEncoding(word).toStdString();
    const auto read = ExternalSignIn::readCallback(written);
    const auto *code = read ? std::get_if<ExternalSignIn::Code>(&*read) : nullptr;
    ORVANE_REQUIRE(code != nullptr && code->value == word.toStdString(), "another code");
    return 0;
}
