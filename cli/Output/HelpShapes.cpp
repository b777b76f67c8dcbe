// SPDX-License-Identifier: GPL-3.0-or-later
#include "Output/HelpShapes.h"

#include "Support/JsonImpl.h"

namespace orvane {

template <>
struct JsonFields<shapes::HelpArgument> {
    static constexpr auto list = JsonFieldList{jsonField<"name">(&shapes::HelpArgument::name),
                                               jsonField<"help">(&shapes::HelpArgument::help),
                                               jsonField<"required">(&shapes::HelpArgument::required),
                                               jsonField<"repeats">(&shapes::HelpArgument::repeats)};
};
template <>
struct JsonFields<shapes::HelpOption> {
    static constexpr auto list = JsonFieldList{
        jsonField<"name">(&shapes::HelpOption::name), jsonField<"short">(&shapes::HelpOption::shortName),
        jsonField<"value">(&shapes::HelpOption::value), jsonField<"help">(&shapes::HelpOption::help)};
};
template <>
struct JsonFields<shapes::Help> {
    static constexpr auto list = JsonFieldList{
        jsonField<"name">(&shapes::Help::name),           jsonField<"summary">(&shapes::Help::summary),
        jsonField<"usage">(&shapes::Help::usage),         jsonField<"more">(&shapes::Help::more),
        jsonField<"arguments">(&shapes::Help::arguments), jsonField<"options">(&shapes::Help::options),
        jsonField<"commands">(&shapes::Help::commands)};
};

ORVANE_JSON(shapes::Help)

} // namespace orvane
