#include "platform/database/sqlite/sqlite_functions.h"

#include "platform/database/dialect/chinese_collation.h"
#include "platform/database/session/DatabaseError.h"
#include "platform/database/session/SqlValue.h"
#include "platform/database/sqlite/LikePattern.h"
#include "platform/database/sqlite/sqlite_failure.h"

#include <algorithm>
#include <array>
#include <charconv>
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

/// The plain characters with which a pattern begins.
std::string_view patternPrefix(std::string_view pattern)
{
    return pattern.substr(0, std::min(pattern.find_first_of("%_["), pattern.size()));
}

/// like_first(pattern): no text that matches sorts before it.
void likeFirst(sqlite3_context* context, int /*count*/, sqlite3_value** values)
{
    const std::string_view prefix = patternPrefix(textOf(values[0]));
    sqlite3_result_text(context, prefix.data(), static_cast<int>(prefix.size()), SQLITE_TRANSIENT);
}

/// like_last(pattern): no text that matches sorts behind it.
void likeLast(sqlite3_context* context, int /*count*/, sqlite3_value** values)
{
    try {
        // U+10FFFF sorts behind every character that a text can go on with.
        const std::string last = std::string(patternPrefix(textOf(values[0]))) + "\xF4\x8F\xBF\xBF";
        sqlite3_result_text(context, last.data(), static_cast<int>(last.size()), SQLITE_TRANSIENT);
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

/// round(number, decimals): the library's own knows 16 digits only, and takes fen from amounts of more
/// than ten trillion.
void roundNumber(sqlite3_context* context, int /*count*/, sqlite3_value** values)
{
    if (sqlite3_value_type(values[0]) == SQLITE_NULL || sqlite3_value_type(values[1]) == SQLITE_NULL)
        return sqlite3_result_null(context);
    constexpr int mostDecimals = 30;
    const double number = sqlite3_value_double(values[0]);
    const int decimals = std::clamp(sqlite3_value_int(values[1]), 0, mostDecimals);
    std::array<char, 400> text{}; // the largest number has 309 digits
    const auto [end, failure] =
        std::to_chars(text.begin(), text.end(), number, std::chars_format::fixed, decimals);
    double rounded = number;
    if (failure == std::errc())
        std::from_chars(text.begin(), end, rounded);
    sqlite3_result_double(context, rounded + 0.0); // no "-0"
}

} // namespace

void registerServerFunctions(sqlite3* database)
{
    constexpr int fixed = SQLITE_UTF8 | SQLITE_DETERMINISTIC | SQLITE_INNOCUOUS;
    struct Function {
        const char* name;
        int arguments;
        int flags;
        void (*call)(sqlite3_context*, int, sqlite3_value**);
    };
    static constexpr Function functions[] = {
        {"like", 2, fixed, like},          {"like", 3, fixed, like}, {"like_first", 1, fixed, likeFirst},
        {"like_last", 1, fixed, likeLast}, {"len", 1, fixed, len},   {"getdate", 0, SQLITE_UTF8, getdate},
        {"round", 2, fixed, roundNumber},
    };
    bool registered =
        sqlite3_create_collation(database, "chinese", SQLITE_UTF8, nullptr, collate) == SQLITE_OK;
    for (const Function& function : functions)
        registered =
            registered && sqlite3_create_function(database, function.name, function.arguments, function.flags,
                                                  nullptr, function.call, nullptr, nullptr) == SQLITE_OK;
    if (!registered)
        throw sqliteError(database);
}

} // namespace selfreport
