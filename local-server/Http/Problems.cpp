// SPDX-License-Identifier: GPL-3.0-or-later
#include "Http/Problems.h"

namespace orvane::server {

namespace {

HttpResponse problemText(int status, std::string json)
{
    HttpResponse response{status, {}, std::move(json)};
    response.headers.set("Content-Type", "application/problem+json");
    return response;
}

} // namespace

HttpResponse jsonBody(int status, std::string json)
{
    HttpResponse response{status, {}, std::move(json)};
    response.headers.set("Content-Type", "application/json");
    return response;
}

HttpResponse noBody(int status)
{
    return {status, {}, {}};
}

HttpResponse problem(int status, std::string title, std::string detail, std::string_view type)
{
    ProblemDetails details;
    if (!type.empty())
        details.type = std::string(type);
    details.title = std::move(title);
    details.status = status;
    if (!detail.empty())
        details.detail = std::move(detail);
    return problemText(status, encodeJson(details));
}

HttpResponse invalid(int status, FieldErrors errors)
{
    HttpValidationProblemDetails details;
    details.title = "The request was not accepted.";
    details.status = status;
    details.errors = std::move(errors);
    return problemText(status, encodeJson(details));
}

HttpResponse invalid(std::string_view field, std::string sentence)
{
    return invalid(422, {{std::string(field), {std::move(sentence)}}});
}

HttpResponse unauthorized(std::string detail)
{
    HttpResponse response = problem(401, "You are not signed in.", std::move(detail));
    response.headers.set("WWW-Authenticate", "Bearer");
    return response;
}

HttpResponse forbidden(std::string detail)
{
    return problem(403, "This is not allowed.", std::move(detail));
}

HttpResponse noSuch(std::string_view what)
{
    return problem(404, "Not found.", "There is no such " + std::string(what) + ".");
}

HttpResponse conflict(std::string detail)
{
    return problem(409, "This clashes with what is there.", std::move(detail));
}

HttpResponse nameTaken(std::string_view what)
{
    return conflict("There is already a " + std::string(what) + " of that name.");
}

HttpResponse tooMany(std::chrono::seconds wait)
{
    const std::string seconds = std::to_string(wait.count());
    HttpResponse response = problem(429, "Too many attempts.", "Try again in " + seconds + " seconds.");
    response.headers.set("Retry-After", seconds);
    return response;
}

HttpResponse entryChanged(const TimeEntryResponse &current)
{
    TimeEntryChangedProblem details;
    details.type = std::string(entryChangedProblemType);
    details.title = "This entry was changed meanwhile.";
    details.status = 412;
    details.current = current;
    return problemText(412, encodeJson(details));
}

} // namespace orvane::server
