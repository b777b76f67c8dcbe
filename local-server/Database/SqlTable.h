// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Database/Database.h"

#include <concepts>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <tuple>
#include <utility>
#include <vector>

/// What joins a table and the record that a row of it stands for: the columns are listed once, and statements
/// and readers come of that list.
namespace orvane::server {

template <class T>
struct IsOptional : std::false_type {};
template <class T>
struct IsOptional<std::optional<T>> : std::true_type {};

/// A column's value as the type of the member that it becomes.
template <class T>
T sqlRead(const SqlRow &row, int column)
{
    if constexpr (IsOptional<T>::value)
        return row.isNull(column) ? std::nullopt : T(sqlRead<typename T::value_type>(row, column));
    else if constexpr (std::same_as<T, std::string>)
        return row.text(column);
    else if constexpr (std::same_as<T, bool>)
        return row.boolean(column);
    else if constexpr (std::same_as<T, double>)
        return row.real(column);
    else if constexpr (std::same_as<T, Instant>)
        return row.instant(column);
    else {
        static_assert(std::same_as<T, std::int64_t>, "no column holds such a value");
        return row.integer(column);
    }
}

/// `kept` is rewritten by an update, `fixed` stays as it was inserted, `derived` is worked out from the
/// record and never read.
enum class ColumnKind { kept, fixed, derived };

/// `access` is a pointer to a member, or a function from the record: to a reference, which reads and writes,
/// or for a derived column to a value.
template <ColumnKind columnKind, class Access>
struct SqlColumn {
    static constexpr ColumnKind kind = columnKind;
    std::string_view name;
    Access access;
};

template <class Access>
constexpr auto column(std::string_view name, Access access)
{
    return SqlColumn<ColumnKind::kept, Access>{name, access};
}
template <class Access>
constexpr auto fixedColumn(std::string_view name, Access access)
{
    return SqlColumn<ColumnKind::fixed, Access>{name, access};
}
template <class Access>
constexpr auto derivedColumn(std::string_view name, Access access)
{
    return SqlColumn<ColumnKind::derived, Access>{name, access};
}

/// A table whose first column is its key. A constant, for any thread.
template <class Record, class... Columns>
class SqlTable {
public:
    explicit SqlTable(std::string_view name, Columns... columns) : m_columns(columns...)
    {
        std::string inserted, places, changed;
        const auto add = [&]<ColumnKind kind>(std::string_view column) {
            append(inserted, column);
            append(places, "?");
            if constexpr (kind != ColumnKind::derived)
                append(m_names, column);
            if constexpr (kind != ColumnKind::fixed)
                append(changed, std::string(column) + " = ?");
        };
        (add.template operator()<Columns::kind>(columns.name), ...);
        const std::string table(name);
        m_select = "SELECT " + m_names + " FROM " + table + " ";
        m_insert = "INSERT INTO " + table + " (" + inserted + ") VALUES (" + places + ")";
        m_update = "UPDATE " + table + " SET " + changed + " WHERE " +
                   std::string(std::get<0>(m_columns).name) + " = ?";
    }

    /// The rows that `rest` names: "WHERE ... ORDER BY ...", a constant, with `?` for the values.
    template <class... Values>
    std::vector<Record> all(Database &database, std::string_view rest, const Values &...values) const
    {
        return database.rows(
            m_select + std::string(rest), [this](const SqlRow &row) { return read(row); }, values...);
    }
    template <class... Values>
    std::optional<Record> first(Database &database, std::string_view rest, const Values &...values) const
    {
        return database.row(
            m_select + std::string(rest), [this](const SqlRow &row) { return read(row); }, values...);
    }

    void insert(Database &database, const Record &record) const
    {
        std::vector<QVariant> values;
        each([&](const auto &column) { values.push_back(valueOf(column, record)); });
        database.runWith(m_insert, values);
    }
    /// Rewrites the row of the record's key.
    void update(Database &database, const Record &record) const
    {
        std::vector<QVariant> values;
        each([&]<ColumnKind kind, class Access>(const SqlColumn<kind, Access> &column) {
            if constexpr (kind != ColumnKind::fixed)
                values.push_back(valueOf(column, record));
        });
        values.push_back(valueOf(std::get<0>(m_columns), record));
        database.runWith(m_update, values);
    }

    /// The columns that are read, for a statement of one's own, and what they become there.
    const std::string &names() const { return m_names; }
    Record read(const SqlRow &row) const
    {
        Record record{};
        int index = 0;
        each([&]<ColumnKind kind, class Access>(const SqlColumn<kind, Access> &column) {
            if constexpr (kind != ColumnKind::derived) {
                auto &member = std::invoke(column.access, record);
                member = sqlRead<std::remove_reference_t<decltype(member)>>(row, index++);
            }
        });
        return record;
    }

private:
    static void append(std::string &list, std::string_view item)
    {
        list += list.empty() ? "" : ", ";
        list += item;
    }
    static QVariant valueOf(const auto &column, const Record &record)
    {
        return Database::sqlValue(std::invoke(column.access, record));
    }
    template <class Visit>
    void each(Visit visit) const
    {
        std::apply([&](const auto &...column) { (visit(column), ...); }, m_columns);
    }

    std::tuple<Columns...> m_columns;
    std::string m_names;
    std::string m_select;
    std::string m_insert;
    std::string m_update;
};

template <class Record, class... Columns>
SqlTable<Record, Columns...> sqlTable(std::string_view name, Columns... columns)
{
    return SqlTable<Record, Columns...>(name, columns...);
}

} // namespace orvane::server
