#include "platform/database/sqlite/sqlite_functions.h"

#include "platform/database/DatabaseError.h"
#include "platform/database/sqlite/chinese_collation.h"
#include "platform/database/SqlValue.h"

#include <memory>
#include <sqlite3.h>
#include <string>
#include <string_view>

namespace selfreport {

namespace {

// What is called back from the library must let no exception through.

std::string_view textOf(sqlite3_value* value)
{
    const auto* text = reinterpret_cast<const char*>(sqlite3_value_text(value));
    return text ? std::string_view(text, static_cast<std::size_t>(sqlite3_value_bytes(value)))
                : std::string_view();
}

int collate(void* /*unused*/, int leftLength, const void* left, int rightLength, const void* right)
{
    return compareChinese({static_cast<const char*>(left), static_cast<std::size_t>(leftLength)},
                          {static_cast<const char*>(right), static_cast<std::size_t>(rightLength)});
}

/// like(pattern, text [, escape]); the pattern is read once for all rows.
void like(sqlite3_context* context, int count, sqlite3_value** values)
{
    for (int at = 0; at < count; ++at)
        if (sqlite3_value_type(values[at]) == SQLITE_NULL)
            return sqlite3_result_null(context);
    try {
        auto* pattern = static_cast<LikePattern*>(sqlite3_get_auxdata(context, 0));
        std::unique_ptr<LikePattern> fresh;
        if (!pattern) {
            const std::string_view escape = count == 3 ? textOf(values[2]) : std::string_view();
            fresh = std::make_unique<LikePattern>(
                textOf(values[0]), escape.empty() ? 0 : static_cast<unsigned char>(escape.front()));
            pattern = fresh.get();
        }
        sqlite3_result_int(context, pattern->matches(textOf(values[1])) ? 1 : 0);
        if (fresh)
            sqlite3_set_auxdata(context, 0, fresh.release(),
                                [](void* kept) { delete static_cast<LikePattern*>(kept); });
    } catch (const std::exception&) {
        sqlite3_result_error_nomem(context);
    }
}

void getdate(sqlite3_context* context, int /*count*/, sqlite3_value** /*values*/)
{
    try {
        const std::string now = dateTimeText(localNow());
        sqlite3_result_text(context, now.data(), static_cast<int>(now.size()), SQLITE_TRANSIENT);
    } catch (const std::exception&) {
        sqlite3_result_error_nomem(context);
    }
}

/// Characters of a text without its trailing blanks.
void len(sqlite3_context* context, int /*count*/, sqlite3_value** values)
{
    if (sqlite3_value_type(values[0]) == SQLITE_NULL)
        return sqlite3_result_null(context);
    std::string_view text = textOf(values[0]);
    while (text.ends_with(' '))
        text.remove_suffix(1);
    sqlite3_int64 length = 0;
    for (const char byte : text)
        length += (static_cast<unsigned char>(byte) & 0xC0U) != 0x80U; // not inside a UTF-8 character
    sqlite3_result_int64(context, length);
}

} // namespace

void registerServerFunctions(sqlite3* database)
{
    constexpr int fixed = SQLITE_UTF8 | SQLITE_DETERMINISTIC | SQLITE_INNOCUOUS;
    const bool registered =
        sqlite3_create_collation(database, "chinese", SQLITE_UTF8, nullptr, collate) == SQLITE_OK &&
        sqlite3_create_function(database, "like", 2, fixed, nullptr, like, nullptr, nullptr) == SQLITE_OK &&
        sqlite3_create_function(database, "like", 3, fixed, nullptr, like, nullptr, nullptr) == SQLITE_OK &&
        sqlite3_create_function(database, "len", 1, fixed, nullptr, len, nullptr, nullptr) == SQLITE_OK &&
        sqlite3_create_function(database, "getdate", 0, SQLITE_UTF8, nullptr, getdate, nullptr, nullptr) ==
            SQLITE_OK;
    if (!registered)
        throw DatabaseError(unspecifiedError, sqlite3_errmsg(database));
}

} // namespace selfreport
