// SPDX-License-Identifier: GPL-3.0-or-later
#include "QuickEntry/SentenceMentions.h"

#include <algorithm>
#include <array>

namespace orvane {

namespace {

using namespace std::string_view_literals;

constexpr std::size_t mostMentions = 64;
/// A name in quotes has no more words than this, so a quote that is never closed costs little.
constexpr std::size_t mostQuotedWords = 32;
/// A name without quotes has no more words than this.
constexpr std::size_t mostNameWords = 8;
/// So many slashes are tried as the one between a project and its task.
constexpr int mostSlashes = 4;

/// Quotes as they are typed, and as some systems change them while typing.
constexpr std::array opening = {"\""sv, "\xE2\x80\x9C"sv, "\xE2\x80\x9E"sv};
constexpr std::array closing = {"\""sv, "\xE2\x80\x9D"sv, "\xE2\x80\x9C"sv};

std::size_t openingSize(std::string_view text)
{
    const auto *found =
        std::ranges::find_if(opening, [&](std::string_view quote) { return text.starts_with(quote); });
    return found == opening.end() ? 0 : found->size();
}

struct Quote {
    std::size_t at = std::string_view::npos;
    std::size_t size = 0;

    bool isThere() const { return at != std::string_view::npos; }
};

Quote closingQuote(std::string_view text, std::size_t from)
{
    Quote first;
    for (const std::string_view quote : closing) {
        const std::size_t at = text.find(quote, from);
        if (at < first.at)
            first = {at, quote.size()};
    }
    return first;
}

/// A mention as it was typed: one name, or two with a slash between.
struct MentionText {
    char sign = '@';
    std::size_t first = 0; ///< word
    std::size_t last = 0;  ///< word
    std::string text;      ///< after the sign, with one space between the words
};

/// A part of a mention: what lies in quotes, or else all.
struct Part {
    std::string_view name;
    std::string_view rest; ///< behind the closing quote
    bool isQuoted = false;
};

Part partOf(std::string_view text)
{
    const std::size_t open = openingSize(text);
    const Quote close = open > 0 ? closingQuote(text, open) : Quote{};
    if (!close.isThere())
        return {text, {}, false};
    return {text.substr(open, close.at - open), text.substr(close.at + close.size), true};
}

bool isPunctuation(std::string_view text)
{
    return text.find_first_not_of(".,;:!?)") == std::string_view::npos;
}

class Reader {
public:
    Reader(std::span<const std::string_view> words, const SentenceCatalog &catalog)
        : m_words(words), m_catalog(catalog)
    {
        m_found.isTaken.resize(words.size());
    }

    SentenceMentions read() &&
    {
        std::vector<MentionText> left;
        for (MentionText &mention : mentions()) {
            if (mention.sign == '#' ? takeTag(mention) : takeProjectOrClient(mention))
                markTaken(mention);
            else
                left.push_back(std::move(mention));
        }
        for (const MentionText &mention : left) {
            if (mention.sign == '@' && !m_found.taskID && takeTask(mention))
                markTaken(mention);
            else
                m_found.unread.push_back(unread(mention));
        }
        return std::move(m_found);
    }

private:
    std::vector<MentionText> mentions() const
    {
        std::vector<MentionText> found;
        for (std::size_t i = 0; i < m_words.size() && found.size() < mostMentions; ++i) {
            const std::string_view word = m_words[i];
            if (word.size() < 2 || (word.front() != '@' && word.front() != '#'))
                continue;
            found.push_back(mentionAt(i));
            i = found.back().last;
        }
        return found;
    }

    /// Reaches over the words up to the quote that closes one; without such a quote it is one word.
    MentionText mentionAt(std::size_t first) const
    {
        MentionText mention{m_words[first].front(), first, first, std::string(m_words[first].substr(1))};
        std::size_t checked = 0;
        while (checked < mention.text.size()) {
            const std::size_t open = openingSize(std::string_view(mention.text).substr(checked));
            if (open == 0) {
                const std::size_t slash = mention.text.find('/', checked);
                checked = slash == std::string::npos ? mention.text.size() : slash + 1;
                continue;
            }
            const auto close = reachQuote(mention, checked + open);
            if (!close.isThere())
                break;
            checked = close.at + close.size;
        }
        if (mention.last == first && !m_catalog.isWholeName(mention.sign, mention.text))
            reachName(mention);
        return mention;
    }

    /// Takes the words that come next along as far as they make the longest whole name.
    void reachName(MentionText &mention) const
    {
        std::string text = mention.text;
        const std::size_t end = std::min(mention.first + mostNameWords, m_words.size());
        for (std::size_t i = mention.first + 1; i < end; ++i) {
            const std::string_view word = m_words[i];
            if (word.front() == '@' || word.front() == '#')
                break;
            text.append(" ").append(word);
            const std::size_t named = text.find_last_not_of(".,;:!?)") + 1;
            for (const std::string_view name :
                 {std::string_view(text), std::string_view(text).substr(0, named)}) {
                if (m_catalog.isWholeName(mention.sign, name)) {
                    mention.text = name;
                    mention.last = i;
                    break;
                }
            }
        }
    }

