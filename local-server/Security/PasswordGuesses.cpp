// SPDX-License-Identifier: GPL-3.0-or-later
#include "Security/PasswordGuesses.h"

#include "Records/NameText.h"

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
                                                          Instant now) const
{
    return std::max(m_byAddress.wait(addressKey(email, peer), now), m_byPeer.wait(peer, now));
}

void PasswordGuesses::failed(const std::string &email, const std::string &peer, Instant now)
{
    m_byAddress.failed(addressKey(email, peer), now);
    if (!isLoopback(peer))
        m_byPeer.failed(peer, now);
}

void PasswordGuesses::succeeded(const std::string &email, const std::string &peer)
{
    m_byAddress.succeeded(addressKey(email, peer));
}

} // namespace orvane::server
