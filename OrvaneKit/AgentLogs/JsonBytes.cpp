// SPDX-License-Identifier: GPL-3.0-or-later
#include "AgentLogs/JsonBytes.h"

#include <bit>
#include <cstdint>
#include <cstring>

#if defined(__x86_64__)
#include <immintrin.h>
#elif defined(__ARM_NEON)
#include <arm_neon.h>
#endif

namespace orvane::jsonbytes {

namespace plain {
namespace {

/// Eight bytes in a register; a byte's high bit is its bit in a mask.
struct Block {
    static constexpr int size = 8;
    std::uint64_t bytes = 0;

    explicit Block(const char *at) { std::memcpy(&bytes, at, sizeof bytes); }
    static int place(std::uint64_t mask) { return std::countr_zero(mask) / 8; }
    static std::uint64_t equal(std::uint64_t bytes, char wanted)
    {
        constexpr std::uint64_t low = 0x7F7F'7F7F'7F7F'7F7FU;
        const std::uint64_t differing = bytes ^ (0x0101'0101'0101'0101U * static_cast<unsigned char>(wanted));
        return ~(((differing & low) + low) | differing | low);
    }
    std::uint64_t quotes() const { return equal(bytes, '"'); }
    std::uint64_t marks() const
    {
        // '[' and '{' differ in this bit alone, ']' and '}' too.
        const std::uint64_t folded = bytes | 0x2020'2020'2020'2020U;
        return quotes() | equal(folded, '{') | equal(folded, '}');
    }
};

#include "AgentLogs/JsonBytesScan.inc"

} // namespace
} // namespace plain

#if defined(__x86_64__)
// Functions of this part alone use these instructions; `choose` sees to it that the processor has them.
#pragma clang attribute push(__attribute__((target("avx2,bmi"))), apply_to = function)
namespace avx2 {
namespace {

struct Block {
    static constexpr int size = 32;
    __m256i bytes;

    explicit Block(const char *at) : bytes(_mm256_loadu_si256(reinterpret_cast<const __m256i *>(at))) {}
    static int place(std::uint32_t mask) { return __builtin_ctz(mask); }
    std::uint32_t quotes() const
    {
        return static_cast<std::uint32_t>(
            _mm256_movemask_epi8(_mm256_cmpeq_epi8(bytes, _mm256_set1_epi8('"'))));
    }
    std::uint32_t marks() const
    {
        const __m256i folded = _mm256_or_si256(bytes, _mm256_set1_epi8(0x20));
        const __m256i brackets = _mm256_or_si256(_mm256_cmpeq_epi8(folded, _mm256_set1_epi8('{')),
                                                 _mm256_cmpeq_epi8(folded, _mm256_set1_epi8('}')));
        return static_cast<std::uint32_t>(
            _mm256_movemask_epi8(_mm256_or_si256(brackets, _mm256_cmpeq_epi8(bytes, _mm256_set1_epi8('"')))));
    }
};

#include "AgentLogs/JsonBytesScan.inc"

} // namespace
} // namespace avx2
#pragma clang attribute pop
#elif defined(__ARM_NEON)
namespace neon {
namespace {

/// Every processor of this family has these instructions. A byte's mask is one bit in four.
struct Block {
    static constexpr int size = 16;
    uint8x16_t bytes;

