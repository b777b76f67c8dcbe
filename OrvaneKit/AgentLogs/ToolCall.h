// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>
#include <string_view>

namespace orvane {

/// Whose tool an agent called. Any thread.
enum class ToolCall : std::uint8_t {
    own,     ///< our own connector: the agent reads or proposes time
    neutral, ///< says nothing about the work, such as searching among the tools
    other,
};

/// By the tool's name and, where the log names it apart, its server or namespace (empty otherwise).
ToolCall toolCall(std::string_view name, std::string_view server = {});

/// The calls of several tools in one: what any of them says, `other` before `own` before `neutral`.
class ToolCalls {
public:
    void add(ToolCall call)
    {
        m_hasOwn |= call == ToolCall::own;
        m_hasOther |= call == ToolCall::other;
    }
    /// Adds each tool that a piece of code calls; code that calls none counts as another tool itself.
    void addCode(std::string_view code);
    bool hasOwn() const { return m_hasOwn; }
    bool hasOther() const { return m_hasOther; }

private:
    bool m_hasOwn = false;
    bool m_hasOther = false;
};

} // namespace orvane
