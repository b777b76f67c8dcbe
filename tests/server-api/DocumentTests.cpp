// SPDX-License-Identifier: GPL-3.0-or-later
// Every schema and every operation of the document, by samples that were derived from it separately.
#include "LocalServer/LocalAccount.h"
#include "OrvaneAPI/Operations.h"
#include "OrvaneAPI/Routes.h"
#include "server-api/Samples.h"

#include <gtest/gtest.h>
#include <set>

namespace orvane {
namespace {

using samples::operationSamples;
using samples::schemaSamples;

RequestParts partsOf(const HttpRequest &request, const RouteMatch &match)
{
    const std::size_t query = std::min(request.path.find('?'), request.path.size() - 1);
    return {match.pathArguments, parseQuery(std::string_view(request.path).substr(query + 1)).value(),
            request.headers, request.body};
}

TEST(Document, hasAllSchemasAndOperations)
{
    EXPECT_EQ(schemaSamples().size(), 168U);
    EXPECT_EQ(operationSamples().size(), 142U);
}

TEST(Document, everySchemaReadsAndWritesAllItsMembers)
{
    for (const auto &schema : schemaSamples()) {
        EXPECT_EQ(schema.again(schema.full), schema.full) << schema.name;
        EXPECT_EQ(schema.again(schema.least), schema.leastWritten) << schema.name;
    }
}

TEST(Document, theTableListsEveryOperationInOrder)
{
    ASSERT_EQ(allOperations().size(), operationSamples().size());
    int order = 0;
    EXPECT_FALSE(operations::Login::wantsSignIn);
    for (const OperationInfo &operation : allOperations()) {
        EXPECT_EQ(operation.order, ++order);
        EXPECT_EQ(operation.name, operationSamples()[static_cast<std::size_t>(order - 1)].name);
        // The signed-in user's own data and workspaces are never open to everybody.
        if (operation.pathTemplate.starts_with("/api/me") ||
            operation.pathTemplate.starts_with("/api/workspaces"))
            EXPECT_TRUE(operation.wantsSignIn) << operation.name;
    }
}

TEST(Document, everyRequestWithAPasswordIsKnownAsOne)
{
    int withPassword = 0;
    for (const auto &sample : operationSamples()) {
        const HttpRequest request = sample.request();
        const bool isWith = request.body.contains("assword\":\"") || request.body.contains("assword\": \"");
        withPassword += isWith ? 1 : 0;
        EXPECT_EQ(holdsPassword(request), isWith) << sample.name;
    }
    EXPECT_GE(withPassword, 6);
}

TEST(Document, everyRequestFindsItsOperationAndReadsBack)
{
    for (const auto &sample : operationSamples()) {
        const HttpRequest request = sample.request();
        EXPECT_EQ(request.path.substr(0, request.path.find('?')), sample.path) << sample.name;
        const auto match = matchRoute(request.method, request.path);
        ASSERT_TRUE(match) << sample.name;
        EXPECT_EQ(match->operation->name, sample.name);
        EXPECT_TRUE(sample.readsBack(partsOf(request, *match))) << sample.name;
        EXPECT_EQ(request.headers.find("content-type").has_value(), !request.body.empty()) << sample.name;
    }
}

TEST(Document, everyDocumentedAnswerIsACaseOfItsOwn)
{
    for (const auto &sample : operationSamples()) {
        ASSERT_EQ(sample.cases, sample.answers.size() + 1) << sample.name;
        for (std::size_t index = 0; index < sample.answers.size(); ++index) {
            HttpResponse response{sample.answers[index].status, {}, std::string(sample.answers[index].body)};
            response.headers.set("Location", "https://elsewhere.example/");
            EXPECT_EQ(sample.caseOf(response), index) << sample.name << response.status;
        }
        EXPECT_EQ(sample.caseOf({599, {}, {}}), sample.cases - 1) << sample.name;
    }
}

} // namespace
} // namespace orvane
