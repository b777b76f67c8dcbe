// SPDX-License-Identifier: GPL-3.0-or-later
#include "Commands/Commands.h"

#include "Account/ServerAddress.h"
#include "CommandTree.h"
#include "Commands/BrowserSignIn.h"
#include "Input/WantedAddress.h"
#include "Output/JsonShapes.h"
#include "Terminal/StandardStreams.h"
#include "Terminal/TextWidth.h"

namespace orvane {

namespace {

struct LoginOptions {
    std::optional<std::string> email;
    std::optional<std::string> provider;
    bool readsPassword = false;
    bool registers = false;
};

/// The server named, else the one signed in to last, else the one that the user names when asked.
Result<std::string, CommandFailure> serverFor(CommandContext &context)
{
    if (context.options().server)
        return *context.options().server;
    const Installation &installation = context.installation();
    for (const auto &known : {installation.currentServer(), installation.lastServer()}) {
        if (known)
            return *known;
    }
    const std::string answer =
        context.json() || !canAsk() ? "" : ask("Server, such as https://time.example.com: ", false);
    if (answer.empty())
        return failure(CommandFailure::usage("Say where to sign in, with --server URL."));
    if (auto address = serverAddressOf(answer))
        return *std::move(address);
    return failure(CommandFailure::usage("Signing in" + wantedAddress(answer)));
}

Result<std::string, CommandFailure> emailFor(const LoginOptions &options, const std::string &server)
{
    if (options.email && !options.email->empty())
        return *options.email;
    if (!options.email && canAsk()) {
        std::string email = ask("E-mail at " + printable(server) + ": ", false);
        if (!email.empty())
            return email;
    }
    return failure(CommandFailure::usage("Say who signs in, with --email."));
}

Result<std::string, CommandFailure> passwordFor(const LoginOptions &options, const std::string &email,
                                                const std::string &server)
{
    std::string password;
    if (options.readsPassword)
        password = readInputLine();
    else if (canAsk())
        password = ask("Password of " + printable(email) + " at " + printable(server) + ": ", true);
    else
        return failure(CommandFailure::usage(
            "There is no terminal to ask for the password; pass it with --password-stdin."));
    if (password.empty())
        return failure(CommandFailure::of("The password is empty."));
    if (options.registers && !options.readsPassword && ask("The same again: ", true) != password)
        return failure(CommandFailure::of("The two passwords differ."));
    return password;
}

/// Whoever reads it knows which server did not let them in.
CommandFailure failedAt(const std::string &server, const LoginOptions &options, CommandFailure failure)
{
    failure.message = std::string(options.registers ? "Registering" : "Signing in") + " at " +
                      printable(server) + " failed. " + failure.message;
    return failure;
}

Result<SignIn, CommandFailure> passwordWay(const LoginOptions &options, const std::string &server)
{
    auto email = emailFor(options, server);
    if (!email)
        return failure(email.error());
    auto password = passwordFor(options, *email, server);
    if (!password)
        return failure(password.error());
    if (options.registers)
        return Registration{std::move(*email), std::move(*password)};
    return PasswordSignIn{std::move(*email), std::move(*password)};
}

/// Looks first whether it can be done at all, so that nobody types a password in vain.
Task<Result<Account *, CommandFailure>> enter(Context context, LoginOptions options, std::string server)
{
    const auto met = co_await context->meetServer(server);
    if (!met)
        co_return failure(failedAt(server, options, met.error()));
    if (options.registers && !met->registrationOpen)
        co_return failure(failedAt(server, options, CommandFailure::of("It takes no new accounts.")));
    if (options.provider) {
        auto opened = co_await signInWithBrowser(context, *met, server, *options.provider);
        if (!opened)
            co_return failure(failedAt(server, options, opened.error()));
        co_return *opened;
    }
    auto way = passwordWay(options, server);
    if (!way)
        co_return failure(way.error());
    const auto opened = co_await context->signIn(std::move(*way));
    if (!opened)
        co_return failure(failedAt(server, options, opened.error()));
    co_return *opened;
}

CommandTask login(Context context, LoginOptions options)
{
    if (options.provider && (options.email || options.readsPassword || options.registers))
        co_return failure(CommandFailure::usage(
            "--provider asks in the browser: --email, --password-stdin and --register do not go with it."));
    const auto server = serverFor(*context);
    if (!server)
        co_return failure(server.error());
    std::vector<std::string> notes;
    if (isReadableOnTheWay(*server)) {
        notes.push_back(
            printable(*server) +
            " is not encrypted: your password and what you send can be read on the way. Use https:// "
            "if the server offers it.");
        writeMessage(notes.back());
    }
    const auto opened = co_await enter(context, options, *server);
    if (!opened)
        co_return failure(opened.error());
    Account &account = **opened;
    if (!account.access().tokenNotice().empty())
        notes.push_back(account.access().tokenNotice());
    if (context->json())
        co_return CommandAnswer{
            .output = shapes::text(shapes::SignIn{shapes::person(account), shapes::server(account), notes})};
    co_return CommandAnswer{.output = std::string(options.registers ? "Registered" : "Signed in") + " at " +
                                      account.server() + " as " + printable(account.me().email) + ".\n"};
}

/// The session is over already, by the server's doing or with the process that kept it; what is left is to go
/// back to the account on this computer.
CommandTask leaveEndedSession(Context context)
{
    const std::string server =
        context->options().server.value_or(context->installation().currentServer().value_or(""));
    const auto left = co_await context->leaveEndedSession();
    if (!left)
        co_return failure(left.error());
    if (context->json())
        co_return CommandAnswer{.output = shapes::text(shapes::SignIn{{}, {server, false, false}})};
    if (context->isSignInUnseen())
        co_return CommandAnswer{.output = "No sign-in at " + server +
                                          " can be read here, so the account on this computer is used from "
                                          "now on. One that lies in a keychain stays; to end it, where the "
                                          "keychain can be read: orvane --server " +
                                          server + " logout\n"};
    co_return CommandAnswer{.output = "The session at " + server + " was over already.\n"};
}

/// Whether there is no session, but what is left of one. Where nobody ever signed in nothing is left, unless
/// it is the server in use all the same.
bool isToBeLeft(CommandContext &context)
{
    using Kind = AccountError::Kind;
    const auto current = context.installation().currentServer();
    return context.openError() == Kind::signedOut ||
           (context.openError() == Kind::neverSignedIn && current &&
            context.options().server.value_or(*current) == *current);
}

CommandTask logout(Context context)
{
    const auto opened = co_await context->openAccount();
    if (!opened && isToBeLeft(*context))
        co_return co_await leaveEndedSession(context);
    if (!opened)
        co_return failure(opened.error());
    Account &account = **opened;
    if (account.isAutomatic())
        co_return failure(CommandFailure::of(
            "The account on this computer signs in by itself; there is nothing to sign out of."));
    const shapes::SignIn answer{{}, shapes::server(account)};
    const std::string email = printable(account.me().email);
    const auto done = co_await account.signOut();
    if (!done)
        co_return failure(CommandFailure::of(done.error()));
    if (context->json())
        co_return CommandAnswer{.output = shapes::text(answer)};
    co_return CommandAnswer{.output = "Signed out " + email + " at " + answer.server.url + ".\n"};
}

} // namespace

void addSignInCommands(CommandTree &tree)
{
    const std::string group = "The account";
    const auto options = std::make_shared<LoginOptions>();
    CLI::App *command = tree.add("login", "Sign in to a server, or register there", group);
    CommandTree::addText(command, "--email", options->email, "EMAIL",
                         "Who signs in; asked for unless it is named");
    CommandTree::addFlag(command, "--password-stdin", options->readsPassword,
                         "Read the password from standard input");
    CommandTree::addFlag(command, "--register", options->registers, "Make a new account");
    CommandTree::addText(command, "--provider", options->provider, "NAME",
                         "Sign in with another service's account, in the browser");
    CommandTree::addFooter(
        command,
        "Name the server with --server; else it is the one signed in to last, or asked for. Without a "
        "sign-in, the account on this computer is used, which needs none.");
    tree.onRun(command, [options](Context context) { return login(std::move(context), *options); });
    tree.onRun(tree.add("logout", "Sign out, and go back to the account on this computer", group), logout);
}

} // namespace orvane
