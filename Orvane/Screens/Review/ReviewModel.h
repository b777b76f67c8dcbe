// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Proposals/AgentProposals.h"
#include "Screens/Review/OfferList.h"
#include "Support/Task.h"

#include <QObject>
#include <QPointer>
#include <optional>

namespace orvane {

class AppModel;
class Tracker;
class TimerModel;

/// Review: what waits for the user's answer, offer by offer, and what was settled lately. Nothing changes
/// before it is taken; what was taken or declined is a step that undo takes back.
///
/// Owner: the program. Thread: the main thread; the AppModel and the TimerModel outlive it.
class ReviewModel final : public QObject {
    Q_OBJECT
    Q_PROPERTY(orvane::OfferList *offers READ offers CONSTANT)
    Q_PROPERTY(orvane::SettledList *settled READ settled CONSTANT)
    Q_PROPERTY(int waiting READ waiting NOTIFY changed)
    Q_PROPERTY(int settledToday READ settledToday NOTIFY changed)
    /// The first answer is still to come.
    Q_PROPERTY(bool isLoading READ isLoading NOTIFY changed)
    /// Why there is nothing to show; empty when all is well.
    Q_PROPERTY(QString problem READ problem NOTIFY changed)
    /// An answer is on its way, and no other is taken.
    Q_PROPERTY(bool isSettling READ isSettling NOTIFY changed)

public:
    ReviewModel(AppModel &app, TimerModel &timer);

    OfferList *offers() { return &m_offers; }
    SettledList *settled() { return &m_settled; }
    int waiting() const { return m_offers.rowCount(); }
    int settledToday() const { return m_settledToday; }
    bool isLoading() const { return m_isLoading; }
    QString problem() const { return m_problem; }
    bool isSettling() const { return m_isSettling; }

    /// What is proposed becomes so.
    Q_INVOKABLE void accept(const QString &id);
    Q_INVOKABLE void decline(const QString &id);
    /// Puts what is proposed where it can be changed before it is recorded: a new entry into the timer's
    /// field, a change into the entry's editor. It is settled once that is recorded. False where it cannot.
    Q_INVOKABLE bool edit(const QString &id);
    /// Has something settled wait again, and takes back what it did.
    Q_INVOKABLE void reopen(const QString &id);
    Q_INVOKABLE void loadAgain();

Q_SIGNALS:
    void changed();

private:
    void follow();
    void loadWhenReady();
    void show();
    void setSettling(bool isSettling);
    Offer offerOf(const AgentProposalResponse &proposal) const;
    SettledOffer settledOf(const AgentProposalResponse &proposal) const;
    QString moment(Instant at) const;
    Task<> load();
    Task<> doAccept(std::string id);
    Task<> doDecline(std::string id);
    Task<> doReopen(std::string id);
    Task<> noteHandled(std::string id, std::vector<std::string> entryIds);
    bool editNew(const AgentProposalResponse &proposal);
    bool editChange(const AgentProposalResponse &proposal);
    void handleFieldText();
    void finish(const AgentProposalResponse &proposal);
    void tellFailure(const CallError &error);

    /// A proposal whose contents are being edited: in the field, or in the editor of an entry.
    struct Edited {
        std::string proposalId;
        QString entryId; ///< empty: in the field
    };

    AppModel *m_app;
    TimerModel *m_timer;
    QPointer<Tracker> m_tracker;
    QPointer<AgentProposals> m_proposals;
    OfferList m_offers;
    SettledList m_settled;
    int m_settledToday = 0;
    bool m_isLoading = false;
    bool m_isLoaded = false;
    bool m_isSettling = false;
    QString m_problem;
    std::optional<Edited> m_edited;
    QString m_fieldText;
    /// What stood in the field before it was emptied.
    QString m_clearedText;
};

} // namespace orvane
