// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Session/TokenStore.h"

#include <QString>
#include <chrono>
#include <memory>

namespace orvane {

/// The system's keychain: the Keychain of macOS, the Secret Service elsewhere. An item is found by the
/// store's service and the account.
///
/// A keychain can be locked, stop answering or go away while the process runs. No operation takes longer than
/// `patience`; once one has, the keychain is not asked again until that operation's late answer shows that it
/// is back, and reads say meanwhile that it is silent. Where it answers but fails, the values that this
/// process wrote or read last are taken from its memory, so that a session which was alive goes on.
///
/// A value that could not be written, or whose writing got no answer, is written again by the next read,
/// unless the keychain has a newer one by then: another process may have renewed meanwhile.
class Keychain final : public TokenStore {
public:
    explicit Keychain(QString service, std::chrono::milliseconds patience = std::chrono::seconds{5});
    ~Keychain() override;

    Task<StoredToken> read(std::string account) override;
    Task<> write(std::string value, std::string account) override;
    Task<> remove(std::string account) override;
    /// Writes for who has another place: tells whether the keychain took the value in time, and forgets one
    /// that it did not take.
    Task<bool> keep(std::string value, std::string account);

    enum class Health { works, fails, silent };
    /// Whether a keychain is there and keeps what it is given: writes, reads and deletes an item of its own.
    /// Nothing less tells, since a service without a collection answers a read like one that lacks the item.
    static Task<Health> probe(std::chrono::milliseconds patience = std::chrono::seconds{3});

private:
    /// Shared with the operations under way.
    struct State;
    std::shared_ptr<State> m_state;
};

} // namespace orvane
