// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Support/Instant.h"

#include <QObject>
#include <QString>
#include <optional>
#include <string>

namespace orvane {

/// How an account stands with its server, the one place where that is told. Every answer, every silence, the
/// session's end and the outbox feed it; whoever shows it listens to `changed`.
///
/// Owner: the server access. Thread: the main thread.
class AccountState final : public QObject {
    Q_OBJECT
    Q_PROPERTY(Kind kind READ kind NOTIFY changed)
    Q_PROPERTY(QString reason READ reasonText NOTIFY changed)

public:
    enum class Kind {
        /// On the way to the account.
        opening,
        /// Nobody is signed in.
        signedOut,
        /// The server answered last.
        online,
        /// It cannot be reached, or says to try again later; `reason` says why, `nextTry` when.
        offline,
        /// The server says that this is another account than the one whose changes wait; nothing is sent.
        heldBack,
        /// The server has ended the session; the user has to sign in again.
        sessionEnded,
    };
    Q_ENUM(Kind)

    Kind kind() const;
    bool isOnline() const { return kind() == Kind::online; }
    /// Whether the server answered last, whatever the session's state.
    bool isReachable() const { return m_isReachable; }
    /// Whether it answered last, but said to try again later; `isReachable` is false then.
    bool isTurnedAway() const { return m_isTurnedAway; }
    /// Why the server cannot be reached, as a sentence; empty when it can.
    const std::string &reason() const { return m_reason; }
    QString reasonText() const { return QString::fromStdString(m_reason); }
    /// When the server is asked again without anybody's doing.
    const std::optional<Instant> &nextTry() const { return m_nextTry; }

    // What is fed
    void noteAnswer();
    void noteSilence(const std::string &reason);
    void noteTurnedAway(const std::string &reason);
    /// Nobody waits for the server any more: what is heard from here on changes nothing.
    void giveUp(const std::string &reason);
    void noteOpened();
    void noteSignedOut();
    void noteSessionEnd();
    void setHeldBack(bool isHeldBack);
    void setNextTry(std::optional<Instant> nextTry);

Q_SIGNALS:
    void changed();
    /// The server answers again.
    void cameBack();

private:
    enum class Session { opening, open, signedOut, ended };
    void setSession(Session session);
    void noteAway(const std::string &reason, bool isTurnedAway);

    Session m_session = Session::opening;
    bool m_isReachable = true;
    bool m_isTurnedAway = false;
    bool m_isGivenUp = false;
    bool m_isHeldBack = false;
    std::string m_reason;
    std::optional<Instant> m_nextTry;
};

} // namespace orvane
