// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "support/CommandRun.h"

#include <string>

namespace orvane::testing {

/// An installation with a week of time as people have it, made with the command, and a clock that stands
/// where that week is. The server ends with it.
class PictureWorld {
public:
    enum class Contents { week, nothing };

    explicit PictureWorld(Contents contents = Contents::week);
    ~PictureWorld();

    std::string folder() const { return m_installation.folder(); }
    const TestInstallation &installation() const { return m_installation; }

private:
    void add(const Arguments &arguments, const std::string &input = {}) const;
    void addCatalog() const;
    void addWeek() const;

    TestInstallation m_installation;
};

} // namespace orvane::testing
