// SPDX-License-Identifier: GPL-3.0-or-later
#include "Input/MentionCompletion.h"

#include "QuickEntry/FoldedText.h"
#include "QuickEntry/Palette.h"
#include "QuickEntry/SentenceMentions.h"
#include "Terminal/TextWidth.h"

#include <algorithm>

namespace orvane {

namespace {

using Kind = PaletteItem::Kind;

/// So many slashes are tried as the one between a project and its task.
constexpr std::size_t mostSlashes = 4;

/// A name as one word: the sentence reads hyphens as its spaces.
std::string joinedForm(const std::string &name)
{
    const std::string shown = printable(name);
    std::string form;
    for (const std::string_view word : wordsOf(shown))
        form.append(form.empty() ? "" : "-").append(word);
    return form;
}

std::string quotedForm(const std::string &name)
{
    return "\"" + printable(name) + "\"";
}

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
        , m_catalog(catalog)
        , m_names(catalog.projects(), catalog.clients(), catalog.tags())
        , m_palette(nameItems(catalog))
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
    /// becomes.
    static std::vector<PaletteItem> nameItems(const Catalog &catalog)
    {
        std::vector<PaletteItem> items =
            PaletteItem::ofCatalog(catalog.projects(), catalog.clients(), catalog.tags());
        for (PaletteItem &item : items)
            item.alternatives.clear();
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
        std::vector<std::string> forms{joinedForm(item.name), quotedForm(item.name)};
        if (isQuoted)
            std::swap(forms.front(), forms.back());
        for (const std::string &form : forms) {
            std::string mention = m_typed.front() + std::string(outer) + form;
            if (means(mention, item))
                return mention;
        }
        const std::string around = outer.empty() ? nameAround(item) : std::string();
        if (around.empty())
            return std::nullopt;
        for (const std::string &outerForm : {joinedForm(around), quotedForm(around)}) {
            for (const std::string &form : forms) {
                std::string mention = m_typed.front() + outerForm + "/" + form;
                if (means(mention, item))
                    return mention;
            }
        }
        return std::nullopt;
    }

    /// The name of a task's project or a project's client; empty when there is none.
    std::string nameAround(const PaletteItem &item) const
    {
        if (item.kind == Kind::task) {
            const TaskResponse *task = m_catalog.task(item.id);
            const ProjectResponse *project = task ? m_catalog.project(task->projectId) : nullptr;
            return project ? project->name : std::string();
        }
        const ProjectResponse *project = item.kind == Kind::project ? m_catalog.project(item.id) : nullptr;
        const ClientResponse *client =
            project && project->clientId ? m_catalog.client(*project->clientId) : nullptr;
        return client ? client->name : std::string();
    }

    /// Whether the sentence, with this mention at its end, takes the mention for the thing.
    bool means(const std::string &mention, const PaletteItem &item) const
    {
        const std::string line = std::string(m_before) + mention;
        const auto found = SentenceMentions::of(wordsOf(line), m_names);
        if (found.isTaken.empty() || !found.isTaken.back())
            return false;
        switch (item.kind) {
        case Kind::project:
            return found.projectID == item.id;
        case Kind::task:
            return found.taskID == item.id;
        case Kind::client:
            return found.clientID == item.id;
        case Kind::tag:
            return std::ranges::find(found.tagIDs, item.id) != found.tagIDs.end();
        case Kind::recentEntry:
            break;
        }
        return false;
    }

    std::string_view m_before;
    std::string_view m_typed;
    const Catalog &m_catalog;
    SentenceCatalog m_names;
    Palette m_palette;
};

} // namespace

std::optional<std::size_t> openMention(std::string_view sentence)
{
    std::optional<std::size_t> open;
    bool isQuoted = false;
    bool isAtStart = true; ///< of a word
    for (std::size_t i = 0; i < sentence.size(); ++i) {
        const char c = sentence[i];
        const bool isSign = c == '@' || c == '#';
        const char before = i > 0 ? sentence[i - 1] : ' ';
        if (c == '"' && open)
            isQuoted = isQuoted ? false : before == '/' || *open + 1 == i;
        else if (static_cast<unsigned char>(c) <= ' ' && !isQuoted)
            open.reset();
        else if (isSign && isAtStart && !isQuoted)
            open = i;
        isAtStart = static_cast<unsigned char>(c) <= ' ';
    }
    return open;
}

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
