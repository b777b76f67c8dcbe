// SPDX-License-Identifier: GPL-3.0-or-later
#include "Commands/Commands.h"

#include "CommandTree.h"
#include "Output/JsonShapes.h"
#include "Terminal/StandardStreams.h"
#include "Terminal/TextWidth.h"

#include <QHostAddress>
#include <QUrl>

namespace orvane {

namespace {

struct LoginOptions {
    std::optional<std::string> email;
    std::optional<std::string> provider;
    bool readsPassword = false;
    bool registers = false;
};

Result<std::string, CommandFailure> emailFor(const LoginOptions &options)
{
    if (options.email && !options.email->empty())
        return *options.email;
    if (!options.email && canAsk()) {
        std::string email = ask("E-mail: ", false);
        if (!email.empty())
            return email;
    }
    return failure(CommandFailure::usage("Say who signs in, with --email."));
}

Result<std::string, CommandFailure> passwordFor(const LoginOptions &options)
{
    std::string password;
    if (options.readsPassword)
        password = readInputLine();
    else if (canAsk())
        password = ask("Password: ", true);
    else
        return failure(CommandFailure::usage(
            "There is no terminal to ask for the password; pass it with --password-stdin."));
    if (password.empty())
        return failure(CommandFailure::of("The password is empty."));
    if (options.registers && !options.readsPassword && ask("The same again: ", true) != password)
        return failure(CommandFailure::of("The two passwords differ."));
    return password;
}

/// Whether what is sent to a server goes over a network as it is.
bool isReadableOnTheWay(const std::string &server)
{
    const QUrl url(QString::fromStdString(server));
    const QString host = url.host();
    return url.scheme() == QLatin1String("http") && host != QLatin1String("localhost") &&
           !QHostAddress(host).isLoopback();
}

CommandTask login(Context context, LoginOptions options)
{
    if (options.provider)
        co_return failure(CommandFailure::of("Signing in with " + printable(*options.provider) +
                                             " needs the desktop application; here, sign in with --email."));
    const auto server =
        context->options().server ? context->options().server : context->installation().currentServer();
    // Said before the password is typed.
    if (server && isReadableOnTheWay(*server))
        writeMessage(printable(*server) + " is not encrypted: your password and what you send can be read on "
                                          "the way. Use https:// if the server offers it.");
    auto email = emailFor(options);
    if (!email)
        co_return failure(email.error());
    auto password = passwordFor(options);
    if (!password)
        co_return failure(password.error());
    SignIn way = PasswordSignIn{*email, *password};
    if (options.registers)
        way = Registration{std::move(*email), std::move(*password)};
    const auto opened = co_await context->signIn(std::move(way));
    if (!opened)
        co_return failure(opened.error());
    const Account &account = **opened;
    if (context->json())
        co_return CommandAnswer{
            .output = shapes::text(shapes::SignIn{shapes::person(account), shapes::server(account)})};
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
    co_return CommandAnswer{.output = "The session at " + server + " was over already.\n"};
}

CommandTask logout(Context context)
{
    const auto opened = co_await context->openAccount();
    if (!opened && context->openError() == AccountError::Kind::signedOut)
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
                         "Sign in with another service's account");
    CommandTree::addFooter(
        command, "Name the server with --server. Without a sign-in, the account on this computer is used, "
                 "which needs none.");
    tree.onRun(command, [options](Context context) { return login(std::move(context), *options); });
    tree.onRun(tree.add("logout", "Sign out, and go back to the account on this computer", group), logout);
}

} // namespace orvane
