// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Account/Account.h"
#include "Http/CallError.h"
#include "LocalStore/LocalStore.h"
#include "Support/Result.h"
#include "Support/Task.h"

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <vector>

namespace orvane {

/// How a command ends; what scripts see.
enum class ExitStatus : int { done = 0, failed = 1, usage = 2, interrupted = 130 };

/// Why a command did not do what it was asked to: a sentence for people, and for programs what the server
/// said.
struct CommandFailure {
    ExitStatus exitStatus = ExitStatus::failed;
    std::string message;
    std::optional<std::int64_t> status = {};
    std::optional<std::string> type = {};
    std::optional<std::string> title = {};
    std::optional<std::string> detail = {};
    std::optional<std::map<std::string, std::vector<std::string>>> fieldErrors = {};

    static CommandFailure of(std::string message);
    /// The command was called in a wrong way.
    static CommandFailure usage(std::string message);
    /// `message` instead of the error's own sentence when it is not empty.
    static CommandFailure of(const CallError &error, std::string message = {});
    static CommandFailure of(const AccountError &error);
    static CommandFailure of(const StoreError &error);
};

/// What a command ends with when it went well, or as far as it went.
struct CommandAnswer {
    /// Everything for standard output, in the form that was asked for.
    std::string output;
    /// Lines for people, shown after the output.
    std::vector<std::string> messages = {};
    ExitStatus exitStatus = ExitStatus::done;
};

using CommandResult = Result<CommandAnswer, CommandFailure>;
using CommandTask = Task<CommandResult>;

} // namespace orvane
