// SPDX-License-Identifier: GPL-3.0-or-later
// Any bytes as a configuration of git, as an address and as a ".git" file: an address that is read can be
// written so that it reads back, its identity is one of the two forms, and a folder that is named is a path.
#include "Repositories/GitConfig.h"
#include "Repositories/GitFiles.h"
#include "Repositories/RepositoryIdentity.h"
#include "Support/Require.h"

#include <cstdint>

namespace {

using namespace orvane;

std::string quoted(const std::string &value)
{
    std::string result = "[remote \"origin\"]\n\turl = \"";
    for (const char character : value) {
        if (character == '\n')
            result += "\\n";
        else if (character == '"' || character == '\\')
            result.append("\\").append(1, character);
        else
            result += character;
    }
    return result + "\"\n";
}

void checkAddress(std::string_view address)
{
    const auto remote = RepositoryIdentity::remoteAddress(address);
    const std::string identity = RepositoryIdentity::of(address, "/x");
    if (!remote) {
        ORVANE_REQUIRE(identity.starts_with("path:") && identity.size() == 37, "no digest");
        return;
    }
    ORVANE_REQUIRE(identity == "origin:" + *remote, "another address");
    ORVANE_REQUIRE(remote->find('@') >= remote->find('/'), "a user is left");
    if (remote->contains('/'))
        ORVANE_REQUIRE(RepositoryIdentity::remoteAddress("SSH://git@" + *remote + ".git/") == remote,
                       "another spelling has another identity");
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    const std::string_view text(reinterpret_cast<const char *>(data), size);
    const std::string origin = GitConfig::origin(text);
    ORVANE_REQUIRE(GitConfig::origin(quoted(origin)) == origin, "not read back");
    checkAddress(origin);
    checkAddress(text);
    for (const auto &folder : {linkedGitFolder(text), linkedCommonFolder(text)})
        ORVANE_REQUIRE(!folder ||
                           (!folder->empty() && folder->size() <= longestPath && !folder->contains('\0')),
                       "no path");
    return 0;
}
