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

bool readText(od::value value, std::string &out)
{
    std::string_view text;
    if (value.get_string().get(text) != simdjson::SUCCESS)
        return false;
    out = std::string(text);
    return true;
}

bool readText(od::value value, std::optional<std::string> &out)
{
    return value.is_null() || readText(value, out.emplace());
}

bool readInstant(od::value value, Instant &out)
{
    std::string_view text;
    return value.get_string().get(text) == simdjson::SUCCESS && readInstant(text, out);
}

bool readTags(od::value value, std::vector<std::string> &out)
{
    od::array array;
    if (value.get_array().get(array) != simdjson::SUCCESS)
        return false;
    for (auto element : array) {
        std::string_view text;
        if (element.get_string().get(text) != simdjson::SUCCESS)
            return false;
        out.emplace_back(text);
    }
    return true;
}

bool readShare(od::object object, TimeShareResponse &share)
{
    for (auto element : object) {
        od::field field;
        if (std::move(element).get(field) != simdjson::SUCCESS)
            return false;
        const od::raw_json_string key = field.key();
        bool ok = true;
        if (key == "projectId")
            ok = readText(field.value(), share.projectId);
        else if (key == "taskId")
            ok = readText(field.value(), share.taskId);
        else if (key == "isBillable")
            ok = field.value().get_bool().get(share.isBillable) == simdjson::SUCCESS;
        else if (key == "percent")
            ok = field.value().get_int64().get(share.percent) == simdjson::SUCCESS;
        else if (key == "description")
            ok = readText(field.value(), share.description);
        if (!ok)
            return false;
    }
    return true;
}

bool readShares(od::value value, std::vector<TimeShareResponse> &out)
{
    od::array array;
    if (value.get_array().get(array) != simdjson::SUCCESS)
        return false;
    for (auto element : array) {
        od::object object;
        if (element.get_object().get(object) != simdjson::SUCCESS || !readShare(object, out.emplace_back()))
            return false;
    }
    return true;
}

bool readMember(od::field &field, TimeEntryResponse &entry)
{
    const od::raw_json_string key = field.key();
    if (key == "id")
        return readText(field.value(), entry.id);
    if (key == "workspaceId")
        return readText(field.value(), entry.workspaceId);
    if (key == "description")
        return readText(field.value(), entry.description);
    if (key == "projectId")
        return readText(field.value(), entry.projectId);
    if (key == "taskId")
        return readText(field.value(), entry.taskId);
    if (key == "tagIds")
        return readTags(field.value(), entry.tagIds);
    if (key == "isBillable")
        return field.value().get_bool().get(entry.isBillable) == simdjson::SUCCESS;
    if (key == "start")
        return readInstant(field.value(), entry.start);
    if (key == "stop")
        return field.value().is_null() || readInstant(field.value(), entry.stop.emplace());
    if (key == "shares")
        return readShares(field.value(), entry.shares);
    return key != "version" || readText(field.value(), entry.version);
}

bool readEntry(od::object object, TimeEntryResponse &entry)
{
    for (auto element : object) {
        od::field field;
        if (std::move(element).get(field) != simdjson::SUCCESS || !readMember(field, entry))
            return false;
    }
    return true;
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
