// SPDX-License-Identifier: GPL-3.0-or-later
#include "QuickEntry/SentenceCatalog.h"

#include "QuickEntry/PaletteMatch.h"

#include <algorithm>
#include <unordered_map>
#include <unordered_set>

namespace orvane {

namespace {

constexpr std::size_t none = static_cast<std::size_t>(-1);

/// The least score that is taken: that of initials.
constexpr double goodEnough = 55;
constexpr double wholeName = 100;
/// A name that only matches without what parts its words counts a little less than one that matches as it is.
constexpr double joinedWhole = 90;
constexpr double joinedBeginning = 72;

/// Letters and digits alone; most names of one word are that already.
std::string joinedForm(const FoldedText &folded)
{
    std::string joined = folded.joined();
    return joined == folded.text() ? std::string() : joined;
}

struct MentionQuery {
    explicit MentionQuery(std::string_view name,
                          SentenceCatalog::Spelling spelling = SentenceCatalog::Spelling::free)
        : text(name), query(name), joined(FoldedText::of(name).joined()), joinedLetters(lettersOf(joined))
    {
        if (spelling == SentenceCatalog::Spelling::literal)
            joined.clear();
    }

    static std::uint64_t lettersOf(std::string_view text) { return FoldedText::of(text).letters(); }

    std::string_view text;
    PaletteQuery query;
    std::string joined;          ///< empty when the name has to be spelled as it is
    std::uint64_t joinedLetters; ///< those that a name must have to match in either way
};

struct Named {
    std::string id;
    std::string name;
    FoldedText folded;
    std::string joined;       ///< empty when it is the folded text
    std::size_t outer = none; ///< a task's project, a project's client: its number in that list

    Named(std::string identifier, const std::string &text, std::size_t outerNumber)
        : id(std::move(identifier))
        , name(text)
        , folded(FoldedText::ofName(text))
        , joined(joinedForm(folded))
        , outer(outerNumber)
    {
    }

    double score(const MentionQuery &mention) const
    {
        const double score = PaletteMatch::score(folded, mention.query).value_or(0);
        if (score >= joinedWhole || mention.joined.empty())
            return score;
        const std::string &whole = joined.empty() ? folded.text() : joined;
        if (!whole.starts_with(mention.joined))
            return score;
        return std::max(score, whole.size() == mention.joined.size() ? joinedWhole : joinedBeginning);
    }
};

struct Best {
    double score = 0;
    std::vector<std::size_t> numbers; ///< of those that have it

    std::size_t only() const { return numbers.size() == 1 ? numbers.front() : none; }
};

/// Names and, apart from them, the letters of each: most names are passed over for these alone.
class NameList {
public:
    void add(std::string id, const std::string &name, std::size_t outer = none)
    {
        m_names.emplace_back(std::move(id), name, outer);
        m_letters.push_back(m_names.back().folded.letters());
        m_whole.insert(m_names.back().folded.text());
        if (!m_names.back().joined.empty())
            m_whole.insert(m_names.back().joined);
    }

    bool isWhole(std::string_view folded) const { return m_whole.contains(folded); }

    const Named &operator[](std::size_t number) const { return m_names[number]; }
    std::size_t size() const { return m_names.size(); }

    /// The best of those in [from, to) for which `fits` says yes.
    template <class Fits>
    Best best(const MentionQuery &mention, Fits fits, std::size_t from = 0, std::size_t to = none) const
    {
        Best best{.score = goodEnough, .numbers = {}};
        to = std::min(to, size());
        for (std::size_t i = from; i < to; ++i) {
            if ((mention.joinedLetters & ~m_letters[i]) != 0 || !fits(m_names[i]))
                continue;
            const double score = m_names[i].score(mention);
            if (score < best.score)
                continue;
            if (score > best.score)
                best = {.score = score, .numbers = {}};
            best.numbers.push_back(i);
        }
        if (best.numbers.size() > 1)
            keepSpelledAlike(best.numbers, mention.text);
        return best;
    }

