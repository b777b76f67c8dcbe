// SPDX-License-Identifier: GPL-3.0-or-later
#include "Security/PasswordGuesses.h"

#include "Names/NameText.h"

#include <QHostAddress>
#include <algorithm>

namespace orvane::server {

namespace {

std::string addressKey(const std::string &email, const std::string &peer)
{
    return peer + " " + nameKey(email);
}

bool isLoopback(const std::string &peer)
{
    return QHostAddress(QString::fromStdString(peer)).isLoopback();
}

} // namespace

std::optional<std::chrono::seconds> PasswordGuesses::wait(const std::string &email, const std::string &peer,
                                                          Instant now)
{
    const std::lock_guard lock(m_lock);
    return waitHere(addressKey(email, peer), peer, now);
}

std::optional<std::chrono::seconds> PasswordGuesses::settle(const std::string &email, const std::string &peer,
                                                            bool isRight, Instant now)
{
    const std::string key = addressKey(email, peer);
    const std::lock_guard lock(m_lock);
    if (const auto wait = waitHere(key, peer, now))
        return wait;
    m_byAddress.settle(key, isRight, now);
    if (!isRight && !isLoopback(peer))
        m_byPeer.settle(peer, false, now);
    return std::nullopt;
}

std::optional<std::chrono::seconds> PasswordGuesses::waitHere(const std::string &key, const std::string &peer,
                                                              Instant now)
{
    return std::max(m_byAddress.wait(key, now), m_byPeer.wait(peer, now));
}

} // namespace orvane::server
