// SPDX-License-Identifier: GPL-3.0-or-later
#include "CompletionScript.h"

#include <CLI/App.hpp>
#include <CLI/Config.hpp>
#include <CLI/Formatter.hpp>
#include <algorithm>
#include <array>
#include <vector>

namespace orvane {

namespace {

struct OptionWords {
    std::string name;
    std::string description;
    bool takesValue = false;
    bool wantsFolder = false;
};

/// One command of the tree: where it stands ("projects add"), what can follow.
struct Node {
    std::string path;
    std::string description;
    std::vector<Node> children;
    std::vector<OptionWords> options;
    /// Words with @ and # in it become names of the catalog.
    bool takesSentence = false;

    std::string name() const { return path.substr(path.rfind(' ') + 1); }
};

Node nodeOf(const CLI::App &command, const std::string &path)
{
    Node node{path, command.get_description(), {}, {}};
    for (const CLI::Option *option : command.get_options()) {
        if (option->get_positional()) {
            node.takesSentence |= option->get_name(true) == "SENTENCE";
            continue;
        }
        for (const std::string &name : option->get_lnames())
            node.options.push_back({"--" + name, option->get_description(), option->get_expected_max() > 0,
                                    option->get_type_name() == "DIR"});
        for (const std::string &name : option->get_snames())
            node.options.push_back({"-" + name, option->get_description(), false, false});
    }
    // One without a group is for the scripts themselves.
    for (const CLI::App *child :
         command.get_subcommands([](const CLI::App *child) { return !child->get_group().empty(); }))
        node.children.push_back(
            nodeOf(*child, path.empty() ? child->get_name() : path + " " + child->get_name()));
    return node;
}

std::vector<const Node *> allNodes(const Node &root)
{
    std::vector<const Node *> nodes{&root};
    for (const Node &child : root.children) {
        const auto below = allNodes(child);
        nodes.insert(nodes.end(), below.begin(), below.end());
    }
    return nodes;
}

/// In single quotes, for any of the shells; a quote inside stands between two such texts.
std::string inQuotes(std::string_view text)
{
    std::string out = "'";
    for (const char c : text)
        out += c == '\'' ? "'\\''" : std::string(1, c);
    return out + "'";
}

std::string wordsOf(const Node &node, const Node &root)
{
    std::string words;
    for (const Node &child : node.children)
        words += child.name() + " ";
    for (const auto *options : {&node.options, &root.options}) {
        for (const OptionWords &option : *options)
            words += option.name + " ";
        if (&node == &root)
            break;
    }
    if (!words.empty())
        words.pop_back();
    return words;
}

/// Options that take a value, whose value must not be taken for a command.
std::vector<OptionWords> valued(const Node &root)
{
    std::vector<OptionWords> options;
    for (const Node *node : allNodes(root)) {
        for (const OptionWords &option : node->options) {
            if (option.takesValue &&
                std::ranges::find(options, option.name, &OptionWords::name) == options.end())
                options.push_back(option);
        }
    }
    return options;
}

std::string joined(const std::vector<OptionWords> &options, bool wantsFolder, std::string_view separator)
{
    std::string out;
    for (const OptionWords &option : options) {
        if (option.wantsFolder == wantsFolder)
            out += (out.empty() ? "" : std::string(separator)) + option.name;
    }
    return out;
}

std::string sentencePaths(const Node &root, std::string_view separator)
{
    std::string out;
    for (const Node *node : allNodes(root)) {
        if (node->takesSentence)
            out += (out.empty() ? "" : std::string(separator)) + inQuotes(node->path);
    }
    return out;
}

/// Names come from whoever shares the workspace, so the shell only ever reads them, a line each: it expands
/// nothing in them and puts them in as the command has quoted them.
std::string bashNames(const Node &root)
{
    return "    case $path in\n"
           "        " +
           sentencePaths(root, "|") +
           ")\n"
           "            if [[ $line == *[@\\#]* ]]; then\n"
           "                while IFS= read -r word; do COMPREPLY+=(\"$word\"); done < <(\n"
           "                    orvane complete-word --shell bash \"--replaced=$2\" -- \"$line\" "
           "2>/dev/null)\n"
           "                [[ ${#COMPREPLY[@]} -gt 0 ]] && return\n"
           "            fi ;;\n"
           "    esac\n";
}

std::string bashScript(const Node &root)
{
    const auto options = valued(root);
    std::string cases;
    std::string steps;
    for (const Node *node : allNodes(root)) {
        cases += "        " + inQuotes(node->path) + ") words=" + inQuotes(wordsOf(*node, root)) + " ;;\n";
        for (const Node &child : node->children)
            steps += (steps.empty() ? "" : "|") + inQuotes(node->path + "/" + child.name());
    }
    return "# Completions of orvane for bash; made by orvane completion bash.\n"
           "_orvane() {\n"
           "    local path='' word='' words='' i line=${COMP_LINE:0:COMP_POINT}\n"
           "    local current=${COMP_WORDS[COMP_CWORD]} previous=${COMP_WORDS[COMP_CWORD-1]}\n"
           "    COMPREPLY=()\n"
           "    case $previous in\n"
           "        " +
           joined(options, true, "|") +
           ")\n"
           "            while IFS= read -r word; do COMPREPLY+=(\"$word\"); done < <(compgen -d -- "
           "\"$current\")\n"
           "            compopt -o filenames 2>/dev/null\n"
           "            return ;;\n"
           "        " +
           joined(options, false, "|") +
           ") return ;;\n"
           "    esac\n"
           "    for ((i = 1; i < COMP_CWORD; i++)); do\n"
           "        word=${COMP_WORDS[i]}\n"
           "        case $word in\n"
           "            " +
           joined(options, true, "|") + "|" + joined(options, false, "|") +
           ") ((i++)); continue ;;\n"
           "        esac\n"
           "        case $path/$word in\n"
           "            " +
           steps +
           ") path=\"${path:+$path }$word\" ;;\n"
           "        esac\n"
           "    done\n" +
           bashNames(root) + "    case $path in\n" + cases +
           "    esac\n"
           "    COMPREPLY=($(compgen -W \"$words\" -- \"$current\"))\n"
           "}\n"
           "complete -F _orvane orvane\n";
}

/// A description inside a zsh specification, where brackets and colons have meanings.
std::string zshText(std::string_view text)
{
    std::string out;
    for (const char c : text) {
        if (c == ':' || c == '[' || c == ']' || c == '\\')
            out += '\\';
        out += c;
    }
    return out;
}

std::string zshOptions(const std::vector<OptionWords> &options)
{
    std::string out;
    for (const OptionWords &option : options) {
        std::string argument =
            option.name + (option.takesValue ? "=[" : "[") + zshText(option.description) + "]";
        if (option.takesValue)
            argument += option.wantsFolder ? ":folder:_files -/" : ":value:";
        out += " " + inQuotes(argument);
    }
    return out;
}

std::string zshFunction(const Node &node)
{
    std::string name = node.path.empty() ? "_orvane" : "_orvane_" + node.path;
    std::ranges::replace(name, ' ', '_');
    std::string out =
        name + "() {\n" +
        (node.path.empty() ? "    local -a _orvane_typed=(\"${(@)words[1,CURRENT-1]}\")\n" : "") +
        "    local -a options=($_orvane_global" +
        zshOptions(node.path.empty() ? std::vector<OptionWords>() : node.options) + ")\n";
    if (node.children.empty())
        return out + "    _arguments -s -S $options '*:" +
               (node.takesSentence ? "word:_orvane_names'\n}\n" : ":word:'\n}\n");
    std::string described;
    std::string cases;
    for (const Node &child : node.children) {
        described += " " + inQuotes(zshText(child.name()) + ":" + zshText(child.description));
        std::string function = "_orvane_" + child.path;
        std::ranges::replace(function, ' ', '_');
        cases += "            " + child.name() + ") " + function + " ;;\n";
    }
    return out + "    local -a commands=(" + described +
           ")\n"
           "    local curcontext=$curcontext state line\n"
           "    _arguments -C -S $options '(-): :->command' '(-)*:: :->rest'\n"
           "    case $state in\n"
           "        command) _describe -t commands command commands ;;\n"
           "        rest) case $words[1] in\n" +
           cases +
           "        esac ;;\n"
           "    esac\n}\n";
}

std::string zshScript(const Node &root)
{
    std::string out =
        "#compdef orvane\n# Completions of orvane for zsh; made by orvane completion zsh.\n"
        "typeset -ga _orvane_global\n_orvane_global=(" +
        zshOptions(root.options) +
        ")\n"
        "_orvane_names() {\n"
        "    local line=\"${(j: :)_orvane_typed} $IPREFIX$QIPREFIX$PREFIX\"\n"
        "    local -a names=(\"${(@f)$(orvane complete-word --shell zsh -- \"$line\" 2>/dev/null)}\")\n"
        "    if [[ $names[1] == ' ' ]]; then\n"
        "        shift names\n"
        "        compstate[insert]='' compstate[list]='list force'\n"
        "    fi\n"
        "    [[ -n $names[1] ]] && compadd -U -- $names\n"
        "}\n";
    for (const Node *node : allNodes(root))
        out += zshFunction(*node);
    return out + "if [[ $funcstack[1] == _orvane ]]; then\n    _orvane \"$@\"\nelse\n    compdef _orvane "
                 "orvane\nfi\n";
}

std::string fishOption(const OptionWords &option, const std::string &condition)
{
    std::string line = "complete -c orvane";
    if (!condition.empty())
        line += " -n " + inQuotes(condition);
    line += option.name.starts_with("--") ? " -l " + option.name.substr(2) : " -s " + option.name.substr(1);
    if (option.takesValue)
        line += option.wantsFolder ? " -x -a '(__fish_complete_directories)'" : " -x";
    return line + " -d " + inQuotes(option.description) + "\n";
}

std::string fishScript(const Node &root)
{
    std::string out = "# Completions of orvane for fish; made by orvane completion fish.\n"
                      "function __orvane_at\n"
                      "    # True when the command typed so far is exactly the one given.\n"
                      "    set -l path\n"
                      "    set -l skip 0\n"
                      "    for word in (commandline -opc)[2..-1]\n"
                      "        if test $skip = 1\n"
                      "            set skip 0\n"
                      "            continue\n"
                      "        end\n"
                      "        if contains -- $word " +
                      joined(valued(root), true, " ") + " " + joined(valued(root), false, " ") +
                      "\n"
                      "            set skip 1\n"
                      "        else if contains -- \"$path/$word\"";
    for (const Node *node : allNodes(root)) {
        for (const Node &child : node->children)
            out += " " + inQuotes(node->path + "/" + child.name());
    }
    out += "\n"
           "            set path (string trim -- \"$path $word\")\n"
           "        end\n"
           "    end\n"
           "    test \"$path\" = \"$argv\"\n"
           "end\n"
           "complete -c orvane -f\n";
    for (const OptionWords &option : root.options)
        out += fishOption(option, {});
    for (const Node *node : allNodes(root)) {
        const std::string condition = "__orvane_at " + node->path;
        for (const Node &child : node->children)
            out += "complete -c orvane -n " + inQuotes(condition) + " -a " + child.name() + " -d " +
                   inQuotes(child.description) + "\n";
        if (node->takesSentence)
            out += "complete -c orvane -n " + inQuotes(condition) +
                   " -a '(orvane complete-word --shell fish -- (commandline -cp | string collect) "
                   "2>/dev/null)'\n";
        if (node == &root)
            continue;
        for (const OptionWords &option : node->options)
            out += fishOption(option, condition);
    }
    return out;
}

} // namespace

std::optional<std::string> completionScript(const CLI::App &root, std::string_view shell)
{
    const Node node = nodeOf(root, {});
    if (shell == "bash")
        return bashScript(node);
    if (shell == "zsh")
        return zshScript(node);
    if (shell == "fish")
        return fishScript(node);
    return {};
}

} // namespace orvane
