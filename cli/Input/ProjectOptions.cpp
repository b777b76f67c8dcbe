// SPDX-License-Identifier: GPL-3.0-or-later
#include "Input/ProjectOptions.h"

#include "Catalog/TypedAmounts.h"
#include "Terminal/TerminalStyle.h"
#include "Terminal/TextWidth.h"
#include "Time/TextScanner.h"

namespace orvane {

namespace {

std::string wrongValue(const std::string &option, const std::string &meaning, const std::string &typed)
{
    return option + " wants " + meaning + ", not \"" + printable(typed) + "\".";
}

/// Without its sign too, which begins a comment in a shell.
std::optional<std::string> typedColour(const std::string &typed)
{
    std::string colour = typed.starts_with('#') ? typed : "#" + typed;
    return colourFromText(colour) ? std::optional(std::move(colour)) : std::nullopt;
}

} // namespace

std::optional<std::string> typedNameProblem(const std::string &name)
{
    return TextScanner::trimmed(name).empty() ? std::optional<std::string>("A name cannot be empty.")
                                              : std::nullopt;
}

Result<ProjectFields, std::string> ProjectOptions::appliedTo(ProjectFields fields) const
{
    if (name) {
        if (auto problem = typedNameProblem(*name))
            return failure(std::move(*problem));
        fields.name = *name;
    }
    if (color) {
        const auto colour = typedColour(*color);
        if (!colour)
            return failure(wrongValue("--color", "a colour such as \"#33aa77\"", *color));
        fields.color = *colour;
    }
    if (rate) {
        fields.hourlyRate = parseTypedRate(*rate);
        if (!fields.hourlyRate && !rate->empty())
            return failure(wrongValue("--rate", "an amount for an hour such as 80 or 12.50", *rate));
    }
    if (estimate) {
        fields.estimateSeconds = parseTypedEstimate(*estimate);
        if (!fields.estimateSeconds && !estimate->empty())
            return failure(
                wrongValue("--estimate", "a length with its unit, such as 40h or 1:30", *estimate));
    }
    fields.isBillable = isBillable.value_or(fields.isBillable);
    fields.isPrivate = isPrivate.value_or(fields.isPrivate);
    return fields;
}

} // namespace orvane
