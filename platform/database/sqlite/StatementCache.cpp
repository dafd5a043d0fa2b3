#include "platform/database/sqlite/StatementCache.h"

namespace selfreport {

StatementCache::StatementCache(const SqliteDatabase& database,
                               std::function<std::string(std::string_view)> translate)
    : m_database(database)
    , m_translate(std::move(translate))
{
}

SqliteStatement& StatementCache::statement(std::string_view text)
{
    if (const auto found = m_byText.find(text); found != m_byText.end()) {
        m_entries.splice(m_entries.begin(), m_entries, found->second);
        m_entries.front().statement.reset();
        return m_entries.front().statement;
    }
    m_entries.push_front({std::string(text), m_database.prepare(m_translate(text))});
    m_byText.emplace(m_entries.front().text, m_entries.begin());
    if (m_entries.size() > mostKept) {
        m_byText.erase(m_entries.back().text);
        m_entries.pop_back();
    }
    return m_entries.front().statement;
}

} // namespace selfreport
