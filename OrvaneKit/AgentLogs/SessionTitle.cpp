// SPDX-License-Identifier: GPL-3.0-or-later
#include "AgentLogs/SessionTitle.h"

#include <array>
#include <unicode/utf8.h>

namespace orvane::sessiontitle {

namespace {

/// A title is made of the beginning alone, however long the text is.
constexpr std::size_t looksAt = 16 * 1024;
constexpr char escape = '\x1B';
constexpr char bell = '\x07';

/// Behind an operating-system command ("ESC ] … BEL" or "ESC ] … ESC \"); `at` itself when there is none.
std::size_t afterSystemCommand(std::string_view text, std::size_t at)
{
    std::size_t end = at + 2;
    while (end < text.size() && text[end] != bell && text[end] != escape)
        ++end;
    if (end < text.size() && text[end] == bell)
        return end + 1;
    return text.substr(end).starts_with("\x1B\\") ? end + 2 : at;
}

/// Behind a control sequence ("ESC [ parameters, intermediates, final"); `at` itself when there is none.
std::size_t afterControlSequence(std::string_view text, std::size_t at)
{
    std::size_t end = at + 2;
    while (end < text.size() &&
           ((text[end] >= '0' && text[end] <= '9') || text[end] == ';' || text[end] == '?'))
        ++end;
    while (end < text.size() && text[end] >= ' ' && text[end] <= '/')
        ++end;
    return end < text.size() && text[end] >= '@' && text[end] <= '~' ? end + 1 : at;
}

std::size_t afterSequence(std::string_view text, std::size_t at)
{
    if (text.substr(at).starts_with("\x1B]"))
        return afterSystemCommand(text, at);
    if (text.substr(at).starts_with("\x1B["))
        return afterControlSequence(text, at);
    return at;
}

bool isBlank(UChar32 point)
{
    return point <= ' ' || (point >= 0x7F && point <= 0xA0) || point == 0x2028 || point == 0x2029;
}

std::string_view between(std::string_view text, std::string_view open, std::string_view close)
{
    const auto from = text.find(open);
    if (from == std::string_view::npos)
        return {};
    const auto to = text.find(close, from + open.size());
    return to == std::string_view::npos ? std::string_view{}
                                        : text.substr(from + open.size(), to - from - open.size());
}

} // namespace

std::string of(std::string_view text)
{
    text = text.substr(0, looksAt);
    std::string out;
    int points = 0;
    bool isSpaceDue = false;
    for (std::size_t at = 0; at < text.size() && points < longest;) {
        if (const std::size_t after = afterSequence(text, at); after != at) {
            at = after;
            continue;
        }
        UChar32 point = 0;
        auto next = static_cast<std::int32_t>(at);
        U8_NEXT_OR_FFFD(text.data(), next, static_cast<std::int32_t>(text.size()), point);
        at = static_cast<std::size_t>(next);
        if (isBlank(point)) {
            isSpaceDue = !out.empty();
            continue;
        }
        if (isSpaceDue) {
            out += ' ';
            isSpaceDue = false;
            if (++points == longest)
                break;
        }
        std::array<char, U8_MAX_LENGTH> bytes{};
        std::int32_t length = 0;
        U8_APPEND_UNSAFE(bytes.data(), length, point);
        out.append(bytes.data(), static_cast<std::size_t>(length));
        ++points;
    }
    while (out.ends_with(' '))
        out.pop_back();
    return out;
}

std::string ofPrompt(std::string_view prompt)
{
    const std::string_view command = between(prompt, "<command-name>", "</command-name>");
    if (command.empty())
        return of(prompt);
    const std::string_view arguments = between(prompt, "<command-args>", "</command-args>");
    return of(std::string(command.substr(0, looksAt)) + " " + std::string(arguments.substr(0, looksAt)));
}

bool isTelling(std::string_view prompt)
{
    return !prompt.starts_with("<command-") && !prompt.starts_with("<bash-input>");
}

} // namespace orvane::sessiontitle
