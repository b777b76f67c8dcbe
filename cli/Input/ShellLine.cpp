// SPDX-License-Identifier: GPL-3.0-or-later
#include "Input/ShellLine.h"

#include <algorithm>
#include <array>
#include <cstdlib>

namespace orvane {

namespace {

using Quote = ShellWord::Quote;

bool isSpace(char c)
{
    return c == ' ' || c == '\t' || c == '\n';
}

bool isNameCharacter(char c)
{
    return c == '_' || (c >= '0' && c <= '9') || (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z');
}

/// Divides a line into words, a character at a time.
class Reader {
public:
    Reader(std::string_view line, Shell shell) : m_line(line), m_shell(shell) {}

    std::vector<ShellWord> read() &&
    {
        while (m_at < m_line.size()) {
            if (m_quote == Quote::none && isSpace(m_line[m_at]))
                endWord();
            else
                readOne();
        }
        endWord();
        return std::move(m_words);
    }

private:
    void endWord()
    {
        const bool isLast = m_at >= m_line.size();
        if (m_isOpen || isLast) {
            m_word.places.push_back(m_word.raw.size());
            m_word.quotes.push_back(m_quote);
            m_words.push_back(std::move(m_word));
        }
        m_word = {};
        m_isOpen = false;
        ++m_at;
    }

    void readOne()
    {
        const bool isFirst = !m_isOpen;
        m_isOpen = true;
        const char c = m_line[m_at];
        switch (m_quote) {
        case Quote::none:
            return readBare(c, isFirst);
        case Quote::dual:
            return readInDual(c);
        case Quote::single:
            return readInSingle(c);
        case Quote::escaped:
            return readEscaped(c);
        }
    }

    void readBare(char c, bool isFirst)
    {
        if (c == '\'' || c == '"')
            return open(c == '"' ? Quote::dual : Quote::single, 1);
        if (c == '\\')
            return takeEscaped();
        if (c == '$' && m_shell != Shell::fish && next() == '\'')
            return open(Quote::escaped, 2);
        if (c == '$' || c == '`' || (c == '(' && m_shell == Shell::fish))
            return takeExpansion(c);
        if (c == '~' && isFirst && (next() == '/' || next() == '\0' || isSpace(next())))
            return expand(1, environment("HOME"));
        take(1, {});
    }

    void readInDual(char c)
    {
        if (c == '"')
            return close();
        const std::string_view escapable = m_shell == Shell::fish ? "\"\\$\n" : "\"\\$`\n";
        if (c == '\\' && next() != '\0' && escapable.find(next()) != std::string_view::npos)
            return takeEscaped();
        if (c == '$' || (c == '`' && m_shell != Shell::fish))
            return takeExpansion(c);
        take(1, {});
    }

    void readInSingle(char c)
    {
        if (c == '\'')
            return close();
        if (c == '\\' && m_shell == Shell::fish && (next() == '\'' || next() == '\\'))
            return takeEscaped();
        take(1, {});
    }

    void readEscaped(char c)
    {
        if (c == '\'')
            return close();
        if (c != '\\')
            return take(1, {});
        m_word.isOpaque = m_word.isOpaque || (next() != '\'' && next() != '\\');
        takeEscaped();
    }

    char next() const { return m_at + 1 < m_line.size() ? m_line[m_at + 1] : '\0'; }

    void open(Quote quote, std::size_t size)
    {
        keep(size);
        m_quote = quote;
    }

    void close()
    {
        keep(1);
        m_quote = Quote::none;
    }

    void keep(std::size_t size)
    {
        m_word.raw.append(m_line.substr(m_at, size));
        m_at += size;
    }

    /// So many characters of the line stand for this text, without one for themselves.
    void take(std::size_t size, const std::optional<std::string> &text)
    {
        const std::size_t place = m_word.raw.size();
        const std::string_view typed = m_line.substr(m_at, size);
        for (const char c : text ? std::string_view(*text) : typed) {
            m_word.text += c;
            m_word.places.push_back(place);
            m_word.quotes.push_back(m_quote);
        }
        keep(size);
    }

    /// A backslash and what it takes the meaning from; with a line end it is nothing at all.
    void takeEscaped()
    {
        if (next() == '\0')
            return keep(1);
        take(2, next() == '\n' ? std::string() : std::string(1, next()));
    }

    void takeExpansion(char c)
    {
        std::size_t begin = m_at + 1;
        const bool isBraced = c == '$' && next() == '{' && m_shell != Shell::fish;
        begin += isBraced ? 1 : 0;
        std::size_t end = begin;
        while (c == '$' && end < m_line.size() && isNameCharacter(m_line[end]))
            ++end;
        const bool isClosed = !isBraced || (end < m_line.size() && m_line[end] == '}');
        const auto value = end > begin && isClosed
                               ? environment(std::string(m_line.substr(begin, end - begin)))
                               : std::nullopt;
        const bool isPlainSign = c == '$' && (next() == '\0' || isSpace(next()) || next() == '"');
        if (isPlainSign)
            return take(1, {});
        m_word.isOpaque = m_word.isOpaque || !value;
        expand(value ? end + (isBraced ? 1 : 0) - m_at : 1, value);
    }

    void expand(std::size_t size, const std::optional<std::string> &value)
    {
        m_word.isExpanded = true;
        take(size, value);
    }

    static std::optional<std::string> environment(const std::string &name)
    {
        const char *value = std::getenv(name.c_str());
        return value ? std::optional<std::string>(value) : std::nullopt;
    }

    std::string_view m_line;
    Shell m_shell;
    std::size_t m_at = 0;
    Quote m_quote = Quote::none;
    bool m_isOpen = false;
    ShellWord m_word;
    std::vector<ShellWord> m_words;
};

/// Letters that mean nothing to a shell wherever they stand.
bool isPlain(char c)
{
    constexpr std::string_view signs = "@%+:,./-";
    return isNameCharacter(c) || static_cast<unsigned char>(c) >= 0x80 ||
           signs.find(c) != std::string_view::npos;
}

} // namespace

std::optional<Shell> shellNamed(std::string_view name)
{
    constexpr std::array shells = {std::pair{std::string_view("bash"), Shell::bash},
                                   std::pair{std::string_view("zsh"), Shell::zsh},
                                   std::pair{std::string_view("fish"), Shell::fish}};
    const auto *found = std::ranges::find(shells, name, &std::pair<std::string_view, Shell>::first);
    return found == shells.end() ? std::nullopt : std::optional(found->second);
}

std::vector<ShellWord> shellWords(std::string_view line, Shell shell)
{
    return Reader(line, shell).read();
}

std::string typedForBash(std::string_view text, ShellWord::Quote quote)
{
    std::string typed;
    for (const char c : text) {
        if (quote == Quote::single)
            typed += c == '\'' ? std::string("'\\''") : std::string(1, c);
        else if (quote == Quote::dual && c == '!')
            typed += "\"\\!\"";
        else if (quote == Quote::dual)
            typed += std::string_view("\"\\$`").find(c) != std::string_view::npos ? std::string{'\\', c}
                                                                                  : std::string(1, c);
        else
            typed += isPlain(c) ? std::string(1, c) : std::string{'\\', c};
    }
    return typed;
}

std::optional<std::string> bashReply(const ShellWord &word, std::string_view replaced, std::string_view text,
                                     std::size_t keptText)
{
    if (!word.raw.ends_with(replaced))
        return std::nullopt;
    const std::size_t keptByBash = word.raw.size() - replaced.size();
    const auto first = std::ranges::lower_bound(word.places, keptByBash);
    const auto from = std::max(keptText, static_cast<std::size_t>(first - word.places.begin()));
    if (from >= word.places.size() || word.quotes[from] == Quote::escaped || from > text.size() ||
        text.substr(0, from) != std::string_view(word.text).substr(0, from))
        return std::nullopt;
    std::string reply = word.raw.substr(keptByBash, word.places[from] - keptByBash) +
                        typedForBash(text.substr(from), word.quotes[from]);
    // Bash closes the quote of a completed word, unless the word ends in such a quote already, whatever that
    // one is for.
    const Quote quote = word.quotes.back();
    const char mark = quote == Quote::dual ? '"' : '\'';
    if (quote != Quote::none && reply.ends_with(mark))
        reply += mark;
    return reply;
}

} // namespace orvane
