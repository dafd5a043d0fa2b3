#pragma once
#include <filesystem>
#include <gtest/gtest.h>
#include <sqlite3.h>
#include <string>
#include <string_view>

/// Changes rows of a ledger's file behind the program's back. Its texts have the program's order, which only
/// has to be there: among codes that are ASCII any order by bytes is the same.
inline void changeLedger(const std::string& file, const char* sql)
{
    sqlite3* connection = nullptr;
    ASSERT_EQ(sqlite3_open(file.c_str(), &connection), SQLITE_OK);
    const auto byBytes = [](void*, int firstSize, const void* first, int secondSize, const void* second) {
        const std::string_view a(static_cast<const char*>(first), static_cast<std::size_t>(firstSize));
        return a.compare({static_cast<const char*>(second), static_cast<std::size_t>(secondSize)});
    };
    ASSERT_EQ(sqlite3_create_collation(connection, "chinese", SQLITE_UTF8, nullptr, byBytes), SQLITE_OK);
    EXPECT_EQ(sqlite3_exec(connection, sql, nullptr, nullptr, nullptr), SQLITE_OK)
        << sqlite3_errmsg(connection);
    EXPECT_GT(sqlite3_changes(connection), 0) << sql;
    sqlite3_close(connection);
}

/// A copy of a ledger, changed. @return its file
inline std::string changedLedger(const std::string& ledger, const std::string& copy, const std::string& sql)
{
    std::filesystem::copy_file(ledger, copy);
    changeLedger(copy, sql.c_str());
    return copy;
}
