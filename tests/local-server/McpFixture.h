// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "AgentFixture.h"
#include "Agents/AgentPace.h"
#include "Agents/McpMessage.h"

namespace orvane::server {

/// The account on this computer, in Paris on a Sunday at ten, and an agent that it has let in.
class McpFixture : public AgentFixture {
protected:
    McpFixture()
    {
        (void)signInLocally();
        token = signAgentIn({workspaceId}).access;
    }

    HttpRequest post(const std::string &body) const
    {
        HttpRequest request{HttpMethod::post, "/mcp", {}, body};
        request.headers.set("Content-Type", "application/json");
        request.headers.set("Accept", "application/json, text/event-stream");
        return request;
    }
    HttpResponse tell(const std::string &body) { return send(post(body), token); }
    /// The answer's result or error to one request.
    QJsonObject ask(const std::string &method, const std::string &params = "{}")
    {
        const HttpResponse response =
            tell(R"({"jsonrpc": "2.0", "id": 7, "method": ")" + method + R"(", "params": )" + params + "}");
        EXPECT_EQ(response.status, 200) << response.body;
        const QJsonObject answer = json(response);
        EXPECT_EQ(answer[QLatin1String("id")].toInt(), 7);
        return answer;
    }
    static int errorCode(const QJsonObject &answer)
    {
        return answer[QLatin1String("error")][QLatin1String("code")].toInt();
    }
    QJsonObject resultOf(const std::string &tool, const std::string &arguments)
    {
        const QJsonObject answer =
            ask("tools/call", R"({"name": ")" + tool + R"(", "arguments": )" + arguments + "}");
        EXPECT_TRUE(answer.contains(QLatin1String("result"))) << tool;
        return answer[QLatin1String("result")].toObject();
    }
    /// What a tool gives; a refusal fails the test.
    QJsonObject call(const std::string &tool, const std::string &arguments = "{}")
    {
        const QJsonObject result = resultOf(tool, arguments);
        EXPECT_FALSE(result[QLatin1String("isError")].toBool()) << textOf(result);
        return result[QLatin1String("structuredContent")].toObject();
    }
    /// The sentence of a tool that refuses; empty when it does not.
    std::string refusal(const std::string &tool, const std::string &arguments = "{}")
    {
        const QJsonObject result = resultOf(tool, arguments);
        return result[QLatin1String("isError")].toBool() ? textOf(result) : std::string();
    }
    static std::string textOf(const QJsonObject &result)
    {
        return result[QLatin1String("content")][0][QLatin1String("text")].toString().toStdString();
    }
    /// That member of each item of a list.
    static std::vector<std::string> each(const QJsonObject &answer, const char *list, const char *member)
    {
        std::vector<std::string> out;
        for (const auto &item : answer[QLatin1String(list)].toArray())
            out.push_back(item[QLatin1String(member)].toString().toStdString());
        return out;
    }
    std::vector<std::string> toolNames()
    {
        return each(ask("tools/list")[QLatin1String("result")].toObject(), "tools", "name");
    }

    TimeEntryResponse entry(std::string id, Instant start, std::optional<Instant> stop,
                            std::string description = "Write the README")
    {
        CreateTimeEntryRequest body;
        body.id = std::move(id);
        body.description = std::move(description);
        body.start = start;
        body.stop = stop;
        using operations::CreateTimeEntry;
        return expect<CreateTimeEntry, Created<TimeEntryResponse>>({workspaceId, body}).body;
    }
    /// One entry to propose, yesterday from nine to ten in Paris.
    static std::string oneEntry(const std::string &more = {})
    {
        return R"({"entries": [{"description": "Review", "start": "2026-02-28T09:00:00+01:00", )"
               R"("stop": "2026-02-28T10:00:00+01:00")" +
               more + "}]}";
    }
    std::string proposed()
    {
        const auto ids = each(call("propose_entries", oneEntry()), "outcomes", "proposalId");
        EXPECT_EQ(ids.size(), 1U);
        return ids.empty() ? std::string() : ids.front();
    }

    std::string token;
};

} // namespace orvane::server
