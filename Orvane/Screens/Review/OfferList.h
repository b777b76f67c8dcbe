// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Proposals/ProposalText.h"
#include "Screens/Projects/CatalogRows.h"

#include <QString>
#include <string>

namespace orvane {

/// Something to settle: an agent's proposal in words.
struct Offer {
    std::string id;
    ProposalText text;
    /// As a project's colour is drawn: the server's, empty without a project.
    QString color;
    bool isRemoval = false;

    bool operator==(const Offer &) const = default;
    const std::string &key() const { return id; }
};

/// What waits to be settled, in the order in which one settles it.
///
/// Owner: the ReviewModel. Thread: the main thread.
class OfferList final : public CatalogRows<Offer> {
    Q_OBJECT

public:
    enum Role {
        offerIdRole = Qt::UserRole,
        titleRole,
        timesRole,
        placeRole,
        colorRole,
        tagsRole,
        billingRole,
        fieldsRole, ///< a list of { name, before, after }
        noteRole,
        isRemovalRole,
    };

    explicit OfferList(QObject *parent) : CatalogRows(parent) {}

    QVariant data(const QModelIndex &index, int role) const override;
    QHash<int, QByteArray> roleNames() const override;
};

/// Something that was settled lately.
struct SettledOffer {
    std::string id;
    QString what;
    QString about;
    QString at;
    bool isTaken = false;
    /// It can wait again.
    bool mayReopen = false;

    bool operator==(const SettledOffer &) const = default;
    const std::string &key() const { return id; }
};

/// What was settled lately, the last first.
///
/// Owner: the ReviewModel. Thread: the main thread.
class SettledList final : public CatalogRows<SettledOffer> {
    Q_OBJECT
    Q_PROPERTY(int count READ count NOTIFY countChanged)

public:
    enum Role { offerIdRole = Qt::UserRole, whatRole, aboutRole, atRole, isTakenRole, mayReopenRole };

    explicit SettledList(QObject *parent) : CatalogRows(parent) {}

    void update(std::vector<SettledOffer> rows);
    int count() const { return rowCount(); }
    QVariant data(const QModelIndex &index, int role) const override;
    QHash<int, QByteArray> roleNames() const override;

Q_SIGNALS:
    void countChanged();
};

} // namespace orvane
