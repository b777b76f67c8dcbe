// SPDX-License-Identifier: GPL-3.0-or-later
// Makes and uses passkeys on a key of software for passkey_server.mjs: a request a line, an answer a line.
//     create SERVER OPTIONS
//     sign SERVER RPID CHALLENGE
#include "Passkeys/PasskeyService.h"
#include "Passkeys/linux/SecurityKeys.h"
#include "support/SoftwareKey.h"

#include <QCoreApplication>
#include <iostream>
#include <sstream>

using namespace orvane;

namespace {

PasskeyService::Answer answer(PasskeyService &passkeys, const std::string &line)
{
    std::istringstream words(line);
    std::string what, server, rest;
    words >> what >> server >> std::ws;
    std::getline(words, rest);
    if (what == "create") {
        auto options = readRegistrationOptions(rest);
        if (!options)
            return failure(PasskeyError(options.error()));
        return QCoro::waitFor(passkeys.registration(server, std::move(*options)));
    }
    NativePasskeyOptionsResponse asked;
    asked.rpId = rest.substr(0, rest.find(' '));
    asked.challenge = rest.substr(rest.find(' ') + 1);
    auto options = readAssertionOptions(asked);
    if (!options)
        return failure(PasskeyError(options.error()));
    return QCoro::waitFor(passkeys.assertion(server, std::move(*options)));
}

} // namespace

int main(int argc, char **argv)
{
    const QCoreApplication application(argc, argv);
    orvane::testing::SoftwareKey key;
    PasskeyService passkeys(std::make_unique<SecurityKeys>([&key] {
        std::vector<SecurityKey> found;
        found.emplace_back(key.open());
        return found;
    }));
    QObject::connect(&passkeys, &PasskeyService::pinWanted, &passkeys,
                     [&passkeys] { passkeys.givePin("123456"); });
    for (std::string line; std::getline(std::cin, line);) {
        const auto json = answer(passkeys, line);
        std::cout << (json ? *json : "! " + describe(json.error())) << std::endl;
    }
    return 0;
}
