#include "platform/database/dialect/acct_kinds.h"

#include "platform/database/dialect/sql_tokens.h"
#include "tests/platform/database/database_folder.h"

#include <fstream>
#include <map>
#include <set>

namespace selfreport {
namespace {

std::string scriptText(const std::string& name)
{
    std::ifstream stream(std::filesystem::path(TEST_DATA_FOLDER) / "../../sql/sqlserver" / name);
    return {std::istreambuf_iterator<char>(stream), {}};
}

/// Columns of each "create table" of a script, names as they are spelled.
std::map<std::string, std::set<std::string>> tablesOf(const std::string& script)
{
    std::map<std::string, std::set<std::string>> tables;
    const auto tokens = sqlTokens(script);
    for (std::size_t at = 0; at + 3 < tokens.size(); ++at) {
        if (!tokens[at].isName("create") || !tokens[at + 1].isName("table"))
            continue;
        auto& columns = tables[std::string(tokens[at + 2].spelling)];
        const std::size_t end = closingBracket(tokens, at + 3);
        bool startsColumn = true;
        for (std::size_t inner = at + 4; inner < end; ++inner) {
            if (startsColumn && !tokens[inner].isName("primary"))
                columns.emplace(tokens[inner].spelling);
            startsColumn = tokens[inner].isSymbol(",");
            if (tokens[inner].isSymbol("("))
                inner = closingBracket(tokens, inner);
        }
    }
    return tables;
}

TEST(ServerScripts, HoldTheTablesOfTheEmbeddedDatabase)
{
    const testing::DatabaseFolder folder;
    const auto connection = folder.create();
    std::map<std::string, std::set<std::string>> embedded;
    const Recordset tables = connection->query("select name from sqlite_schema where type='table'");
    for (std::size_t row = 0; row < tables.rowCount(); ++row) {
        const std::string table = tables.text(row, "name");
        const Recordset columns = connection->query("pragma table_info(" + table + ")");
        for (std::size_t column = 0; column < columns.rowCount(); ++column)
            embedded[table].insert(columns.text(column, "name"));
    }
    EXPECT_EQ(tablesOf(scriptText("tables.sql")), embedded);
}

TEST(ServerScripts, HoldTheSameFetchTypes)
{
    const std::string keys = scriptText("field_keys.sql");
    const std::string procedure = scriptText("sp_GS_SelfReportAmount.sql");
    for (const AcctKind& kind : acctKinds) {
        std::string key("'");
        key.append(kind.key).append("'");
        std::string row(key);
        row.append(",N'").append(kind.name).append("'\n");
        EXPECT_NE(keys.find(row), std::string::npos) << row;
        const std::size_t at = procedure.find(std::string("select ").append(key));
        ASSERT_NE(at, std::string::npos) << key;
        const std::string line = procedure.substr(at, procedure.find('\n', at) - at);
        EXPECT_NE(line.find(std::string("N'").append(kind.column).append("'")), std::string::npos) << line;
        EXPECT_NE(line.find(std::string("N'").append(kind.original).append("'")), std::string::npos) << line;
        static constexpr const char* periods[] = {"'F'", "'L'", "'A'"};
        EXPECT_NE(line.find(periods[static_cast<int>(kind.periods)]), std::string::npos) << line;
    }
}

} // namespace
} // namespace selfreport
