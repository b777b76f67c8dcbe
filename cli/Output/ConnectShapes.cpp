// SPDX-License-Identifier: GPL-3.0-or-later
#include "Output/ConnectShapes.h"

#include "Support/JsonImpl.h"

namespace orvane {

template <>
struct JsonFields<shapes::Connection> {
    static constexpr auto list = JsonFieldList{jsonField<"message">(&shapes::Connection::message),
                                               jsonField<"commands">(&shapes::Connection::commands)};
};

ORVANE_JSON(shapes::Connection)

} // namespace orvane
