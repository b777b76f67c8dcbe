// SPDX-License-Identifier: GPL-3.0-or-later
#include "Http/RefusalText.h"

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

} // namespace orvane
