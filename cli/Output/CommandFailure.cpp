// SPDX-License-Identifier: GPL-3.0-or-later
#include "Output/CommandFailure.h"

#include <array>
#include <utility>

namespace orvane {

namespace {

/// A member's name in words: "clientId" is the client, "hourlyRate" the hourly rate.
std::string fieldWords(const std::string &member)
{
    constexpr std::array<std::pair<std::string_view, std::string_view>, 3> others{
        {{"stop", "end"}, {"email", "e-mail"}, {"fullName", "name"}}};
    for (const auto &[name, words] : others) {
        if (member == name)
            return std::string(words);
    }
    std::string words;
    for (const char c : member) {
        const bool isUpper = c >= 'A' && c <= 'Z';
        if (c == '[' || c == '.' || isUpper)
            words += ' ';
        if (c != '[' && c != ']' && c != '.')
            words += isUpper ? static_cast<char>(c - 'A' + 'a') : c;
    }
    if (words.ends_with(" id") || words.ends_with(" ids"))
        words.resize(words.rfind(' '));
    return words.starts_with("is ") ? words.substr(3) : words;
}

} // namespace

std::string refusalText(const APIError &refusal)
{
    std::string text;
    for (const auto &[field, messages] : refusal.fieldErrors) {
        std::string name = fieldWords(field);
        if (!name.empty() && name.front() >= 'a' && name.front() <= 'z')
            name.front() = static_cast<char>(name.front() - 'a' + 'A');
        for (const std::string &message : messages)
            text += (text.empty() ? "" : " ") + (name.empty() ? "" : name + ": ") + message;
    }
    return text.empty() ? refusal.errorDescription() : text;
}

CommandFailure CommandFailure::of(std::string message)
{
    return {.message = std::move(message)};
}

CommandFailure CommandFailure::usage(std::string message)
{
    return {.exitStatus = ExitStatus::usage, .message = std::move(message)};
}

CommandFailure CommandFailure::of(const CallError &error, std::string message)
{
    CommandFailure failure{.message = message.empty() ? describe(error) : std::move(message)};
    if (const auto *answer = std::get_if<APIError>(&error)) {
        if (failure.message == answer->errorDescription())
            failure.message = refusalText(*answer);
        failure.status = answer->status;
        failure.type = answer->type;
        failure.title = answer->title;
        failure.detail = answer->detail;
        if (!answer->fieldErrors.empty())
            failure.fieldErrors = answer->fieldErrors;
    }
    return failure;
}

CommandFailure CommandFailure::of(const AccountError &error)
{
    return error.error ? of(*error.error, error.message) : of(error.message);
}

CommandFailure CommandFailure::of(const StoreError &error)
{
    return of(describe(error));
}

} // namespace orvane
