// SPDX-License-Identifier: GPL-3.0-or-later
#include "Process/ServerOptions.h"
#include "ServerFixture.h"
#include "support/P256Key.h"
#include "support/PinProtocol.h"

#include <QCborMap>
#include <QCborValue>

namespace orvane::server {

using namespace operations;
using namespace std::chrono_literals;
using orvane::testing::P256Key;
using orvane::testing::sha256;

namespace {

/// A passkey, and the answers of whoever holds it. What the next answer says can be changed before.
struct Holder {
    P256Key key;
    std::string id = "passkey-1";
    std::string rpId = "orvane.example";
    std::string origin = "https://orvane.example";
    std::string userHandle;
    std::string type = "public-key";
    std::string clientType;
    bool isFramed = false;
    /// The user is present and verified.
    unsigned flags = 0x05;
    std::uint32_t counter = 0;
    /// Changes what was signed after it was.
    bool forges = false;
    std::string format = "none";
    int algorithm = -7;
    std::string behind;

    std::string clientData(const std::string &kind, const std::string &challenge) const
    {
        return R"({"type":")" + (clientType.empty() ? kind : clientType) + R"(","challenge":")" + challenge +
               R"(","origin":")" + origin + R"(","crossOrigin":)" + (isFramed ? "true" : "false") + "}";
    }
    std::string data(unsigned more = 0) const
    {
        std::string bytes = sha256(rpId) + static_cast<char>(flags | more);
        for (const unsigned shift : {24U, 16U, 8U, 0U})
            bytes += static_cast<char>((counter >> shift) & 0xffU);
        return bytes;
    }
    std::string signedData(const std::string &bytes, const std::string &client) const
    {
        return key.sign((forges ? "x" : "") + bytes + sha256(client));
    }
    std::string credential(const std::string &response) const
    {
        return R"({"id":")" + base64UrlText(id) + R"(","rawId":")" + base64UrlText(id) + R"(","type":")" +
               type + R"(","response":)" + response + R"(,"clientExtensionResults":{}})";
    }

    std::string create(const std::string &challenge) const
    {
        const auto bytesOf = [](const std::string &text) { return QByteArray::fromStdString(text); };
        const QCborMap point{{1, 2}, {3, algorithm}, {-1, 1}, {-2, bytesOf(key.x())}, {-3, bytesOf(key.y())}};
        const std::string bytes = data(0x40) + std::string(16, '\0') + '\0' + static_cast<char>(id.size()) +
                                  id + QCborValue(point).toCbor().toStdString() + behind;
        const std::string client = clientData("webauthn.create", challenge);
        QCborMap statement;
        if (format == "packed")
            statement = {{QStringLiteral("alg"), -7},
                         {QStringLiteral("sig"), bytesOf(signedData(bytes, client))}};
        const QCborMap object{{QStringLiteral("fmt"), QString::fromStdString(format)},
                              {QStringLiteral("attStmt"), statement},
                              {QStringLiteral("authData"), bytesOf(bytes)}};
        return credential(R"({"clientDataJSON":")" + base64UrlText(client) + R"(","attestationObject":")" +
                          base64UrlText(QCborValue(object).toCbor().toStdString()) + R"("})");
    }
    std::string sign(const std::string &challenge) const
    {
        const std::string client = clientData("webauthn.get", challenge);
        return credential(R"({"clientDataJSON":")" + base64UrlText(client) + R"(","authenticatorData":")" +
                          base64UrlText(data() + behind) + R"(","signature":")" +
                          base64UrlText(signedData(data() + behind, client)) + R"(","userHandle":")" +
                          base64UrlText(userHandle) + R"("})");
    }
};

} // namespace

class PasskeyTest : public ServerFixture {
protected:
    PasskeyTest() { reopenAt("https://orvane.example"); }

    void reopenAt(std::optional<std::string> address)
    {
        publicAddress = std::move(address);
        openServer({});
    }

