// SPDX-License-Identifier: GPL-3.0-or-later
#include "Input/MentionCompletion.h"

#include "QuickEntry/FoldedText.h"
#include "QuickEntry/MentionSpelling.h"
#include "QuickEntry/Palette.h"
#include "Terminal/TextWidth.h"

#include <algorithm>

namespace orvane {

namespace {

using Kind = PaletteItem::Kind;

/// So many slashes are tried as the one between a project and its task.
constexpr std::size_t mostSlashes = 4;

/// Quotes around a name play no part.
bool goesOnFrom(std::string_view longer, std::string_view typed)
{
    const auto plain = [](std::string_view text) {
        std::string folded = FoldedText::of(text).text();
        std::erase(folded, '"');
        return folded;
    };
    return plain(longer).starts_with(plain(typed));
}

std::string_view commonBeginning(const std::vector<std::string> &texts)
{
    std::string_view common = texts.empty() ? std::string_view() : std::string_view(texts.front());
    for (const std::string &text : texts) {
        const auto [end, other] = std::ranges::mismatch(common, text);
        common = common.substr(0, static_cast<std::size_t>(end - common.begin()));
    }
    return common;
}

/// Finds what can be mentioned at the end of a sentence, and how it is written there.
class Finder {
public:
    Finder(std::string_view before, std::string_view typed, const Catalog &catalog)
        : m_before(before)
        , m_typed(typed)
        , m_names(catalog.projects(), catalog.clients(), catalog.tags())
        , m_palette(nameItems(catalog))
        , m_spelling(catalog, m_names)
    {
    }

    std::vector<std::string> find(const PaletteUsage &usage, Instant now)
    {
        std::vector<std::string> mentions;
        const auto add = [&](const std::optional<std::string> &mention) {
            if (mention && std::ranges::find(mentions, *mention) == mentions.end())
                mentions.push_back(*mention);
        };
        for (const std::string_view outer : outers()) {
            const std::string_view inner = m_typed.substr(1 + outer.size());
            for (const Palette::Found &row : m_palette.find(queryOf(inner), usage, now))
                add(mentionOf(m_palette.items()[row.item], outer, inner.starts_with('"')));
        }
        const auto goesOn = [&](const std::string &mention) { return goesOnFrom(mention, m_typed); };
        if (std::ranges::any_of(mentions, goesOn))
            std::erase_if(mentions, [&](const std::string &mention) { return !goesOn(mention); });
        return mentions;
    }

private:
    /// By their names alone: a project's tasks are known by the project too, but are not what "@website"
    /// becomes. As a terminal can show them.
    static std::vector<PaletteItem> nameItems(const Catalog &catalog)
    {
        std::vector<PaletteItem> items =
            PaletteItem::ofCatalog(catalog.projects(), catalog.clients(), catalog.tags());
        for (PaletteItem &item : items) {
            item.alternatives.clear();
            item.name = printable(item.name);
        }
        return items;
    }

    /// What stays of the mention as it is: nothing, or all up to a slash and that.
    std::vector<std::string_view> outers() const
    {
        const std::string_view text = m_typed.substr(1);
        std::vector<std::string_view> outers{text.substr(0, 0)};
        for (std::size_t at = text.find('/'); at != std::string_view::npos && outers.size() <= mostSlashes;
             at = text.find('/', at + 1))
            outers.push_back(text.substr(0, at + 1));
        return outers;
    }

    static std::string queryOf(std::string_view inner)
    {
        std::string query(inner.starts_with('"') ? inner.substr(1) : inner);
        std::ranges::replace(query, '-', ' ');
        return query;
    }

    /// How this thing can be mentioned here, if it can.
    std::optional<std::string> mentionOf(const PaletteItem &item, std::string_view outer, bool isQuoted) const
    {
        if ((item.kind == Kind::tag) != (m_typed.front() == '#'))
            return std::nullopt;
        auto mention = m_spelling.of(item, {.before = m_before, .outer = outer, .isQuoted = isQuoted});
        const bool isPrintable = mention && printable(*mention) == *mention;
        return isPrintable ? std::move(mention) : std::nullopt;
    }

    std::string_view m_before;
    std::string_view m_typed;
    SentenceCatalog m_names;
    Palette m_palette;
    MentionSpelling m_spelling;
};

} // namespace

std::optional<MentionCompletion> MentionCompletion::of(std::string_view sentence, const Catalog &catalog,
                                                       const PaletteUsage &usage, Instant now)
{
    const auto begin = openMention(sentence);
    if (!begin)
        return std::nullopt;
    const std::string_view typed = sentence.substr(*begin);
    MentionCompletion completion{*begin, Finder(sentence.substr(0, *begin), typed, catalog).find(usage, now),
                                 false};
    const std::string_view common = commonBeginning(completion.mentions);
    completion.goesOn = completion.mentions.size() == 1 || common.starts_with(typed) ||
                        (utf16Length(common) >= utf16Length(typed) && goesOnFrom(common, typed));
    return completion;
}

} // namespace orvane
