// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Support/Result.h"

#include <QSqlDatabase>
#include <string>
#include <string_view>

class QSqlError;

namespace orvane::server {

enum class DatabaseFailure;

/// What is SQLite's own stands here and nowhere else: how a connection is opened and set up, how its
/// transactions begin, what its errors mean, how many may write at a time. Another database system behind
/// Database has a file like this one. What the statements themselves say, other systems understand too.
namespace sqlite {

/// A second one that writes would only wait for the first.
inline constexpr int writersAtATime = 1;

/// A transaction that only reads sees the database as it was at its first look, whoever writes meanwhile; one
/// that may write waits for its turn here, and needs to wait no more afterwards.
inline constexpr std::string_view beginReading = "BEGIN DEFERRED";
inline constexpr std::string_view beginWriting = "BEGIN IMMEDIATE";

/// Opens a connection of that name, which belongs to the calling thread from then on. `path` is a file, made
/// with access for its owner alone when it is not there, or ":memory:". The error is a sentence for people.
Result<QSqlDatabase, std::string> connect(const QString &name, const std::string &path);

DatabaseFailure failureOf(const QSqlError &error);

} // namespace sqlite

} // namespace orvane::server