    /// One with a passkey already, who is signed in.
    Holder owner(const std::string &email = "grace@example.org")
    {
        registerAccount(email);
        Holder holder;
        holder.userHandle = me().id;
        holder.id = email;
        EXPECT_EQ(save(holder).status, 201);
        return holder;
    }
    PasskeyOptionsResponse creation()
    {
        return expect<PasskeyCreationOptions, Ok<PasskeyOptionsResponse>>({{"correct horse battery"}}).body;
    }
    static std::string challengeIn(const PasskeyOptionsResponse &options)
    {
        const std::string before = R"({"challenge":")";
        EXPECT_TRUE(options.options.text.starts_with(before));
        return options.options.text.substr(before.size(), 43);
    }
    HttpResponse save(const Holder &holder, const std::string &name = "Blue key")
    {
        const auto options = creation();
        return saveAs(options.challengeToken, holder.create(challengeIn(options)), name);
    }
    HttpResponse saveAs(const std::string &token, const std::string &credential, const std::string &name)
    {
        return call<SavePasskey>({{name, token, {credential}}});
    }
    NativePasskeyOptionsResponse question()
    {
        return expect<NativePasskeyOptions, Ok<NativePasskeyOptionsResponse>>({}).body;
    }
    HttpResponse answer(const std::string &token, const std::string &credential)
    {
        return call<NativePasskeyLogin>({{token, {credential}, "laptop"}});
    }
    HttpResponse signIn(const Holder &holder)
    {
        const auto asked = question();
        return answer(asked.challengeToken, holder.sign(asked.challenge));
    }
    std::vector<PasskeyResponse> passkeys()
    {
        return expect<ListPasskeys, Ok<std::vector<PasskeyResponse>>>({}).body;
    }
};

TEST_F(PasskeyTest, SignsItsOwnerIn)
{
    const Holder holder = owner();
    const std::string id = me().id;
    ASSERT_EQ(passkeys().size(), 1U);
    EXPECT_EQ(passkeys()[0].name, "Blue key");
    EXPECT_EQ(passkeys()[0].createdAt, now);
    EXPECT_EQ(passkeys()[0].lastUsedAt, std::nullopt);
    accessToken.clear();
    now += 24h;
    EXPECT_EQ(question().rpId, "orvane.example");
    const auto tokens = decodeJson<AuthTokensResponse>(signIn(holder).body);
    ASSERT_TRUE(tokens);
    accessToken = tokens->accessToken;
    EXPECT_EQ(me().id, id);
    EXPECT_EQ(passkeys()[0].lastUsedAt, now);

    const std::string passkey = passkeys()[0].id;
    registerAccount("ada@example.org");
    EXPECT_TRUE(passkeys().empty());
    EXPECT_EQ(call<RemovePasskey>({passkey}).status, 404) << "it is another's";
    accessToken = tokens->accessToken;
    EXPECT_EQ(call<RemovePasskey>({passkey}).status, 204);
    EXPECT_EQ(call<RemovePasskey>({passkey}).status, 404);
    EXPECT_EQ(signIn(holder).status, 401);
}

