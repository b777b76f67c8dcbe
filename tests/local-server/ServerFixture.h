// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "OrvaneAPI/Operations.h"
#include "Security/RandomText.h"
#include "ServerCore.h"

#include <gtest/gtest.h>
#include <memory>
#include <mutex>
#include <optional>
#include <string>

namespace orvane::server {

/// A server without sockets over a database in memory, whose time the test sets.
class ServerFixture : public ::testing::Test {
protected:
    ServerFixture() { openServer({}); }

    void openServer(ListenPoint point, std::optional<std::string> trustedProxy = {},
                    std::optional<std::string> path = {})
    {
        ServerCore::Options options;
        databasePath = path.value_or(databasePath);
        options.databasePath = databasePath;
        options.listenPoint = std::move(point);
        options.trustedProxy = std::move(trustedProxy);
        options.clock = [this] { return now; };
        options.userName = "ada";
        options.linkKey = linkKey;
        options.devProvider = devProvider;
        options.publicAddress = publicAddress;
        options.isHosted = isHosted;
        options.onChange = [this](const ChangeNotice &told) {
            const std::lock_guard lock(changesLock);
            changes.insert(changes.end(), told.changes.begin(), told.changes.end());
            if (alsoTold)
                alsoTold(told);
        };
        auto opened = ServerCore::open(std::move(options));
        ASSERT_TRUE(opened) << opened.error();
        server = std::move(*opened);
    }

    HttpResponse send(HttpRequest request, const std::string &token = {})
    {
        if (!request.headers.find("Host"))
            request.headers.set("Host", host);
        if (!token.empty())
            request.headers.set("Authorization", "Bearer " + token);
        return server->handle(request, peer);
    }

    /// The answer to a request of one who is signed in as `accessToken`. It must be one of those that the API
    /// document lists for the operation.
    template <class Operation>
    HttpResponse call(const typename Operation::Input &input)
    {
        HttpResponse response = send(Operation::request(input), accessToken);
        const auto output = Operation::output(response);
        EXPECT_TRUE(output && !std::holds_alternative<Undocumented>(*output))
            << Operation::name << " answered " << response.status << " " << response.body;
        return response;
    }

    /// The same, read as `Case`; anything else fails the test.
    template <class Operation, class Case>
    Case expect(const typename Operation::Input &input)
    {
        const HttpResponse response = call<Operation>(input);
        const auto output = Operation::output(response);
        if (output) {
            if (const Case *found = std::get_if<Case>(&*output))
                return *found;
        }
        ADD_FAILURE() << Operation::name << " answered " << response.status << " " << response.body;
        return {};
    }

    RegisterRequest registration(std::string email = "grace@example.org")
    {
        RegisterRequest body;
        body.email = std::move(email);
        body.password = "correct horse battery";
        body.deviceName = "laptop";
        return body;
    }

    AuthTokensResponse registerAccount(std::string email = "grace@example.org")
    {
        using operations::Register;
        auto tokens = expect<Register, Created<AuthTokensResponse>>({registration(std::move(email))}).body;
        accessToken = tokens.accessToken;
        return tokens;
    }

    /// Signs in to the account on this computer and goes to its workspace; costs no password hashing.
    ExternalSignInResponse signInLocally()
    {
        const std::string verifier = randomText(32);
        const auto code = server->localSignInCode(digestText(verifier), "Europe/Paris");
        EXPECT_TRUE(code);
        using operations::ExchangeExternalSignIn;
        ExternalExchangeRequest body;
        body.code = code.value_or("");
        body.codeVerifier = verifier;
        auto signedIn = expect<ExchangeExternalSignIn, Ok<ExternalSignInResponse>>({body}).body;
        accessToken = signedIn.tokens.accessToken;
        workspaceId = me().defaultWorkspaceId.value_or("");
        return signedIn;
    }

    MeResponse me() { return expect<operations::GetMe, Ok<MeResponse>>({}).body; }

    static FieldErrors fieldErrors(const HttpResponse &response)
    {
        const auto problem = decodeJson<HttpValidationProblemDetails>(response.body);
        return problem ? problem->errors : FieldErrors{};
    }

    std::string databasePath = ":memory:";
    /// What the server's socket would hand out.
    std::string linkKey = randomText(32);
    Instant now = instantFromMilliseconds(1'772'355'600'000); // 2026-03-01T09:00:00Z
    /// From the next opening on.
    bool devProvider = false;
    std::optional<std::string> publicAddress;
    bool isHosted = false;
    std::string peer = "127.0.0.1";
    std::string accessToken;
    /// What was told of since the test last looked.
    std::vector<Change> changes;
    ChangeObserver alsoTold;
    /// What requests are sent to.
    std::string host = "127.0.0.1:0";
    std::mutex changesLock;
    std::string workspaceId;
    std::unique_ptr<ServerCore> server;
};

} // namespace orvane::server
