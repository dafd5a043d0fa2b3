#pragma once
#include "platform/database/sqlite/SqliteDatabase.h"

#include <cstddef>
#include <functional>
#include <list>
#include <string>
#include <string_view>
#include <unordered_map>

namespace selfreport {

/// The most recently used prepared statements of one session, by text. Preparing a ledger query costs more
/// than running it.
class StatementCache {
public:
    /// @param translate  makes the embedded database's SQL of a text that is not yet known
    StatementCache(const SqliteDatabase& database, std::function<std::string(std::string_view)> translate);

    /// Ready to be bound and run. The reference holds until the next call.
    SqliteStatement& statement(std::string_view text);

private:
    struct Entry {
        std::string text;
        SqliteStatement statement;
    };
    static constexpr std::size_t mostKept = 64;

    const SqliteDatabase& m_database;
    std::function<std::string(std::string_view)> m_translate;
    std::list<Entry> m_entries; ///< last used first
    std::unordered_map<std::string_view, std::list<Entry>::iterator> m_byText;
};

} // namespace selfreport
