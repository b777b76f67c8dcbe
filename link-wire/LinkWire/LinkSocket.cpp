// SPDX-License-Identifier: GPL-3.0-or-later
#include "LinkWire/LinkSocket.h"

#include <sys/socket.h>
#include <sys/types.h>
#include <unistd.h>

namespace orvane {

bool isOwnUsersSocket(std::ptrdiff_t descriptor)
{
#ifdef __linux__
    struct ucred peer{};
    socklen_t size = sizeof peer;
    return ::getsockopt(static_cast<int>(descriptor), SOL_SOCKET, SO_PEERCRED, &peer, &size) == 0 &&
           peer.uid == ::geteuid();
#else
    uid_t user = 0;
    gid_t group = 0;
    return ::getpeereid(static_cast<int>(descriptor), &user, &group) == 0 && user == ::geteuid();
#endif
}

} // namespace orvane
