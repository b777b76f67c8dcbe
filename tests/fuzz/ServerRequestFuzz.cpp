// SPDX-License-Identifier: GPL-3.0-or-later
// Whatever a signed-in client sends, the server answers, and every failure with problem details. An input is
// a method's letter, a path up to the end of the line, and a body; "{w}" in the path stands for the
// workspace.
#include "OrvaneAPI/Operations.h"
#include "Security/RandomText.h"
#include "ServerCore.h"
#include "Support/Require.h"

#include <QCoreApplication>
#include <cstdint>

using namespace orvane;
using namespace orvane::server;

namespace {

class SignedIn {
public:
    SignedIn() : m_server(open())
    {
        const std::string verifier = randomText(32);
        ExternalExchangeRequest body;
        body.code = m_server->localSignInCode(digestText(verifier), "UTC").value();
        body.codeVerifier = verifier;
        const HttpResponse signedIn = send(operations::ExchangeExternalSignIn::request({body}));
        m_token = decodeJson<ExternalSignInResponse>(signedIn.body).value().tokens.accessToken;
        const HttpResponse me = send(operations::GetMe::request({}));
        m_workspace = decodeJson<MeResponse>(me.body).value().defaultWorkspaceId.value();
    }

    HttpResponse send(HttpRequest request)
    {
        request.headers.set("Host", "127.0.0.1:0");
        request.headers.set("Content-Type", "application/json");
        request.headers.set("Authorization", "Bearer " + m_token);
        return m_server->handle(request, "127.0.0.1");
    }
    const std::string &workspace() const { return m_workspace; }

private:
    static std::unique_ptr<ServerCore> open()
    {
        ServerCore::Options options;
        options.databasePath = ":memory:";
        // Time stands still, so that the session lasts as long as the fuzzer runs.
        options.clock = [] { return instantFromMilliseconds(1'772'355'600'000); };
        return ServerCore::open(std::move(options)).value();
    }

    std::unique_ptr<ServerCore> m_server;
    std::string m_token;
    std::string m_workspace;
};

HttpMethod methodFrom(char letter)
{
    switch (letter) {
    case 'P':
        return HttpMethod::post;
    case 'U':
        return HttpMethod::put;
    case 'D':
        return HttpMethod::delete_;
    default:
        return HttpMethod::get;
    }
}

bool endsSession(const std::string &path)
{
    return path.find("/sessions") != std::string::npos || path.find("/auth/") != std::string::npos;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    static int argc = 1;
    static char name[] = "fuzz";
    static char *argv[] = {name, nullptr};
    static const QCoreApplication application(argc, argv);
    static SignedIn signedIn;
    if (size == 0)
        return 0;
    const std::string input(reinterpret_cast<const char *>(data), size);
    const std::size_t end = std::min(input.find('\n'), input.size());
    HttpRequest request;
    request.method = methodFrom(input[0]);
    request.path = input.substr(1, end - 1);
    if (const std::size_t mark = request.path.find("{w}"); mark != std::string::npos)
        request.path.replace(mark, 3, signedIn.workspace());
    // Hashing passwords is slow, and without a session the rest would be out of reach.
    if (endsSession(request.path))
        return 0;
    request.body = end < input.size() ? input.substr(end + 1) : "";
    const HttpResponse response = signedIn.send(request);
    ORVANE_REQUIRE(response.status != 401 && response.status != 503, "the session or the database was lost");
    if (response.status >= 400)
        ORVANE_REQUIRE(decodeJson<ProblemDetails>(response.body).has_value(), "a failure is a problem");
    return 0;
}