TEST_F(PasskeyTest, IsMadeByWhoKnowsThePassword)
{
    registerAccount();
    EXPECT_EQ(fieldErrors(call<PasskeyCreationOptions>({{}})).count("currentPassword"), 1U);
    EXPECT_EQ(fieldErrors(call<PasskeyCreationOptions>({{"a guess"}})).count("currentPassword"), 1U);
    const std::string options = creation().options.text;
    EXPECT_NE(options.find(R"("rp":{"id":"orvane.example","name":"Orvane"})"), std::string::npos) << options;
    EXPECT_NE(options.find(R"("userVerification":"required")"), std::string::npos);
    EXPECT_NE(options.find(R"("id":")" + base64UrlText(me().id)), std::string::npos);
    EXPECT_EQ(save(Holder{}).status, 201);
    EXPECT_NE(creation().options.text.find(base64UrlText(Holder{}.id)), std::string::npos)
        << "a key that has it makes no other";
    signInLocally();
    EXPECT_EQ(call<PasskeyCreationOptions>({{}}).status, 200) << "there is no password to ask for";
}

TEST_F(PasskeyTest, AChallengeIsGoodOnceForFiveMinutesAndForWhomItWasGiven)
{
    Holder holder = owner();
    auto asked = question();
    EXPECT_EQ(answer(asked.challengeToken, holder.sign(asked.challenge)).status, 200);
    EXPECT_EQ(fieldErrors(answer(asked.challengeToken, holder.sign(asked.challenge))).count("challengeToken"),
              1U);
    asked = question();
    EXPECT_EQ(answer(asked.challengeToken, "{}").status, 400);
    EXPECT_EQ(answer(asked.challengeToken, holder.sign(asked.challenge)).status, 400)
        << "spent by the attempt";
    asked = question();
    now += 5min;
    EXPECT_EQ(answer(asked.challengeToken, holder.sign(asked.challenge)).status, 400);
    const auto other = question();
    EXPECT_EQ(answer(question().challengeToken, holder.sign(other.challenge)).status, 401);

    holder.id = "passkey-2";
    const auto options = creation();
    EXPECT_EQ(answer(options.challengeToken, holder.sign(challengeIn(options))).status, 400)
        << "it was for a new passkey";
    const auto graces = creation();
    registerAccount("ada@example.org");
    EXPECT_EQ(fieldErrors(saveAs(graces.challengeToken, holder.create(challengeIn(graces)), "n"))
                  .count("challengeToken"),
              1U);
    asked = question();
    EXPECT_EQ(saveAs(asked.challengeToken, holder.create(asked.challenge), "n").status, 400);
}

TEST_F(PasskeyTest, NobodyGetsInWithAnythingElse)
{
    const Holder holder = owner();
    const Holder other = owner("ada@example.org");
    const auto refused = [&](const char *what, auto change) {
        Holder changed = holder;
        change(changed);
        const int status = signIn(changed).status;
        EXPECT_TRUE(status == 401 || status == 400) << what << ": " << status;
    };
    refused("a page of another origin", [](Holder &one) { one.origin = "https://orvane.example.evil"; });
    refused("another port", [](Holder &one) { one.origin += ":8443"; });
    refused("within another page", [](Holder &one) { one.isFramed = true; });
    refused("a passkey of another server", [](Holder &one) { one.rpId = "evil.example"; });
    refused("what makes a passkey", [](Holder &one) { one.clientType = "webauthn.create"; });
    refused("another credential", [](Holder &one) { one.type = "password"; });
    refused("nobody there", [](Holder &one) { one.flags = 0x04; });
    refused("anybody there", [](Holder &one) { one.flags = 0x01; });
    refused("another signature", [](Holder &one) { one.forges = true; });
    refused("another key", [](Holder &one) { one.key = P256Key(); });
    refused("another account", [&](Holder &one) { one.userHandle = other.userHandle; });
    refused("no account", [](Holder &one) { one.userHandle.clear(); });
    refused("another passkey's name", [&](Holder &one) { one.id = other.id; });
    refused("something behind", [](Holder &one) { one.behind = "x"; });
    EXPECT_EQ(signIn(holder).status, 200);
    for (const char *text : {"[]", "null", "7", R"({"rawId":"*","type":"public-key"})"})
        EXPECT_EQ(answer(question().challengeToken, text).status, 400) << text;
}

TEST_F(PasskeyTest, ACopyIsKnownByItsCountAndAllEndsWithTheAccount)
{
    Holder holder = owner();
    EXPECT_EQ(signIn(holder).status, 200);
    EXPECT_EQ(signIn(holder).status, 200) << "it does not count";
    holder.counter = 7;
    EXPECT_EQ(signIn(holder).status, 200);
    EXPECT_EQ(signIn(holder).status, 401);
    holder.counter = 6;
    EXPECT_EQ(signIn(holder).status, 401);
    holder.counter = 0;
    EXPECT_EQ(signIn(holder).status, 401);
    holder.counter = 0xffff'ffff;
    EXPECT_EQ(signIn(holder).status, 200);

    EXPECT_EQ(call<DeleteAccount>({{"grace@example.org", "correct horse battery"}}).status, 204);
    EXPECT_EQ(signIn(holder).status, 401);
}

TEST_F(PasskeyTest, TakesNewPasskeysThatAreWhatTheySay)
{
    signInLocally();
    Holder taken;
    taken.id = "taken";
    EXPECT_EQ(save(taken).status, 201);
    const auto status = [&](const std::string &id, auto change) {
        Holder changed;
        changed.id = id;
        change(changed);
        return save(changed).status;
    };
    EXPECT_EQ(status("signed by itself", [](Holder &one) { one.format = "packed"; }), 201);
    EXPECT_EQ(status("of a maker", [](Holder &one) { one.format = "tpm"; }), 201);
    EXPECT_EQ(status(taken.id, [](Holder &) {}), 409);
    const auto forged = [](Holder &one) {
        one.format = "packed";
        one.forges = true;
    };
    EXPECT_EQ(status("a", forged), 400);
    EXPECT_EQ(status("a", [](Holder &one) { one.algorithm = -257; }), 400);
    EXPECT_EQ(status("a", [](Holder &one) { one.origin = "http://orvane.example"; }), 400);
    EXPECT_EQ(status("a", [](Holder &one) { one.rpId = "evil.example"; }), 400);
    EXPECT_EQ(status("a", [](Holder &one) { one.clientType = "webauthn.get"; }), 400);
    EXPECT_EQ(status("a", [](Holder &one) { one.flags = 0x01; }), 400);
    EXPECT_EQ(status("a", [](Holder &one) { one.behind = "x"; }), 400);
    EXPECT_EQ(save(Holder{}, " \t").status, 400);
    EXPECT_EQ(passkeys().size(), 3U);
    for (std::size_t i = passkeys().size(); i < 20; ++i)
        EXPECT_EQ(status("passkey " + std::to_string(i), [](Holder &) {}), 201);
    EXPECT_EQ(save(Holder{}).status, 409);
}

TEST_F(PasskeyTest, AreForAServerWithANameOfItsOwn)
{
    for (const auto &address :
         {std::optional<std::string>(), std::optional<std::string>("http://orvane.example"),
          std::optional<std::string>("https://192.0.2.7")}) {
        reopenAt(address);
        accessToken.clear();
        EXPECT_EQ(call<NativePasskeyOptions>({}).status, 404);
        EXPECT_EQ(answer("t", "{}").status, 404);
        registerAccount();
        EXPECT_EQ(call<PasskeyCreationOptions>({{"correct horse battery"}}).status, 404);
        EXPECT_EQ(saveAs("t", "{}", "n").status, 404);
        EXPECT_TRUE(passkeys().empty()) << "which is nothing to refuse";
    }
    reopenAt("https://Bücher.example:8443");
    EXPECT_EQ(question().rpId, "xn--bcher-kva.example");
}

TEST_F(PasskeyTest, TheCommandLineSaysWhereTheServerIs)
{
    const auto read = [](std::vector<const char *> arguments) {
        arguments.insert(arguments.begin(), {"orvane-server", "--data-dir", "/d"});
        return readServerOptions(static_cast<int>(arguments.size()), arguments.data());
    };
    EXPECT_EQ(read({"--public-address", "https://time.example.com:8443/"})->publicAddress,
              "https://time.example.com:8443");
    EXPECT_FALSE(read({})->isHosted);
    for (const char *wrong : {"", "time.example.com", "ftp://time.example.com", "https://", "https://a/b",
                              "https://a?b", "https://me@a", "https://a b"})
        EXPECT_FALSE(read({"--public-address", wrong})) << wrong;
    isHosted = true;
    openServer({.address = "192.0.2.7"}, "127.0.0.1");
    host = "192.0.2.7:0";
    const auto offered = expect<GetServer, Ok<ServerResponse>>({}).body;
    EXPECT_TRUE(offered.hosted);
    EXPECT_TRUE(offered.registrationOpen);
}

} // namespace orvane::server
