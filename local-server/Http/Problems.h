// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "OrvaneAPI/Checks.h"
#include "OrvaneAPI/HttpMessage.h"
#include "OrvaneAPI/ProblemTypes.h"
#include "OrvaneAPI/Schemas.h"

#include <chrono>
#include <string>

/// The answers that handlers give. Every failure is a problem-details body whose title and detail together
/// are what a person reads.
namespace orvane::server {

HttpResponse jsonBody(int status, std::string json);
template <class T>
HttpResponse jsonAnswer(int status, const T &body)
{
    return jsonBody(status, encodeJson(body));
}
HttpResponse noBody(int status);

HttpResponse problem(int status, std::string title, std::string detail, std::string_view type = {});
/// 400 for a request that is not what the operation takes, 422 for one that a rule refuses.
HttpResponse invalid(int status, FieldErrors errors);
HttpResponse invalid(std::string_view field, std::string sentence);
HttpResponse unauthorized(std::string detail);
HttpResponse forbidden(std::string detail);
/// `what` as in "There is no such project.".
HttpResponse noSuch(std::string_view what);
HttpResponse conflict(std::string detail);
/// `what` as in "There is already a project of that name.".
HttpResponse nameTaken(std::string_view what);
HttpResponse tooMany(std::chrono::seconds wait);
HttpResponse entryChanged(const TimeEntryResponse &current);

} // namespace orvane::server
