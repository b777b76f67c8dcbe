// SPDX-License-Identifier: GPL-3.0-or-later
#include "support/KernelKeys.h"

#include "Session/KernelKeyring.h"
#include "Session/TokenStoreChoice.h"

#ifdef __linux__
#include <QFile>
#include <array>
#include <cstddef>
#include <linux/filter.h>
#include <linux/keyctl.h>
#include <linux/seccomp.h>
#include <sys/prctl.h>
#include <sys/syscall.h>
#include <unistd.h>
#include <vector>
#endif

namespace orvane::testing {

bool hasKernelKeyring()
{
    return makeKernelKeyring("com.orvanetrack.test") != nullptr;
}

#ifdef __linux__

namespace {

/// The keys of an installation, by what `/proc/keys` shows of those that may be seen: "… user DESCRIPTION:
/// 43".
std::vector<long> keysOf(const std::string &dataFolder)
{
    const QByteArray mark = keychainService(dataFolder).toUtf8() + ' ';
    QFile file(QStringLiteral("/proc/keys"));
    std::vector<long> keys;
    if (!file.open(QIODevice::ReadOnly))
        return keys;
    for (const QByteArray &line : file.readAll().split('\n')) {
        if (line.contains(mark))
            keys.push_back(static_cast<std::int32_t>(line.left(line.indexOf(' ')).toUInt(nullptr, 16)));
    }
    return keys;
}

} // namespace

bool hasKernelKeys(const std::string &dataFolder)
{
    return !keysOf(dataFolder).empty();
}

void forgetKernelKeys(const std::string &dataFolder)
{
    for (const long key : keysOf(dataFolder))
        ::syscall(SYS_keyctl, KEYCTL_UNLINK, key, KEY_SPEC_USER_KEYRING);
}

void joinFreshKeyringSession()
{
    ::syscall(SYS_keyctl, KEYCTL_JOIN_SESSION_KEYRING, nullptr);
}

void forbidKernelKeyring()
{
    std::array<sock_filter, 5> filter{{
        BPF_STMT(BPF_LD | BPF_W | BPF_ABS, offsetof(seccomp_data, nr)),
        BPF_JUMP(BPF_JMP | BPF_JEQ | BPF_K, SYS_keyctl, 1, 0),
        BPF_JUMP(BPF_JMP | BPF_JEQ | BPF_K, SYS_add_key, 0, 1),
        BPF_STMT(BPF_RET | BPF_K, SECCOMP_RET_ERRNO | 1U),
        BPF_STMT(BPF_RET | BPF_K, SECCOMP_RET_ALLOW),
    }};
    const sock_fprog program{filter.size(), filter.data()};
    ::prctl(PR_SET_NO_NEW_PRIVS, 1, 0, 0, 0);
    ::prctl(PR_SET_SECCOMP, SECCOMP_MODE_FILTER, &program);
}

#else

bool hasKernelKeys(const std::string &)
{
    return false;
}

void forgetKernelKeys(const std::string &) {}
void joinFreshKeyringSession() {}
void forbidKernelKeyring() {}

#endif

} // namespace orvane::testing
