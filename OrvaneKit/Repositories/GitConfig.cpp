// SPDX-License-Identifier: GPL-3.0-or-later
#include "Repositories/GitConfig.h"

#include <algorithm>

namespace orvane {

namespace {

// Carriage returns are there in files that an editor of another system wrote.
constexpr std::string_view spaces = " \t\r";

std::string_view trimmed(std::string_view text)
{
    const std::size_t first = text.find_first_not_of(spaces);
    return first == std::string_view::npos ? std::string_view()
                                           : text.substr(first, text.find_last_not_of(spaces) - first + 1);
}

bool isComment(std::string_view text)
{
    return text.starts_with('#') || text.starts_with(';');
}

/// Whether a line that begins with "[" opens the section of the remote; only a comment may follow it.
bool opensOrigin(std::string_view line)
{
    constexpr std::string_view header = "[remote \"origin\"]";
    const std::string_view rest = line.starts_with(header) ? trimmed(line.substr(header.size())) : "-";
    return rest.empty() || isComment(rest);
}

/// Reads a value from what follows its "=" up to the end of the text.
class ValueReader {
public:
    explicit ValueReader(std::string_view text) : m_text(text) {}

    std::string read()
    {
        while (!m_text.empty() && m_text.front() != '\n') {
            if (!m_isQuoted && isComment(m_text))
                break;
            readCharacter();
        }
        return m_value.substr(0, m_end);
    }

private:
    void readCharacter()
    {
        const char character = m_text.front();
        m_text.remove_prefix(1);
        if (character == '"')
            m_isQuoted = !m_isQuoted;
        else if (character == '\\')
            readEscape();
        else if (m_isQuoted || spaces.find(character) == std::string_view::npos)
            add(character);
        else if (!m_value.empty())
            m_value += character; // counts when something follows it
    }

    void readEscape()
    {
        if (m_text.starts_with("\r\n"))
            m_text.remove_prefix(1);
        const char character = m_text.empty() ? '\n' : m_text.front();
        constexpr std::string_view escapes = "\"\\ntb";
        constexpr std::string_view meanings = "\"\\\n\t\b";
        if (const std::size_t index = escapes.find(character); index != std::string_view::npos)
            add(meanings[index]);
        else if (character != '\n')
            return add('\\');
        m_text.remove_prefix(std::min<std::size_t>(1, m_text.size()));
    }

    void add(char character)
    {
        m_value += character;
        m_end = m_value.size();
    }

    std::string_view m_text;
    std::string m_value;
    std::size_t m_end = 0; ///< where the value ends without the spaces behind it
    bool m_isQuoted = false;
};

} // namespace

std::string GitConfig::origin(std::string_view text)
{
    bool isInside = false;
    while (!text.empty()) {
        const std::size_t end = std::min(text.find('\n'), text.size());
        const std::string_view line = trimmed(text.substr(0, end));
        if (line.starts_with('['))
            isInside = opensOrigin(line);
        else if (isInside && trimmed(line.substr(0, line.find('='))) == "url" && line.contains('='))
            return ValueReader(text.substr(text.find('=') + 1)).read();
        text.remove_prefix(std::min(end + 1, text.size()));
    }
    return {};
}

} // namespace orvane
