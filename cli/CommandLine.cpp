// SPDX-License-Identifier: GPL-3.0-or-later
#include "CommandLine.h"

#include "CommandTree.h"
#include "Commands/Commands.h"
#include "Output/JsonShapes.h"
#include "Support/DateText.h"
#include "Terminal/StandardStreams.h"
#include "Terminal/TerminalStyle.h"
#include "Terminal/TextWidth.h"
#include "Time/AppClock.h"

#include <QCoreApplication>
#include <QLoggingCategory>
#include <algorithm>
#include <clocale>
#include <cstdlib>
#include <cstring>
#include <langinfo.h>
#include <simdjson.h>
#include <unistd.h>

#ifdef __GLIBC__
#include <malloc.h>
#include <sys/mman.h>
#include <unistd.h>
#endif

namespace orvane {

namespace {

bool asksForJson(const std::vector<std::string> &arguments)
{
    const auto end = std::ranges::find(arguments, "--");
    return std::find(arguments.begin(), end, "--json") != end;
}

int code(ExitStatus status)
{
    return static_cast<int>(status);
}

std::string failureText(const CommandFailure &failure, FailureForm form)
{
    const shapes::Error error = shapes::error(failure);
    if (form == FailureForm::outcome && failure.exitStatus == ExitStatus::failed)
        return shapes::text(
            shapes::FailedOutcome{SaveOutcome::failed, false, {}, failure.message, {}, error});
    return shapes::text(shapes::Failure{error});
}

/// The text with its sentences broken between words where a terminal would break them anywhere.
std::string forReading(const std::string &text)
{
    return wrapped(text, TerminalStyle::of(STDOUT_FILENO).width);
}

ExitStatus show(const CommandResult &result, bool json, FailureForm form)
{
    if (!result) {
        if (json && !writeOutput(failureText(result.error(), form)))
            return ExitStatus::failed;
        writeMessage(result.error().message);
        return result.error().exitStatus;
    }
    const bool isWritten = writeOutput(json ? result->output : forReading(result->output));
    const int reason = errno;
    for (const std::string &message : result->messages)
        writeMessage(message);
    if (isWritten)
        return result->exitStatus;
    // A reader that went away (`orvane list | head -1`) knows why itself, but what was changed is changed.
    if (reason != EPIPE)
        writeErrors(std::string("The output could not be written: ") + std::strerror(reason) + "\n");
    if (form == FailureForm::outcome)
        writeErrors(result->output);
    return ExitStatus::failed;
}

Task<> drive(Context context, CommandTree::Handler handler, FailureForm form)
{
    const CommandResult result = co_await handler(context);
    const ExitStatus status = show(result, context->json(), form);
    co_await context->finish();
    QCoreApplication::exit(code(status));
}

/// Qt wants a UTF-8 locale and complains about any other; texts here are UTF-8 whatever the locale says.
void useUtf8Locale()
{
    std::setlocale(LC_ALL, "");
    if (std::strcmp(nl_langinfo(CODESET), "UTF-8") != 0)
        setenv("LC_ALL", "C.UTF-8", 1);
}

#ifdef __GLIBC__
/// What the heap is given at once.
constexpr int headStart = 16 * 1024 * 1024;

/// Lets the heap lie in large pages: a few megabytes of entries take a millisecond of page faults otherwise.
/// What the kernel does not give is no loss.
void takeLargePages()
{
    constexpr std::uintptr_t page = std::uintptr_t{2} * 1024 * 1024;
    const auto begin = reinterpret_cast<std::uintptr_t>(::sbrk(0));
    void *volatile grown = std::malloc(page); // without the mark the compiler leaves both out
    std::free(grown);
    const auto end = reinterpret_cast<std::uintptr_t>(::sbrk(0));
    const std::uintptr_t first = (begin + page - 1) / page * page;
    const std::uintptr_t last = end / page * page;
    if (last > first)
        ::madvise(reinterpret_cast<void *>(first), last - first, MADV_HUGEPAGE);
}
#endif

/// A command is over in a moment: what it frees need not go back to the system, and a heap for each thread
/// costs more than two threads that wait for each other.
void expectAShortLife()
{
#ifdef __GLIBC__
    constexpr int much = 256 * 1024 * 1024;
    mallopt(M_ARENA_MAX, 1);
    mallopt(M_MMAP_THRESHOLD, much);
    mallopt(M_TRIM_THRESHOLD, much);
    mallopt(M_TOP_PAD, headStart);
    takeLargePages();
#endif
}

int runWithEventLoop(const CommandTree &tree, int argc, char **argv)
{
    expectAShortLife();
    useUtf8Locale();
    // What libraries would like developers to know is no message for the user.
    if (!std::getenv("QT_LOGGING_RULES"))
        QLoggingCategory::setFilterRules(QStringLiteral("*.debug=false\n*.info=false\n*.warning=false"));
    QCoreApplication application(argc, argv);
    QCoreApplication::setApplicationName(QStringLiteral("orvane"));
    QCoreApplication::setApplicationVersion(QStringLiteral(ORVANE_VERSION));
    auto context = std::make_shared<CommandContext>(tree.options());
    const CommandTree::Action &action = tree.action();
    QMetaObject::invokeMethod(
        &application, [&] { drive(context, action.handler, action.failureForm); }, Qt::QueuedConnection);
    const int status = QCoreApplication::exec();
    // The end of the account answers the calls that are still under way; those who made them come to their
    // end here.
    context.reset();
    QCoreApplication::sendPostedEvents();
    return status;
}

/// The clock starts where ORVANE_NOW says. The variable goes away, since a server that is started keeps the
/// system's time.
Result<std::monostate, CommandFailure> setClock()
{
    const char *text = std::getenv("ORVANE_NOW");
    if (!text || *text == '\0')
        return std::monostate();
    const auto now = instantFromIso8601(text);
    if (!now)
        return failure(CommandFailure::usage("ORVANE_NOW wants an instant such as 2026-03-01T09:30:00Z."));
    AppClock::setNow(*now);
    unsetenv("ORVANE_NOW");
    return std::monostate();
}

CommandAnswer versionAnswer(bool json)
{
    if (json)
        return {.output = shapes::text(shapes::Version{ORVANE_VERSION})};
    return {.output = "orvane " ORVANE_VERSION "\n"};
}

int run(const std::vector<std::string> &arguments, int argc, char **argv)
{
    const bool json = asksForJson(arguments);
    if (json)
        muteMessages();
    const auto end = [&](const CommandResult &result) {
        return code(show(result, json, FailureForm::error));
    };
    for (const std::string &argument : arguments) {
        if (!simdjson::validate_utf8(argument))
            return end(failure(CommandFailure::usage("The arguments have to be UTF-8 text.")));
    }
    CommandTree tree;
    addCommands(tree);
    if (const auto parsed = tree.parse(arguments); !parsed)
        return end(failure(parsed.error()));
    if (tree.wantsVersion())
        return end(versionAnswer(json));
    if (tree.wantsHelp())
        return end(CommandAnswer{.output = tree.help()});
    if (const auto clock = setClock(); !clock)
        return end(failure(clock.error()));
    if (tree.action().isPlain())
        return end(tree.action().plain(tree));
    if (const auto place = tree.checkPlace(); !place)
        return end(failure(place.error()));
    return runWithEventLoop(tree, argc, argv);
}

} // namespace

int runCommandLine(int argc, char **argv)
{
    takeOverSignals();
    return run(std::vector<std::string>(argv + std::min(argc, 1), argv + argc), argc, argv);
}

} // namespace orvane
