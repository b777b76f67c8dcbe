// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Support/Instant.h"
#include "Support/Json.h"

namespace orvane {

/// Puts JSON text together. Text that is not valid UTF-8 is mended on the way (each broken byte becomes
/// U+FFFD), since what could not be read back would be lost.
class JsonOutput {
public:
    explicit JsonOutput(JsonStyle style) : m_style(style) {}

    const JsonStyle &style() const { return m_style; }
    void raw(std::string_view text) { m_text.append(text); }
    /// A member's name and colon, with the comma that parts it from the one before; `first` becomes false.
    void name(std::string_view name, bool &first);

    void value(bool value) { raw(value ? "true" : "false"); }
    void value(std::int64_t value);
    void value(double value);
    void value(std::string_view value);
    void value(const std::string &text) { value(std::string_view(text)); }
    void value(const char *) = delete;
    void value(Instant value);
    void value(std::chrono::year_month_day value);
    void value(const RawJson &value) { raw(value.text); }

    std::string take() { return std::move(m_text); }

private:
    JsonStyle m_style;
    std::string m_text;
};

} // namespace orvane
