// SPDX-License-Identifier: GPL-3.0-or-later
#include "Activity/TitleIndex.h"

#include "AgentLogs/ActivityLineReader.h"
#include "AgentLogs/LogRecords.h"
#include "AgentLogs/SessionTitle.h"
#include "Support/FileDescriptor.h"

#include <fcntl.h>

namespace orvane {

void TitleIndex::refresh(const AgentLogFormat &format, const std::string &path)
{
    const auto stamp = ActivityFileStamp::of(path);
    if (stamp == m_stamp)
        return;
    m_stamp = stamp;
    m_titles.clear();
    if (!stamp || !stamp->isRegularFile)
        return;
    const FileDescriptor file(::open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK));
    if (!file)
        return;
    const std::string prefix = std::string(jsonText(format.source)) + ":";
    ActivityLineReader reader;
    // What could be read counts; the newest row of a session wins.
    static_cast<void>(reader.read(file.get(), {}, stamp->size, [&](std::string_view line) {
        const auto row = logrecords::read<logrecords::CodexIndexRow>(line);
        const auto id = row ? logrecords::text(row->id) : std::nullopt;
        const std::string title =
            row ? sessiontitle::of(logrecords::textOr(row->thread_name)) : std::string{};
        if (id && !title.empty())
            m_titles[prefix + *id] = title;
    }));
}

const std::string *TitleIndex::title(const std::string &key) const
{
    const auto found = m_titles.find(key);
    return found == m_titles.end() ? nullptr : &found->second;
}

} // namespace orvane
