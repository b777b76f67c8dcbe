// SPDX-License-Identifier: GPL-3.0-or-later
// The measure for `orvane status --format`: reads the snapshot out of the store and parses it, and does
// nothing with what it says. BareStatusLine STORE, the SQLite file.
#include <cstdio>
#include <simdjson.h>
#include <sqlite3.h>

namespace {

int giveUp(const char *what)
{
    std::fprintf(stderr, "%s\n", what);
    return 1;
}

} // namespace

int main(int argc, char **argv)
{
    sqlite3 *database = nullptr;
    if (argc != 2 || sqlite3_open_v2(argv[1], &database, SQLITE_OPEN_READWRITE, nullptr) != SQLITE_OK)
        return giveUp("a STORE is needed");
    sqlite3_stmt *statement = nullptr;
    sqlite3_prepare_v2(database, "SELECT value FROM document WHERE key LIKE 'workspace:%'", -1, &statement,
                       nullptr);
    if (sqlite3_step(statement) != SQLITE_ROW)
        return giveUp("the store has no snapshot");
    simdjson::dom::parser parser;
    simdjson::dom::array entries;
    const auto *text = static_cast<const char *>(sqlite3_column_blob(statement, 0));
    const auto size = static_cast<std::size_t>(sqlite3_column_bytes(statement, 0));
    if (parser.parse(text, size)["entries"].get(entries) != simdjson::SUCCESS)
        return giveUp("the snapshot cannot be parsed");
    std::printf("%zu entries\n", entries.size());
    sqlite3_finalize(statement);
    sqlite3_close(database);
    return 0;
}
