// SPDX-License-Identifier: GPL-3.0-or-later
#include "Screens/Review/OfferList.h"

#include <QVariantList>
#include <QVariantMap>

namespace orvane {

namespace {

QString said(const std::string &text)
{
    return QString::fromStdString(text);
}

/// "Yesterday, 08:10 – 08:46 · 36m"
QString timesOf(const ProposalText &text)
{
    const QString times = said(text.day) + QStringLiteral(", ") + said(text.times);
    return text.length.empty() ? times : times + QStringLiteral(" · ") + said(text.length);
}

QVariantList fieldsOf(const ProposalText &text)
{
    QVariantList fields;
    for (const ProposedField &field : text.fields)
        fields << QVariantMap{{QStringLiteral("name"), said(field.name)},
                              {QStringLiteral("before"), said(field.before)},
                              {QStringLiteral("after"), said(field.after)}};
    return fields;
}

} // namespace

QVariant OfferList::data(const QModelIndex &index, int role) const
{
    if (!checkIndex(index, CheckIndexOption::IndexIsValid))
        return {};
    const Offer &offer = rows()[static_cast<std::size_t>(index.row())];
    switch (role) {
    case offerIdRole:
        return said(offer.id);
    case titleRole:
        return said(offer.text.title);
    case timesRole:
        return timesOf(offer.text);
    case placeRole:
        return said(offer.text.place);
    case colorRole:
        return offer.color;
    case tagsRole:
        return said(offer.text.tags);
    case billingRole:
        return said(offer.text.billing);
    case fieldsRole:
        return fieldsOf(offer.text);
    case noteRole:
        return said(offer.text.note);
    case isRemovalRole:
        return offer.isRemoval;
    default:
        return {};
    }
}

QHash<int, QByteArray> OfferList::roleNames() const
{
    return {{offerIdRole, "offerId"},    {titleRole, "title"},        {timesRole, "times"},
            {placeRole, "place"},        {colorRole, "projectColor"}, {tagsRole, "tags"},
            {billingRole, "billing"},    {fieldsRole, "fields"},      {noteRole, "note"},
            {isRemovalRole, "isRemoval"}};
}

void SettledList::update(std::vector<SettledOffer> next)
{
    const int before = count();
    show(std::move(next));
    if (before != count())
        Q_EMIT countChanged();
}

QVariant SettledList::data(const QModelIndex &index, int role) const
{
    if (!checkIndex(index, CheckIndexOption::IndexIsValid))
        return {};
    const SettledOffer &offer = rows()[static_cast<std::size_t>(index.row())];
    switch (role) {
    case offerIdRole:
        return said(offer.id);
    case whatRole:
        return offer.what;
    case aboutRole:
        return offer.about;
    case atRole:
        return offer.at;
    case isTakenRole:
        return offer.isTaken;
    case mayReopenRole:
        return offer.mayReopen;
    default:
        return {};
    }
}

QHash<int, QByteArray> SettledList::roleNames() const
{
    return {{offerIdRole, "offerId"}, {whatRole, "what"},       {aboutRole, "about"},
            {atRole, "at"},           {isTakenRole, "isTaken"}, {mayReopenRole, "mayReopen"}};
}

} // namespace orvane