    explicit Block(const char *at) : bytes(vld1q_u8(reinterpret_cast<const std::uint8_t *>(at))) {}
    static int place(std::uint64_t mask) { return __builtin_ctzll(mask) / 4; }
    static std::uint64_t bits(uint8x16_t found)
    {
        const uint8x8_t narrowed = vshrn_n_u16(vreinterpretq_u16_u8(found), 4);
        return vget_lane_u64(vreinterpret_u64_u8(narrowed), 0) & 0x8888'8888'8888'8888U;
    }
    uint8x16_t areQuotes() const { return vceqq_u8(bytes, vdupq_n_u8('"')); }
    std::uint64_t quotes() const { return bits(areQuotes()); }
    std::uint64_t marks() const
    {
        const uint8x16_t folded = vorrq_u8(bytes, vdupq_n_u8(0x20));
        const uint8x16_t brackets =
            vorrq_u8(vceqq_u8(folded, vdupq_n_u8('{')), vceqq_u8(folded, vdupq_n_u8('}')));
        return bits(vorrq_u8(brackets, areQuotes()));
    }
};

#include "AgentLogs/JsonBytesScan.inc"

} // namespace
} // namespace neon
#endif

const Scanner plainScanner{&plain::textEnd, &plain::bracketsEnd};

namespace {

Scanner choose()
{
#if defined(__x86_64__)
    __builtin_cpu_init();
    if (__builtin_cpu_supports("avx2") && __builtin_cpu_supports("bmi"))
        return {&avx2::textEnd, &avx2::bracketsEnd};
    return plainScanner;
#elif defined(__ARM_NEON)
    return {&neon::textEnd, &neon::bracketsEnd};
#else
    return plainScanner;
#endif
}

bool isSpace(char byte)
{
    return byte == ' ' || byte == '\t' || byte == '\r' || byte == '\n';
}

const char *passSpaces(const char *at, const char *end)
{
    while (at < end && isSpace(*at))
        ++at;
    return at;
}

/// Behind the value that begins at `at`; null when it does not end.
const char *passValue(const char *at, const char *end, const Scanner &bytes)
{
    if (at >= end)
        return nullptr;
    switch (*at) {
    case '"': {
        const char *quote = bytes.textEnd(at + 1, end);
        return quote == nullptr ? nullptr : quote + 1;
    }
    case '{':
    case '[':
        return bytes.bracketsEnd(at + 1, end, 1);
    default: {
        const char *from = at;
        while (at < end && *at != ',' && *at != '}' && *at != ']' && !isSpace(*at))
            ++at;
        return at == from ? nullptr : at;
    }
    }
}

} // namespace

const Scanner scanner = choose();

ObjectWalk::ObjectWalk(const char *at, const char *end, const Scanner &bytes)
    : m_bytes(bytes), m_at(passSpaces(at, end)), m_end(end)
{
    if (m_at < m_end && *m_at == '{')
        ++m_at;
    else
        m_at = nullptr;
}

const char *ObjectWalk::afterSpaces(const char *at) const
{
    return passSpaces(at, m_end);
}

const char *ObjectWalk::valueEnd(const char *at) const
{
    return passValue(at, m_end, m_bytes);
}

bool ObjectWalk::next()
{
    if (!m_isTaken)
        taken(m_at == nullptr ? nullptr : valueEnd(m_at));
    if (m_at == nullptr || m_isDone)
        return false;
    const char *at = afterSpaces(m_at);
    if (at < m_end && *at == '}') {
        m_isDone = true;
        m_at = at + 1;
        return false;
    }
    if (!m_isAtStart) {
        if (at >= m_end || *at != ',') {
            m_at = nullptr;
            return false;
        }
        at = afterSpaces(at + 1);
    }
    m_isAtStart = false;
    const char *quote = at < m_end && *at == '"' ? m_bytes.textEnd(at + 1, m_end) : nullptr;
    const char *colon = quote == nullptr ? m_end : afterSpaces(quote + 1);
    if (colon >= m_end || *colon != ':') {
        m_at = nullptr;
        return false;
    }
    m_name = {at + 1, quote};
    m_at = afterSpaces(colon + 1);
    m_isTaken = false;
    return true;
}

std::optional<std::string_view> ObjectWalk::text()
{
    if (m_isTaken || first() != '"')
        return {};
    const char *from = m_at + 1;
    const char *quote = m_bytes.textEnd(from, m_end);
    taken(quote == nullptr ? nullptr : quote + 1);
    if (quote == nullptr)
        return {};
    return std::string_view(from, quote);
}

std::string_view ObjectWalk::plainText(bool &hasEscapes)
{
    const std::string_view raw = text().value_or(std::string_view{});
    hasEscapes |= raw.find('\\') != std::string_view::npos;
    return raw;
}

void ObjectWalk::taken(const char *end)
{
    m_at = end;
    m_isTaken = true;
}

const char *ObjectWalk::finish()
{
    if (!m_isTaken)
        taken(valueEnd(m_at));
    if (m_at != nullptr && !m_isDone) {
        m_at = m_bytes.bracketsEnd(m_at, m_end, 1);
        m_isDone = true;
    }
    return m_at;
}

ListWalk::ListWalk(const char *at, const char *end, const Scanner &bytes)
    : m_bytes(bytes), m_next(at < end && *at == '[' ? at + 1 : nullptr), m_end(end)
{
}

bool ListWalk::next()
{
    while (m_next != nullptr) {
        const char *at = passSpaces(m_next, m_end);
        if (at < m_end && *at == ',')
            at = passSpaces(at + 1, m_end);
        if (at < m_end && *at == ']') {
            m_next = at + 1;
            return false;
        }
        if (at < m_end && *at == '{') {
            m_at = at;
            return true;
        }
        m_next = passValue(at, m_end, m_bytes);
    }
    return false;
}

namespace {

std::optional<unsigned> fourDigits(std::string_view raw, std::size_t at)
{
    if (at + 4 > raw.size())
        return {};
    unsigned value = 0;
    for (const char c : raw.substr(at, 4)) {
        const int digit = c >= '0' && c <= '9'   ? c - '0'
                          : c >= 'a' && c <= 'f' ? c - 'a' + 10
                          : c >= 'A' && c <= 'F' ? c - 'A' + 10
                                                 : -1;
        if (digit < 0)
            return {};
        value = value * 16 + static_cast<unsigned>(digit);
    }
    return value;
}

void appendUtf8(std::string &out, unsigned point)
{
    const auto put = [&out](unsigned byte) { out += static_cast<char>(byte); };
    if (point < 0x80) {
        put(point);
    } else if (point < 0x800) {
        put(0xC0 | point >> 6U);
        put(0x80 | (point & 0x3F));
    } else if (point < 0x10000) {
        put(0xE0 | point >> 12U);
        put(0x80 | (point >> 6U & 0x3F));
        put(0x80 | (point & 0x3F));
    } else {
        put(0xF0 | point >> 18U);
        put(0x80 | (point >> 12U & 0x3F));
        put(0x80 | (point >> 6U & 0x3F));
        put(0x80 | (point & 0x3F));
    }
}

bool isSurrogate(unsigned point)
{
    return point >= 0xD800 && point < 0xE000;
}

/// Reads what follows "\u" at `at`, a pair of surrogates together, and moves `at` behind it. A lone surrogate
/// comes back as it is; nothing when these are no digits.
std::optional<unsigned> takeEscapedPoint(std::string_view raw, std::size_t &at)
{
    const auto unit = fourDigits(raw, at);
    if (!unit)
        return {};
    at += 4;
    if (*unit < 0xD800 || *unit >= 0xDC00 || raw.substr(at, 2) != "\\u")
        return unit;
    const auto low = fourDigits(raw, at + 2);
    if (!low || *low < 0xDC00 || *low >= 0xE000)
        return unit;
    at += 6;
    return 0x10000 + ((*unit - 0xD800) << 10U) + (*low - 0xDC00);
}

bool appendEscapedPoint(std::string &out, std::string_view raw, std::size_t &at)
{
    constexpr unsigned replacement = 0xFFFD;
    const auto point = takeEscapedPoint(raw, at);
    if (point)
        appendUtf8(out, isSurrogate(*point) ? replacement : *point);
    return point.has_value();
}

} // namespace

std::optional<std::string> unescaped(std::string_view raw)
{
    std::string out;
    out.reserve(raw.size());
    for (std::size_t at = 0; at < raw.size();) {
        const std::size_t escape = std::min(raw.find('\\', at), raw.size());
        out.append(raw, at, escape - at);
        if (escape == raw.size())
            break;
        if (escape + 1 == raw.size())
            return {};
        constexpr std::string_view names = "\"\\/bfnrt";
        constexpr std::string_view meanings = "\"\\/\b\f\n\r\t";
        const char name = raw[escape + 1];
        at = escape + 2;
        if (const auto known = names.find(name); known != std::string_view::npos)
            out += meanings[known];
        else if (name != 'u' || !appendEscapedPoint(out, raw, at))
            return {};
    }
    return out;
}

std::string withWholeCharacters(std::string_view json)
{
    std::string out(json);
    for (std::size_t escape = out.find('\\'); escape != std::string::npos;) {
        std::size_t at = escape + 2;
        if (json.substr(escape + 1).starts_with('u')) {
            const auto point = takeEscapedPoint(json, at);
            if (point && isSurrogate(*point))
                out.replace(escape, 6, "\\ufffd");
        }
        escape = out.find('\\', at);
    }
    return out;
}

} // namespace orvane::jsonbytes
