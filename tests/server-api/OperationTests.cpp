// SPDX-License-Identifier: GPL-3.0-or-later
#include "OrvaneAPI/Operations.h"

#include <gtest/gtest.h>

namespace orvane {
namespace {

using namespace std::chrono;
using operations::CreateTimeEntry;
using operations::DeleteTimeEntry;
using operations::ListTimeEntries;
using operations::SuggestTimeEntries;
using operations::UpdateTimeEntry;

constexpr Instant morning = sys_days{year{2026} / March / 1} + 9h;

const std::string entryText =
    R"({"id":"e","workspaceId":"w","description":"","tagIds":[],"isBillable":true,"start":"2026-03-01T09:00:00.000Z",)"
    R"("shares":[],"version":"v1"})";

TimeEntryRequest entryRequest()
{
    TimeEntryRequest request;
    request.description = "Writing";
    request.start = morning;
    return request;
}

RequestParts partsWith(std::string body)
{
    return {{"w", "e"}, {}, {}, std::move(body)};
}

FieldErrors errorsOf(const TimeEntryRequest &request)
{
    const auto input = UpdateTimeEntry::read(partsWith(encodeJson(request)));
    return input ? FieldErrors{} : input.error().fieldErrors;
}

// Requests

TEST(Operation, escapesArgumentsAndWritesQueriesInOrder)
{
    const HttpRequest request = ListTimeEntries::request(
        {.workspaceId = "../w?x=1#\xC3\xA4 ", .from = morning, .to = morning + 1h + 1ms});
    EXPECT_EQ(request.method, HttpMethod::get);
    EXPECT_EQ(request.path,
              "/api/workspaces/..%2Fw%3Fx%3D1%23%C3%A4%20/time-entries?from=2026-03-01T09%3A00%3A00.000Z"
              "&to=2026-03-01T10%3A00%3A00.001Z");
    EXPECT_TRUE(request.body.empty());
    EXPECT_TRUE(request.headers.all().empty());
}

TEST(Operation, leavesAbsentParametersAndMembersOut)
{
    EXPECT_EQ(SuggestTimeEntries::request({.workspaceId = "w"}).path,
              "/api/workspaces/w/time-entries/suggestions");
    EXPECT_EQ(SuggestTimeEntries::request({.workspaceId = "w", .limit = 5}).path,
              "/api/workspaces/w/time-entries/suggestions?limit=5");
    const HttpRequest update =
        UpdateTimeEntry::request({.workspaceId = "w", .entryId = "e", .body = entryRequest()});
    EXPECT_EQ(update.headers.find("If-Match"), std::nullopt);
    EXPECT_EQ(update.headers.find("Content-Type"), "application/json");
    EXPECT_EQ(update.body, R"({"description":"Writing","tagIds":[],"isBillable":false,"shares":[],)"
                           R"("describeParts":false,"start":"2026-03-01T09:00:00.000Z"})");
}

TEST(Operation, sendsTheVersionThatAChangeWasMadeAgainst)
{
    const HttpRequest request =
        DeleteTimeEntry::request({.workspaceId = "w", .entryId = "e", .ifMatch = "v1"});
    EXPECT_EQ(request.method, HttpMethod::delete_);
    EXPECT_EQ(request.headers.find("if-match"), "v1");
}

// Answers

TEST(Operation, readsTheDocumentedAnswers)
{
    const auto created = CreateTimeEntry::output({201, {}, entryText});
    ASSERT_TRUE(created);
    EXPECT_EQ(std::get<Created<TimeEntryResponse>>(*created).body.version, "v1");

    const auto gone = DeleteTimeEntry::output({204, {}, "ignored"});
    ASSERT_TRUE(gone);
    EXPECT_TRUE(std::holds_alternative<NoContent>(*gone));

    const auto changed = DeleteTimeEntry::output(
        {412, {}, R"({"type":"urn:orvane:problem:entry-changed","current":)" + entryText + "}"});
    ASSERT_TRUE(changed);
    EXPECT_EQ(std::get<PreconditionFailed<TimeEntryChangedProblem>>(*changed).body.current.id, "e");
}

TEST(Operation, aSuccessThatCannotBeReadNamesThePlace)
{
    const auto output = ListTimeEntries::output(
        {200,
         {},
         "[" + entryText + R"(,{"id":"e","workspaceId":"w","description":"","tagIds":[],"isBillable":1}])"});
    ASSERT_FALSE(output);
    EXPECT_EQ(output.error().message, "[1].isBillable: is not true or false");
    EXPECT_EQ(ListTimeEntries::output({200, {}, "<html>"}).error().message, "is broken JSON");
    EXPECT_EQ(operations::StartExternalSignIn::output({302, {}, {}}).error().message,
              "The redirect has no Location");
}

TEST(Operation, unknownStatusesAndForeignFailuresKeepStatusAndBody)
{
    const Undocumented teapot{418, "short and stout"};
    EXPECT_EQ(std::get<Undocumented>(*ListTimeEntries::output({418, {}, teapot.body})), teapot);
    // A proxy's page in the place of a problem.
    const Undocumented page{403, "<html>"};
    EXPECT_EQ(std::get<Undocumented>(*ListTimeEntries::output({403, {}, page.body})), page);
}

TEST(Operation, redirectsAndFilesComeAsTheyAre)
{
    HttpHeaders headers;
    headers.set("location", "https://elsewhere.example/?a=b");
    const auto found = operations::StartExternalSignIn::output({302, headers, {}});
    ASSERT_TRUE(found);
    EXPECT_EQ(std::get<Found>(*found).location, "https://elsewhere.example/?a=b");

    const std::string bytes("PK\0\xFF", 4);
    const auto file = operations::ExportMyData::output({200, {}, bytes});
    ASSERT_TRUE(file);
    EXPECT_EQ(std::get<Ok<std::string>>(*file).body, bytes);
}

TEST(Operation, anEnumerationThatGrewIsReadFromAServerButNotFromAClient)
{
    const auto answer = operations::ListMembers::output(
        {200,
         {},
         R"([{"userId":"u","fullName":"","email":"","role":"emperor","groupIds":[],)"
         R"("joinedAt":"2026-03-01T09:00:00Z"}])"});
    ASSERT_TRUE(answer) << answer.error().message;
    EXPECT_EQ(std::get<Ok<std::vector<MemberResponse>>>(*answer).body.front().role,
              WorkspaceRole::unrecognized);

    const auto input = operations::UpdateMember::read(partsWith(R"({"role":"emperor"})"));
    ASSERT_FALSE(input);
    EXPECT_EQ(input.error().fieldErrors, (FieldErrors{{"role", {"Is none of the known values."}}}));
}

// What servers read

TEST(Operation, readsParametersFromWhereTheyStand)
{
    RequestParts parts = partsWith(encodeJson(entryRequest()));
    parts.headers.set("IF-MATCH", "v1");
    const auto input = UpdateTimeEntry::read(parts);
    ASSERT_TRUE(input);
    EXPECT_EQ(input->workspaceId, "w");
    EXPECT_EQ(input->entryId, "e");
    EXPECT_EQ(input->ifMatch, "v1");
    EXPECT_EQ(input->body, entryRequest());
}

TEST(Operation, refusesParametersThatAreMissingWrongOrTwice)
{
    const auto errors = [](RequestParts parts) {
        parts.pathArguments = {"w"};
        const auto input = ListTimeEntries::read(parts);
        return input ? FieldErrors{} : input.error().fieldErrors;
    };
    const std::pair<std::string, std::string> from{"from", "2026-03-01T09:00:00Z"};
    const std::pair<std::string, std::string> to{"to", "2026-03-02T09:00:00+01:00"};
    EXPECT_EQ(errors({.query = {from, to, {"other", ""}}}), FieldErrors{});
    EXPECT_EQ(errors({.query = {from}}), (FieldErrors{{"to", {"Is missing."}}}));
    EXPECT_EQ(errors({.query = {from, to, to}}), (FieldErrors{{"to", {"Must be given only once."}}}));
    EXPECT_EQ(errors({.query = {{"from", "yesterday"}, {"to", ""}}}),
              (FieldErrors{{"from", {"Must be an instant such as 2026-03-01T09:30:00Z."}},
                           {"to", {"Must be an instant such as 2026-03-01T09:30:00Z."}}}));
    EXPECT_EQ(SuggestTimeEntries::read({{"w"}, {{"limit", "51"}}, {}, {}}).error().fieldErrors,
              (FieldErrors{{"limit", {"Must be at most 50."}}}));
    for (const char *limit : {"", " 5", "5.0", "+5", "five", "99999999999999999999"})
        EXPECT_EQ(SuggestTimeEntries::read({{"w"}, {{"limit", limit}}, {}, {}}).error().fieldErrors,
                  (FieldErrors{{"limit", {"Must be a whole number."}}}))
            << limit;
}

TEST(Operation, aBodyThatIsNoJsonHasAMessageAndNoFieldErrors)
{
    for (const char *body : {"", "{", "description=x", R"({"description":1,)", "\xFF"}) {
        const auto input = UpdateTimeEntry::read(partsWith(body));
        ASSERT_FALSE(input) << body;
        EXPECT_EQ(input.error(), (RequestProblem{400, "The body of the request is broken JSON.", {}}))
            << body;
    }
    EXPECT_EQ(UpdateTimeEntry::read(partsWith("[]")).error().message,
              "The body of the request is not an object.");
}

TEST(Operation, aBodyOfTheWrongShapeNamesTheMember)
{
    std::string body = encodeJson(entryRequest());
    EXPECT_EQ(UpdateTimeEntry::read(partsWith(R"({"description":"x"})")).error().fieldErrors,
              (FieldErrors{{"tagIds", {"Is missing."}}}));
    body.replace(body.find("\"tagIds\":[]"), 11, "\"tagIds\":[\"a\",7]");
    EXPECT_EQ(UpdateTimeEntry::read(partsWith(body)).error().fieldErrors,
              (FieldErrors{{"tagIds[1]", {"Is not a text."}}}));
}

TEST(Operation, lengthsAreCountedInCharacters)
{
    TimeEntryRequest request = entryRequest();
    request.description.clear();
    for (int i = 0; i < 3000; ++i)
        request.description += i % 2 == 0 ? "\xF0\x9F\x98\x80" : "\xC3\xA4";
    EXPECT_EQ(errorsOf(request), FieldErrors{});
    request.description += "x";
    EXPECT_EQ(errorsOf(request), (FieldErrors{{"description", {"Must be at most 3000 characters."}}}));
}

TEST(Operation, everyConstraintThatIsBrokenIsNamed)
{
    TimeEntryRequest request = entryRequest();
    request.projectId = "";
    request.taskId = std::string(65, 't');
    request.tagIds = {"fine", ""};
    request.shares.resize(2);
    request.shares[0].percent = 101;
    request.shares[1].percent = 0;
    request.shares[1].projectId = "";
    EXPECT_EQ(errorsOf(request), (FieldErrors{{"projectId", {"Must not be empty."}},
                                              {"taskId", {"Must be at most 64 characters."}},
                                              {"tagIds[1]", {"Must not be empty."}},
                                              {"shares[0].percent", {"Must be at most 100."}},
                                              {"shares[1].percent", {"Must be at least 1."}},
                                              {"shares[1].projectId", {"Must not be empty."}}}));

    request = entryRequest();
    request.tagIds = std::vector<std::string>(101, "t");
    EXPECT_EQ(errorsOf(request), (FieldErrors{{"tagIds", {"Must have at most 100 items."}}}));
}

TEST(Operation, otherKindsOfConstraintsAreNamedToo)
{
    const auto withdrawn = operations::WithdrawAgentProposals::read({{"w"}, {}, {}, R"({"ids":[]})"});
    ASSERT_FALSE(withdrawn);
    EXPECT_EQ(withdrawn.error().fieldErrors, (FieldErrors{{"ids", {"Must have at least 1 item."}}}));

    WebExternalExchangeRequest exchange{.code = "c", .codeVerifier = std::string(42, 'v')};
    const auto exchanged = operations::WebExchangeExternalSignIn::read({{}, {}, {}, encodeJson(exchange)});
    ASSERT_FALSE(exchanged);
    EXPECT_EQ(exchanged.error().fieldErrors,
              (FieldErrors{{"codeVerifier", {"Must be at least 43 characters."}}}));

    EXPECT_EQ(
        operations::UpdatePreferences::read({{}, {}, {}, R"({"weekStart":7,"timeFormat":"13h"})"})
            .error()
            .fieldErrors,
        (FieldErrors{{"weekStart", {"Must be at most 6."}}, {"timeFormat", {"Must be one of: 24h, 12h."}}}));
    EXPECT_EQ(
        operations::SavePasskey::read({{}, {}, {}, R"({"name":"n","challengeToken":"t","credential":[1]})"})
            .error()
            .fieldErrors,
        (FieldErrors{{"credential", {"Must be an object."}}}));
}

TEST(Operation, anAbsentListThatMeansNoChangeIsToldFromAnEmptyOne)
{
    const auto read = [](const char *body) {
        return operations::UpdateMember::read({{"w", "m"}, {}, {}, body});
    };
    EXPECT_EQ(read("{}")->body.groupIds, std::nullopt);
    EXPECT_EQ(read(R"({"groupIds":[]})")->body.groupIds, std::vector<std::string>{});
    EXPECT_EQ(encodeJson(UpdateMemberRequest{}), "{}");
    EXPECT_EQ(encodeJson(UpdateMemberRequest{.groupIds = std::vector<std::string>{}}), R"({"groupIds":[]})");
}

} // namespace
} // namespace orvane
