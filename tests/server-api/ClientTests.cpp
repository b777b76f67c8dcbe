// SPDX-License-Identifier: GPL-3.0-or-later
#include "OrvaneAPI/Client.h"

#include <QCoro/QCoroFuture>
#include <QPromise>
#include <gtest/gtest.h>

namespace orvane {
namespace {

/// Keeps what is sent; answers when a test says so.
struct Wire {
    std::vector<std::pair<std::string, HttpRequest>> sent;
    QPromise<Result<HttpResponse, std::string>> answer;
};

class WireChannel {
public:
    using Error = std::string;

    explicit WireChannel(std::shared_ptr<Wire> wire) : m_wire(std::move(wire)) {}

    Task<Result<HttpResponse, Error>> send(HttpRequest request, std::string_view operationName)
    {
        m_wire->sent.emplace_back(operationName, std::move(request));
        return answered(m_wire);
    }
    static Error decodingFailure(DecodingError error) { return "unreadable: " + error.message; }

private:
    static Task<Result<HttpResponse, Error>> answered(std::shared_ptr<Wire> wire)
    {
        auto answer = co_await wire->answer.future();
        co_return answer;
    }

    std::shared_ptr<Wire> m_wire;
};

class ApiClient : public ::testing::Test {
protected:
    ApiClient() { m_wire->answer.start(); }

    void answer(Result<HttpResponse, std::string> response)
    {
        m_wire->answer.addResult(std::move(response));
        m_wire->answer.finish();
    }

    std::shared_ptr<Wire> m_wire = std::make_shared<Wire>();
    Client<WireChannel> m_client{WireChannel(m_wire)};
};

TEST_F(ApiClient, sendsTheOperationsRequestAndGivesItsOutput)
{
    auto call = m_client.updateTag({.workspaceId = "w", .tagId = "t 1", .body = {.name = "Focus"}});
    ASSERT_EQ(m_wire->sent.size(), 1U);
    EXPECT_EQ(m_wire->sent[0].first, "UpdateTag");
    EXPECT_EQ(m_wire->sent[0].second, operations::UpdateTag::request(
                                          {.workspaceId = "w", .tagId = "t 1", .body = {.name = "Focus"}}));
    answer(HttpResponse{200, {}, R"({"id":"t 1","workspaceId":"w","name":"Focus"})"});
    const auto output = QCoro::waitFor(std::move(call));
    ASSERT_TRUE(output);
    EXPECT_EQ(std::get<Ok<TagResponse>>(*output).body, (TagResponse{"t 1", "w", "Focus"}));
}

TEST_F(ApiClient, passesTheChannelsFailuresOn)
{
    auto call = m_client.getMe();
    answer(failure(std::string("no network")));
    EXPECT_EQ(QCoro::waitFor(std::move(call)).error(), "no network");
}

TEST_F(ApiClient, tellsTheChannelOfAnUnreadableAnswer)
{
    auto call = m_client.getMe();
    answer(HttpResponse{200, {}, R"({"id":7})"});
    EXPECT_EQ(QCoro::waitFor(std::move(call)).error(), "unreadable: id: is not a text");
}

TEST_F(ApiClient, mayBeDroppedWhileACallIsUnderWay)
{
    auto client = std::make_unique<Client<WireChannel>>(WireChannel(m_wire));
    auto call = client->getMe();
    client.reset();
    answer(HttpResponse{503, {}, "busy"});
    const auto output = QCoro::waitFor(std::move(call));
    ASSERT_TRUE(output);
    EXPECT_EQ(std::get<Undocumented>(*output), (Undocumented{503, "busy"}));
}

} // namespace
} // namespace orvane