    Best best(const MentionQuery &mention) const
    {
        return best(mention, [](const Named &) { return true; });
    }

private:
    /// Of names that fold to the same, the one that was typed letter by letter.
    void keepSpelledAlike(std::vector<std::size_t> &numbers, std::string_view text) const
    {
        const auto isAlike = [&](std::size_t i) { return m_names[i].name == text; };
        if (std::ranges::any_of(numbers, isAlike))
            std::erase_if(numbers, [&](std::size_t i) { return !isAlike(i); });
    }

    struct Hash {
        using is_transparent = void;
        std::size_t operator()(std::string_view text) const { return std::hash<std::string_view>()(text); }
    };

    std::vector<Named> m_names;
    std::vector<std::uint64_t> m_letters;
    std::unordered_set<std::string, Hash, std::equal_to<>> m_whole; ///< as folded, and joined
};

} // namespace

struct SentenceCatalog::Lists {
    NameList projects;
    NameList clients;
    NameList tasks; ///< those of a project lie together
    NameList tags;
    std::vector<std::size_t> firstTasks; ///< by project, and where the last one's end
    std::unordered_map<std::string, std::size_t> projectNumbers;

    Best tasksOf(std::size_t project, const MentionQuery &mention) const
    {
        return tasks.best(
            mention, [](const Named &) { return true; }, firstTasks[project], firstTasks[project + 1]);
    }

    /// Of the project, the client and the task that match best, the one that is meant.
    std::pair<Kind, Best> meant(const MentionQuery &mention, const std::optional<std::string> &clientID) const
    {
        std::pair<Kind, Best> meant{Kind::project, projects.best(mention)};
        preferClient(meant.second, clientID);
        const auto compare = [&meant](Kind kind, Best other) {
            const bool isBetter = meant.second.numbers.empty() || other.score > meant.second.score;
            if (!other.numbers.empty() && isBetter)
                meant = {kind, std::move(other)};
        };
        compare(Kind::client, clients.best(mention));
        compare(Kind::task, tasks.best(mention));
        return meant;
    }

    /// A number behind a "#" ("Review #2") is rather an issue's than the beginning of a tag.
    Best tag(std::string_view name) const
    {
        const std::string_view number = name.substr(0, name.find_last_not_of(".,;:!?)") + 1);
        const bool isNumber =
            !number.empty() && number.find_first_not_of("0123456789") == std::string_view::npos;
        const MentionQuery mention = isNumber ? MentionQuery(number, Spelling::literal) : MentionQuery(name);
        if (mention.query.isEmpty())
            return {};
        Best best = tags.best(mention);
        if (isNumber && best.score < wholeName)
            best.numbers.clear();
        return best;
    }

