// SPDX-License-Identifier: GPL-3.0-or-later
#include "HandWrittenEntries.h"

#include <charconv>
#include <simdjson.h>

namespace handwritten {

using namespace orvane;
namespace od = simdjson::ondemand;

namespace {

bool digits(const char *text, int count, unsigned &out)
{
    out = 0;
    for (int i = 0; i < count; ++i) {
        const unsigned digit = static_cast<unsigned char>(text[i]) - unsigned{'0'};
        if (digit > 9)
            return false;
        out = out * 10 + digit;
    }
    return true;
}

/// "2026-03-01T09:30:00.123Z" and nothing else.
bool readInstant(std::string_view text, Instant &out)
{
    using namespace std::chrono;
    unsigned y = 0;
    unsigned m = 0;
    unsigned d = 0;
    unsigned hour = 0;
    unsigned minute = 0;
    unsigned second = 0;
    unsigned millisecond = 0;
    const char *at = text.data();
    if (text.size() != 24 || !digits(at, 4, y) || !digits(at + 5, 2, m) || !digits(at + 8, 2, d) ||
        !digits(at + 11, 2, hour) || !digits(at + 14, 2, minute) || !digits(at + 17, 2, second) ||
        !digits(at + 20, 3, millisecond) || at[4] != '-' || at[7] != '-' || at[10] != 'T' || at[13] != ':' ||
        at[16] != ':' || at[19] != '.' || at[23] != 'Z' || hour > 23 || minute > 59 || second > 59)
        return false;
    const year_month_day date{year{static_cast<int>(y)}, month{m}, day{d}};
    out = sys_days{date} + hours{hour} + minutes{minute} + seconds{second} + milliseconds{millisecond};
    return date.ok();
}

bool readText(simdjson::simdjson_result<od::value> value, std::string &out)
{
    std::string_view text;
    if (value.get_string().get(text) != simdjson::SUCCESS)
        return false;
    out.assign(text);
    return true;
}

/// The member may be absent or null.
bool readText(simdjson::simdjson_result<od::value> found, std::optional<std::string> &out)
{
    od::value value;
    if (found.get(value) != simdjson::SUCCESS || value.is_null())
        return true;
    std::string_view text;
    if (value.get_string().get(text) != simdjson::SUCCESS)
        return false;
    out.emplace(text);
    return true;
}

bool readShares(od::array array, std::vector<TimeShareResponse> &out)
{
    for (auto element : array) {
        od::object object;
        TimeShareResponse &share = out.emplace_back();
        if (element.get_object().get(object) != simdjson::SUCCESS ||
            !readText(object.find_field("projectId"), share.projectId) ||
            !readText(object.find_field("taskId"), share.taskId) ||
            object.find_field("isBillable").get_bool().get(share.isBillable) != simdjson::SUCCESS ||
            object.find_field("percent").get_int64().get(share.percent) != simdjson::SUCCESS ||
            !readText(object.find_field("description"), share.description))
            return false;
    }
    return true;
}

bool readTags(od::array array, std::vector<std::string> &out)
{
    for (auto element : array) {
        std::string_view text;
        if (element.get_string().get(text) != simdjson::SUCCESS)
            return false;
        out.emplace_back(text);
    }
    return true;
}

bool readEntry(od::object object, TimeEntryResponse &entry)
{
    od::array array;
    od::value value;
    std::string_view text;
    if (!readText(object.find_field("id"), entry.id) ||
        !readText(object.find_field("workspaceId"), entry.workspaceId) ||
        !readText(object.find_field("description"), entry.description) ||
        !readText(object.find_field("projectId"), entry.projectId) ||
        !readText(object.find_field("taskId"), entry.taskId) ||
        object.find_field("tagIds").get_array().get(array) != simdjson::SUCCESS ||
        !readTags(array, entry.tagIds) ||
        object.find_field("isBillable").get_bool().get(entry.isBillable) != simdjson::SUCCESS ||
        object.find_field("start").get_string().get(text) != simdjson::SUCCESS ||
        !readInstant(text, entry.start))
        return false;
    if (object.find_field("stop").get(value) == simdjson::SUCCESS && !value.is_null()) {
        if (value.get_string().get(text) != simdjson::SUCCESS || !readInstant(text, entry.stop.emplace()))
            return false;
    }
    return object.find_field("shares").get_array().get(array) == simdjson::SUCCESS &&
           readShares(array, entry.shares) && readText(object.find_field("version"), entry.version);
}

void writeText(std::string &out, std::string_view text)
{
    out += '"';
    std::size_t plain = 0;
    for (std::size_t i = 0; i < text.size(); ++i) {
        const auto c = static_cast<unsigned char>(text[i]);
        if (c >= 0x20 && c != '"' && c != '\\')
            continue;
        out.append(text, plain, i - plain);
        plain = i + 1;
        if (c == '"' || c == '\\') {
            out += '\\';
            out += text[i];
        } else {
            constexpr char hex[] = "0123456789abcdef";
            out += "\\u00";
            out += hex[c >> 4U];
            out += hex[c & 15U];
        }
    }
    out.append(text, plain);
    out += '"';
}

void writeInstant(std::string &out, Instant instant)
{
    using namespace std::chrono;
    const auto midnight = floor<days>(instant);
    const year_month_day date{midnight};
    const auto clock = static_cast<unsigned>(duration_cast<milliseconds>(instant - midnight).count());
    char text[] = "\"0000-00-00T00:00:00.000Z\"";
    const auto put = [&text](int at, int count, unsigned value) {
        for (int place = at + count - 1; place >= at; --place, value /= 10)
            text[place] = static_cast<char>('0' + value % 10);
    };
    put(1, 4, static_cast<unsigned>(static_cast<int>(date.year())));
    put(6, 2, static_cast<unsigned>(date.month()));
    put(9, 2, static_cast<unsigned>(date.day()));
    put(12, 2, clock / 3'600'000);
    put(15, 2, clock / 60'000 % 60);
    put(18, 2, clock / 1000 % 60);
    put(21, 3, clock % 1000);
    out.append(text, sizeof text - 1);
}

void writeOptional(std::string &out, const char *name, const std::optional<std::string> &text)
{
    if (!text)
        return;
    out += name;
    writeText(out, *text);
}

void writeShares(std::string &out, const std::vector<TimeShareResponse> &shares)
{
    out += ",\"shares\":[";
    for (const TimeShareResponse &share : shares) {
        if (&share != shares.data())
            out += ',';
        out += '{';
        writeOptional(out, "\"projectId\":", share.projectId);
        writeOptional(out, share.projectId ? ",\"taskId\":" : "\"taskId\":", share.taskId);
        out += share.projectId || share.taskId ? ",\"isBillable\":" : "\"isBillable\":";
        out += share.isBillable ? "true" : "false";
        out += ",\"percent\":";
        char percent[24];
        out.append(percent, std::to_chars(percent, percent + sizeof percent, share.percent).ptr);
        out += ",\"description\":";
        writeText(out, share.description);
        out += '}';
    }
    out += ']';
}

void writeEntry(std::string &out, const TimeEntryResponse &entry)
{
    out += "{\"id\":";
    writeText(out, entry.id);
    out += ",\"workspaceId\":";
    writeText(out, entry.workspaceId);
    out += ",\"description\":";
    writeText(out, entry.description);
    writeOptional(out, ",\"projectId\":", entry.projectId);
    writeOptional(out, ",\"taskId\":", entry.taskId);
    out += ",\"tagIds\":[";
    for (const std::string &tag : entry.tagIds) {
        if (&tag != entry.tagIds.data())
            out += ',';
        writeText(out, tag);
    }
    out += entry.isBillable ? "],\"isBillable\":true,\"start\":" : "],\"isBillable\":false,\"start\":";
    writeInstant(out, entry.start);
    if (entry.stop) {
        out += ",\"stop\":";
        writeInstant(out, *entry.stop);
    }
    writeShares(out, entry.shares);
    out += ",\"version\":";
    writeText(out, entry.version);
    out += '}';
}

} // namespace

bool read(std::string_view text, std::vector<TimeEntryResponse> &out)
{
    const simdjson::padded_string padded(text);
    od::parser parser;
    od::document document;
    od::array array;
    if (parser.iterate(padded).get(document) != simdjson::SUCCESS ||
        document.get_array().get(array) != simdjson::SUCCESS)
        return false;
    for (auto element : array) {
        od::object object;
        if (element.get_object().get(object) != simdjson::SUCCESS || !readEntry(object, out.emplace_back()))
            return false;
    }
    return true;
}

std::string write(const std::vector<TimeEntryResponse> &entries)
{
    std::string out = "[";
    for (const TimeEntryResponse &entry : entries) {
        if (&entry != entries.data())
            out += ',';
        writeEntry(out, entry);
    }
    return out + "]";
}

} // namespace handwritten
