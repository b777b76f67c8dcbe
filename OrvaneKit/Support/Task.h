// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QCoro/QCoroTask>

namespace orvane {

/// An asynchronous operation's result. A task starts at once and dropping it cancels nothing; it is awaited
/// on the thread that made it.
template <class T = void>
using Task = QCoro::Task<T>;

} // namespace orvane
