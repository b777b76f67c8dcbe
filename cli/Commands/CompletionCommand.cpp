// SPDX-License-Identifier: GPL-3.0-or-later
#include "Commands/Commands.h"

#include "CommandTree.h"
#include "Input/MentionCompletion.h"
#include "Input/ShellLine.h"
#include "QuickEntry/MentionSpelling.h"
#include "Time/AppClock.h"

#include <QFileInfo>
#include <algorithm>
#include <array>

namespace orvane {

namespace {

/// Somebody waits for the key to do something.
constexpr std::chrono::milliseconds patienceLength{1000};

struct CompletionOptions {
    std::optional<std::string> shell;
    /// What bash would replace.
    std::optional<std::string> replaced;
    std::string line;
};

/// The options among these words that say which installation, server and workspace the line means. Nothing
/// when only the shell can tell.
std::optional<std::vector<std::string>> placeOptions(const std::vector<ShellWord> &words)
{
    constexpr std::array names = {std::string_view("--data-dir"), std::string_view("--server"),
                                  std::string_view("--workspace")};
    std::vector<std::string> options;
    for (std::size_t i = 1; i + 1 < words.size() && words[i].text != "--"; ++i) {
        const std::string_view text = words[i].text;
        const std::size_t equals = std::min(text.find('='), text.size());
        if (std::ranges::find(names, text.substr(0, equals)) == names.end())
            continue;
        const bool hasValue = equals < text.size();
        if (!hasValue && i + 2 >= words.size())
            break;
        const ShellWord &value = hasValue ? words[i] : words[++i];
        if (value.isOpaque)
            return std::nullopt;
        options.emplace_back(text.substr(0, equals));
        options.push_back(hasValue ? value.text.substr(equals + 1) : value.text);
    }
    return options;
}

/// The options of this call, with what the typed line says instead. A completion starts no server.
std::optional<GlobalOptions> optionsOf(const std::vector<ShellWord> &words, GlobalOptions options)
{
    options.startsServer = false;
    const auto typed = placeOptions(words);
    CommandTree tree;
    if (!typed || !tree.parse(*typed))
        return std::nullopt;
    if (!tree.options().dataFolder.empty())
        options.dataFolder = tree.options().dataFolder;
    if (tree.options().server)
        options.server = tree.options().server;
    if (tree.options().workspace)
        options.workspace = tree.options().workspace;
    // A folder that is not there yet would be made.
    if (!options.dataFolder.empty() && !QFileInfo(QString::fromStdString(options.dataFolder)).isDir())
        return std::nullopt;
    return options;
}

/// The words up to the one being typed as one text; the commands among them do no harm.
std::string textBefore(const std::vector<ShellWord> &words)
{
    std::string text;
    for (std::size_t i = 1; i + 1 < words.size(); ++i)
        text += words[i].text + " ";
    return text;
}

/// A line for each mention, as the shell wants it: for bash what it puts in, quoted; for the others, which
/// quote by themselves, the whole word. A space in front says that the others are there to be looked at, and
/// that nothing shall be put in: their common beginning would take typed letters away.
std::string replies(const MentionCompletion &completion, std::size_t before, const ShellWord &word,
                    Shell shell, const std::string &replaced)
{
    const std::size_t kept = completion.begin - before;
    std::string out;
    std::size_t count = 0;
    for (const std::string &mention : completion.mentions) {
        const std::string text = word.text.substr(0, kept) + mention;
        const auto reply = shell == Shell::bash ? bashReply(word, replaced, text, kept) : std::optional(text);
        if (!reply)
            continue;
        out += *reply + "\n";
        ++count;
    }
    const bool isOnlyShown = count > 1 && !completion.goesOn && shell != Shell::fish;
    return isOnlyShown ? " \n" + out : out;
}

Task<CommandAnswer> completed(Context place, std::vector<ShellWord> words, Shell shell, std::string replaced)
{
    Patience patience(patienceLength);
    auto opened = co_await place->openApart(patience);
    if (!opened)
        co_return CommandAnswer{}; // a completion has nowhere to complain
    // Not the context's own account: that one would show what was refused, to nobody, and count it as shown.
    const std::unique_ptr<Account> account = std::move(*opened);
    co_await account->tracker().loadSnapshot();
    const Tracker &tracker = account->tracker();
    const PaletteUsage usage = place->installation().paletteUsage(tracker.workspace().id);
    const std::string before = textBefore(words);
    const ShellWord &word = words.back();
    const auto completion =
        MentionCompletion::of(before + word.text, tracker.catalog(), usage, AppClock::now());
    CommandAnswer answer;
    if (completion && completion->begin >= before.size())
        answer.output = replies(*completion, before.size(), word, shell, replaced);
    co_await account->close();
    co_return answer;
}

CommandTask complete(Context context, CompletionOptions options)
{
    const auto shell = shellNamed(options.shell.value_or("bash"));
    if (!shell)
        co_return failure(CommandFailure::usage("--shell wants bash, zsh or fish."));
    std::vector<ShellWord> words = shellWords(options.line, *shell);
    const auto places = optionsOf(words, context->options());
    const bool canBeWritten = *shell == Shell::bash || !words.back().isExpanded;
    if (!places || !canBeWritten || !openMention(textBefore(words) + words.back().text))
        co_return CommandAnswer{};
    co_return co_await completed(std::make_shared<CommandContext>(*places), std::move(words), *shell,
                                 options.replaced.value_or(std::string()));
}

} // namespace

void addCompletionCommand(CommandTree &tree)
{
    const auto options = std::make_shared<CompletionOptions>();
    CLI::App *command = tree.add("complete-word", "What a word with @ or # can become, for completions", "");
    CommandTree::addText(command, "--shell", options->shell, "SHELL", "bash, zsh or fish");
    CommandTree::addText(command, "--replaced", options->replaced, "TEXT",
                         "For bash: what it replaces, the end of the line");
    CommandTree::addRequired(command, "LINE", options->line, "The command's line up to the cursor");
    tree.onRun(command, [options](Context context) { return complete(std::move(context), *options); });
}

} // namespace orvane