    /// Of several projects the only one of the client.
    void preferClient(Best &best, const std::optional<std::string> &clientID) const
    {
        if (!clientID || best.numbers.size() < 2)
            return;
        const auto isTheirs = [&](std::size_t i) {
            return projects[i].outer != none && clients[projects[i].outer].id == *clientID;
        };
        if (std::ranges::count_if(best.numbers, isTheirs) == 1)
            std::erase_if(best.numbers, [&](std::size_t i) { return !isTheirs(i); });
    }
};

SentenceCatalog::SentenceCatalog(const std::vector<ProjectResponse> &projects,
                                 const std::vector<ClientResponse> &clients,
                                 const std::vector<TagResponse> &tags)
{
    auto lists = std::make_shared<Lists>();
    std::unordered_map<std::string_view, std::size_t> clientNumbers;
    for (const ClientResponse &client : clients) {
        if (client.isArchived)
            continue;
        clientNumbers.try_emplace(client.id, lists->clients.size());
        lists->clients.add(client.id, client.name);
    }
    for (const ProjectResponse &project : projects) {
        if (project.isArchived)
            continue;
        const std::size_t number = lists->projects.size();
        const auto client = project.clientId ? clientNumbers.find(*project.clientId) : clientNumbers.end();
        lists->projects.add(project.id, project.name, client == clientNumbers.end() ? none : client->second);
        lists->projectNumbers.try_emplace(project.id, number);
        lists->firstTasks.push_back(lists->tasks.size());
        for (const TaskResponse &task : project.tasks) {
            if (task.isActive)
                lists->tasks.add(task.id, task.name, number);
        }
    }
    lists->firstTasks.push_back(lists->tasks.size());
    for (const TagResponse &tag : tags)
        lists->tags.add(tag.id, tag.name);
    m_lists = std::move(lists);
}

std::optional<SentenceCatalog::Meaning> SentenceCatalog::meaning(std::string_view name,
                                                                 const std::optional<std::string> &clientID,
                                                                 Spelling spelling) const
{
    const MentionQuery mention(name, spelling);
    if (mention.query.isEmpty())
        return std::nullopt;
    const auto [kind, best] = m_lists->meant(mention, clientID);
    const std::size_t number = best.only();
    if (number == none)
        return std::nullopt;
    switch (kind) {
    case Kind::project:
        return Meaning{kind, m_lists->projects[number].id, {}};
    case Kind::client:
        return Meaning{kind, m_lists->clients[number].id, {}};
    case Kind::task:
        break;
    }
    const Named &task = m_lists->tasks[number];
    return Meaning{kind, task.id, m_lists->projects[task.outer].id};
}

std::optional<std::string> SentenceCatalog::task(std::string_view name, const std::string &projectID) const
{
    const MentionQuery mention(name);
    const auto project = m_lists->projectNumbers.find(projectID);
    if (mention.query.isEmpty() || project == m_lists->projectNumbers.end())
        return std::nullopt;
    const std::size_t number = m_lists->tasksOf(project->second, mention).only();
    return number == none ? std::nullopt : std::optional(m_lists->tasks[number].id);
}

std::optional<SentenceCatalog::Place> SentenceCatalog::place(std::string_view outer,
                                                             std::string_view inner) const
{
    const MentionQuery outerMention(outer);
    const MentionQuery innerMention(inner);
    if (outerMention.query.isEmpty() || innerMention.query.isEmpty())
        return std::nullopt;
    if (const std::size_t project = m_lists->projects.best(outerMention).only(); project != none) {
        const std::size_t task = m_lists->tasksOf(project, innerMention).only();
        if (task != none)
            return Place{m_lists->projects[project].id, m_lists->tasks[task].id};
    }
    if (const std::size_t client = m_lists->clients.best(outerMention).only(); client != none) {
        const auto isTheirs = [&](const Named &project) { return project.outer == client; };
        const std::size_t project = m_lists->projects.best(innerMention, isTheirs).only();
        if (project != none)
            return Place{m_lists->projects[project].id, std::nullopt};
    }
    return std::nullopt;
}

std::optional<std::string> SentenceCatalog::tag(std::string_view name) const
{
    const std::size_t number = m_lists->tag(name).only();
    return number == none ? std::nullopt : std::optional(m_lists->tags[number].id);
}

bool SentenceCatalog::isWholeName(char sign, std::string_view name) const
{
    const std::string folded = FoldedText::of(name).text();
    if (sign == '#')
        return m_lists->tags.isWhole(folded);
    return m_lists->projects.isWhole(folded) || m_lists->clients.isWhole(folded) ||
           m_lists->tasks.isWhole(folded);
}

bool SentenceCatalog::isAmbiguous(char sign, std::string_view name) const
{
    if (sign == '#')
        return m_lists->tag(name).numbers.size() > 1;
    const MentionQuery mention(name);
    return !mention.query.isEmpty() && m_lists->meant(mention, {}).second.numbers.size() > 1;
}

} // namespace orvane
