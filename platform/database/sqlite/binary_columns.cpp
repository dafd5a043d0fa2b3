#include "platform/database/sqlite/binary_columns.h"

#include "platform/database/dialect/sql_tokens.h"
#include "platform/database/session/names.h"
#include "platform/database/sqlite/SqliteDatabase.h"

#include <algorithm>
#include <sqlite3.h>
#include <vector>

namespace selfreport {

namespace {

struct Column {
    std::string name;
    bool isBinary;
};

std::vector<Column> columnsOf(sqlite3_stmt* statement)
{
    std::vector<Column> columns;
    for (int at = 0; at < sqlite3_column_count(statement); ++at) {
        const char* const declared = sqlite3_column_decltype(statement, at);
        const std::string_view type = declared ? declared : "";
        columns.push_back(
            {sqlite3_column_name(statement, at), sameName(type, "image") || sameName(type, "blob")});
    }
    return columns;
}

/// Whether two columns share a name: from outside, the second cannot be told.
bool namesRepeat(const std::vector<Column>& columns)
{
    for (auto column = columns.begin(); column != columns.end(); ++column)
        if (std::any_of(columns.begin(), column,
                        [&](const Column& earlier) { return sameName(earlier.name, column->name); }))
            return true;
    return false;
}

std::string quotedName(const std::string& name)
{
    std::string quoted = "\"";
    for (const char letter : name) {
        quoted += letter;
        if (letter == '"')
            quoted += letter;
    }
    return quoted + "\"";
}

} // namespace

std::string withoutBinaryColumns(const SqliteDatabase& database, const std::string& sql)
{
    const auto tokens = sqlTokens(sql);
    if (tokens.empty() || !tokens.front().isName("select") || tokens.back().isSymbol(";"))
        return sql;
    const SqliteStatement whole = database.prepare(sql);
    const std::vector<Column> columns = columnsOf(whole.handle());
    if (std::ranges::none_of(columns, &Column::isBinary) || namesRepeat(columns))
        return sql;
    // The library drops the columns of an inner select that the outer one does not read, and keeps its order.
    std::string outer = "select ";
    for (const Column& column : columns) {
        outer += outer.size() > sizeof "select" ? "," : "";
        outer += column.isBinary ? "x'' as " : "";
        outer += quotedName(column.name);
    }
    return outer + " from (" + sql + "\n)"; // the line break ends a comment at the end
}

} // namespace selfreport
