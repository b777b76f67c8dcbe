// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Account/Account.h"
#include "QuickEntry/EntrySentence.h"

#include <optional>
#include <string>
#include <vector>

namespace orvane {

/// The sentence of a command and what it says in the account's workspace.
struct TypedSentence {
    EntrySentence::Reading reading;
    /// How it was read, and how times beside it are.
    EntrySentence::Options options;
    /// The stretch of the time that it names.
    std::optional<EntrySentence::Span> span;
    bool isLiteral = false;

    /// Nothing was typed: an empty reading. `literally`: all of it is the description.
    static TypedSentence read(const std::optional<std::string> &sentence, const Account &account,
                              bool literally = false);

    /// What its entry will not have as it was perhaps meant: sentences for people.
    std::vector<std::string> leftOut(const Tracker &tracker) const;
    /// Why a time that was typed is none, in a sentence for who would record something else without it.
    std::optional<std::string> unreadTime(const UserTime &time) const;
    /// Whether there is a time in it, or what looks like one.
    bool namesTime() const;
    /// Whether it holds nothing but names and times that were not understood.
    bool saysNothing() const;
    /// A message and these sentences, for a sentence that says too little.
    std::string withNotes(std::string message, const Tracker &tracker) const;
};

/// One of these sentences where the entry was refused: nothing stays in its description.
std::string noteOfRefused(std::string note);

} // namespace orvane
