// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <optional>
#include <string>
#include <string_view>

/// Finding one's way through the bytes of JSON without reading them: most of a log is text that nobody needs.
/// Everything here takes any bytes, reads none outside the given range and may be called from any thread.
/// It looks only for quotes and brackets, so broken JSON may be taken for whole; it is never the other way
/// round.
namespace orvane::jsonbytes {

/// The widest instructions that this processor has are chosen once, when the program starts.
struct Scanner {
    /// From behind a text's opening quote to its closing quote; null when there is none.
    const char *(*textEnd)(const char *at, const char *end);
    /// From inside `depth` brackets, outside of any text, to behind the bracket that closes the outermost;
    /// null when there is none.
    const char *(*bracketsEnd)(const char *at, const char *end, int depth);
};
extern const Scanner scanner;
/// The one without wide instructions, to compare with.
extern const Scanner plainScanner;

/// Walks the members of one object, in order. A value is either taken or passed over; what breaks ends the
/// walk.
class ObjectWalk {
public:
    /// `at` is where the object's opening brace should be, after any spaces.
    ObjectWalk(const char *at, const char *end, const Scanner &bytes = scanner);
    explicit ObjectWalk(std::string_view text, const Scanner &bytes = scanner)
        : ObjectWalk(text.data(), text.data() + text.size(), bytes)
    {
    }

    /// To the next member; false at the object's end and when it is broken.
    bool next();
    /// The present member's name as it stands there, escapes and all.
    std::string_view name() const { return m_name; }

    /// The value's text between the quotes, as it stands there; nothing when the value is no text. Not taken
    /// yet.
    std::optional<std::string_view> text();
    /// As `text`, empty when the value is none. What it says is what stands there, unless it has escapes:
    /// then `hasEscapes` is set.
    std::string_view plainText(bool &hasEscapes);
    bool isTrue() const { return first() == 't'; }
    /// Where the value begins.
    const char *value() const { return m_at; }
    char first() const { return m_at != nullptr && m_at < m_end ? *m_at : '\0'; }
    const char *limit() const { return m_end; }

    /// Says where the value ended, for who walked through it; null when it is broken.
    void taken(const char *end);
    /// Where the object ends: behind its brace; null when it does not. Ends the walk.
    const char *finish();
    bool isBroken() const { return m_at == nullptr; }

private:
    const char *valueEnd(const char *at) const;
    const char *afterSpaces(const char *at) const;

    const Scanner &m_bytes;
    const char *m_at; ///< the value, while there is a member; null when broken
    const char *m_end;
    std::string_view m_name;
    bool m_isTaken = true; ///< whether m_at is behind the value
    bool m_isAtStart = true;
    bool m_isDone = false;
};

/// Walks the items of one list that are objects; others are passed over.
class ListWalk {
public:
    ListWalk(const char *at, const char *end, const Scanner &bytes = scanner);
    /// To the next object; false at the list's end and when it is broken.
    bool next();
    const char *object() const { return m_at; }
    void taken(const char *end) { m_next = end; }
    /// Behind the list's bracket, after the last object; null when it is broken.
    const char *end() const { return m_next; }

private:
    const Scanner &m_bytes;
    const char *m_at = nullptr;
    const char *m_next;
    const char *m_end;
};

/// What the text between a JSON text's quotes says; nothing for a broken escape. A surrogate without its
/// other half reads as U+FFFD.
std::optional<std::string> unescaped(std::string_view raw);

/// The text with U+FFFD for each escaped surrogate without its other half. Agents leave such halves where
/// they cut a text, and not every reader takes that for JSON.
std::string withWholeCharacters(std::string_view json);

} // namespace orvane::jsonbytes
