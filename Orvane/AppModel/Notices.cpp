// SPDX-License-Identifier: GPL-3.0-or-later
#include "AppModel/Notices.h"

namespace orvane {

Notices::Notices(QObject *parent) : QObject(parent)
{
    m_timer.setSingleShot(true);
    m_timer.setInterval(shownFor);
    connect(&m_timer, &QTimer::timeout, this, &Notices::dismiss);
}

void Notices::tell(const QString &text, Action action)
{
    show(text, false, action);
    m_timer.start();
}

void Notices::tellFailure(const QString &text)
{
    m_timer.stop();
    show(text, true, Action::None);
}

void Notices::dismiss()
{
    m_timer.stop();
    show({}, false, Action::None);
}

void Notices::show(const QString &text, bool isFailure, Action action)
{
    m_text = text;
    m_isFailure = isFailure;
    m_action = action;
    Q_EMIT changed();
}

} // namespace orvane