    /// Adds words to the mention until it has a closing quote; leaves it when none comes soon.
    Quote reachQuote(MentionText &mention, std::size_t from) const
    {
        Quote close = closingQuote(mention.text, from);
        if (close.isThere())
            return close;
        std::string text = mention.text;
        std::size_t last = mention.last;
        while (!close.isThere() && last + 1 < m_words.size() && last - mention.first < mostQuotedWords) {
            const std::size_t added = text.size();
            text += ' ';
            text += m_words[++last];
            close = closingQuote(text, added);
        }
        if (close.isThere()) {
            mention.text = std::move(text);
            mention.last = last;
        }
        return close;
    }

    void markTaken(const MentionText &mention)
    {
        for (std::size_t i = mention.first; i <= mention.last; ++i)
            m_found.isTaken[i] = true;
    }

    bool takeTag(const MentionText &mention)
    {
        const Part part = partOf(mention.text);
        const auto tag = isPunctuation(part.rest) ? m_catalog.tag(part.name) : std::nullopt;
        if (!tag)
            return false;
        if (std::ranges::find(m_found.tagIDs, *tag) == m_found.tagIDs.end())
            m_found.tagIDs.push_back(*tag);
        return true;
    }

    /// A slash parts two names, unless a name has it itself. Only where it parts none may it stand for the
    /// space of a name.
    bool takeProjectOrClient(const MentionText &mention)
    {
        using enum SentenceCatalog::Spelling;
        const Part part = partOf(mention.text);
        const bool hasSlash = !part.isQuoted && part.name.find('/') != std::string_view::npos;
        const auto meaning = [&](SentenceCatalog::Spelling spelling) {
            return isPunctuation(part.rest) ? m_catalog.meaning(part.name, m_found.clientID, spelling)
                                            : std::nullopt;
        };
        if (const auto meant = meaning(hasSlash ? literal : free))
            return take(*meant);
        if (!m_found.projectID && takePlace(mention.text, part))
            return true;
        const auto meant = hasSlash ? meaning(free) : std::nullopt;
        return meant && take(*meant);
    }

    /// False for a task, and for a second project or client.
    bool take(const SentenceCatalog::Meaning &meaning)
    {
        if (meaning.kind == SentenceCatalog::Kind::task)
            return false;
        auto &target = meaning.kind == SentenceCatalog::Kind::project ? m_found.projectID : m_found.clientID;
        if (target)
            return false;
        target = meaning.id;
        return true;
    }

    UnreadMention unread(const MentionText &mention) const
    {
        UnreadMention unread{mention.sign + mention.text, UnreadMention::Why::unknown};
        const Part part = partOf(mention.text);
        if (isPunctuation(part.rest)) {
            if (m_catalog.isAmbiguous(mention.sign, part.name))
                unread.why = UnreadMention::Why::ambiguous;
            else if (const auto meaning = m_catalog.meaning(part.name, m_found.clientID);
                     mention.sign == '@' && meaning)
                unread.why = meaning->kind == SentenceCatalog::Kind::project && m_found.projectID
                                 ? UnreadMention::Why::secondProject
                                 : UnreadMention::Why::surplus;
        }
        while (unread.text.size() > 2 &&
               isPunctuation(std::string_view(unread.text).substr(unread.text.size() - 1)))
            unread.text.pop_back();
        return unread;
    }

    /// "outer/inner", either of them in quotes or not.
    bool takePlace(std::string_view text, const Part &first)
    {
        if (first.isQuoted)
            return first.rest.starts_with('/') && takePlace(first.name, first.rest.substr(1));
        std::size_t slash = text.find('/');
        for (int tried = 0; slash != std::string_view::npos && tried < mostSlashes; ++tried) {
            if (takePlace(text.substr(0, slash), text.substr(slash + 1)))
                return true;
            slash = text.find('/', slash + 1);
        }
        return false;
    }

    bool takePlace(std::string_view outer, std::string_view inner)
    {
        const Part part = partOf(inner);
        const auto place = isPunctuation(part.rest) ? m_catalog.place(outer, part.name) : std::nullopt;
        if (!place)
            return false;
        m_found.projectID = place->projectID;
        m_found.taskID = place->taskID;
        return true;
    }

    /// Once all projects and clients are known.
    bool takeTask(const MentionText &mention)
    {
        const Part part = partOf(mention.text);
        if (!isPunctuation(part.rest))
            return false;
        if (m_found.projectID) {
            m_found.taskID = m_catalog.task(part.name, *m_found.projectID);
            return m_found.taskID.has_value();
        }
        const auto meaning = m_catalog.meaning(part.name, m_found.clientID);
        if (!meaning || meaning->kind != SentenceCatalog::Kind::task)
            return false;
        m_found.projectID = meaning->projectID;
        m_found.taskID = meaning->id;
        return true;
    }

    std::span<const std::string_view> m_words;
    const SentenceCatalog &m_catalog;
    SentenceMentions m_found;
};

} // namespace

SentenceMentions SentenceMentions::of(std::span<const std::string_view> words, const SentenceCatalog &catalog)
{
    return Reader(words, catalog).read();
}

} // namespace orvane
