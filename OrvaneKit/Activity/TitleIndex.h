// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "AgentLogs/ActivityFileStamp.h"
#include "AgentLogs/AgentLogFormat.h"

#include <map>
#include <optional>
#include <string>

namespace orvane {

/// The file in which an agent lists its sessions' titles, read again when it changed. One thread at a time.
class TitleIndex {
public:
    /// The file as it is now; an agent without one has no path.
    void refresh(const AgentLogFormat &format, const std::string &path);
    /// Nothing for a session that it does not list. By the session's key.
    const std::string *title(const std::string &key) const;
    const std::optional<ActivityFileStamp> &stamp() const { return m_stamp; }

private:
    std::optional<ActivityFileStamp> m_stamp;
    std::map<std::string, std::string> m_titles;
};

} // namespace orvane
