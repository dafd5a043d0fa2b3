#include "platform/database/odbc/odbc_diagnostics.h"

#include "platform/database/odbc/odbc_text.h"

#include <algorithm>
#include <array>
#include <sqlext.h>
#include <sqlucode.h>

namespace selfreport {

namespace {

template <std::size_t N>
bool anyNative(std::span<const OdbcRecord> records, const std::array<std::int32_t, N>& numbers)
{
    return std::ranges::any_of(records, [&](const OdbcRecord& record) {
        return std::ranges::find(numbers, record.native) != numbers.end();
    });
}

std::string joinedTexts(std::span<const OdbcRecord> records)
{
    std::string text;
    for (const OdbcRecord& record : records) {
        if (record.text.empty() || text.find(record.text) != std::string::npos)
            continue;
        text += (text.empty() ? "" : "\n") + record.text;
    }
    return text.empty() ? "与数据库的连接已断开, 或数据库没有说明原因" : text;
}

OdbcRecord readRecord(SQLSMALLINT handleType, SQLHANDLE handle, SQLSMALLINT number, bool& found)
{
    std::array<SQLWCHAR, 6> state{};
    std::array<SQLWCHAR, 2048> text{};
    SQLINTEGER native = 0;
    SQLSMALLINT length = 0;
    found = SQL_SUCCEEDED(SQLGetDiagRecW(handleType, handle, number, state.data(), &native, text.data(),
                                         static_cast<SQLSMALLINT>(text.size()), &length));
    if (!found)
        return {};
    const auto shown = std::clamp<std::size_t>(static_cast<std::size_t>(length), 0, text.size() - 1);
    return {utf8Text(std::span(state).first(5)), native, utf8Text(std::span(text).first(shown))};
}

} // namespace

std::vector<OdbcRecord> odbcRecords(SQLSMALLINT handleType, SQLHANDLE handle)
{
    constexpr SQLSMALLINT mostRecords = 64; // a server may say much, never without end
    std::vector<OdbcRecord> records;
    for (SQLSMALLINT number = 1; number <= mostRecords; ++number) {
        bool found = false;
        OdbcRecord record = readRecord(handleType, handle, number, found);
        if (!found)
            break;
        records.push_back(std::move(record));
    }
    return records;
}

DatabaseError openingError(std::span<const OdbcRecord> records)
{
    static constexpr std::array<std::int32_t, 4> databaseRefused{4060, 4063, 4064, 911};
    static constexpr std::array<std::int32_t, 7> loginRefused{18456, 18452, 18450, 18470,
                                                              18486, 18487, 18488};
    const bool refused =
        anyNative(records, loginRefused) ||
        std::ranges::any_of(records, [](const OdbcRecord& record) { return record.state == "28000"; });
    const bool login = refused && !anyNative(records, databaseRefused);
    return {login ? loginRejected : unspecifiedError, joinedTexts(records)};
}

bool saysLost(std::span<const OdbcRecord> records)
{
    static constexpr std::array<std::int32_t, 5> lost{20003, 20004, 20006, 20017, 20020};
    return anyNative(records, lost) || std::ranges::any_of(records, [](const OdbcRecord& record) {
               return record.state.starts_with("08");
           });
}

bool onlyWarns(std::span<const OdbcRecord> records)
{
    return !saysLost(records) && std::ranges::all_of(records, [](const OdbcRecord& record) {
        return record.state.starts_with("01");
    });
}

DatabaseError workError(std::span<const OdbcRecord> records)
{
    const auto numbered =
        std::ranges::find_if(records, [](const OdbcRecord& record) { return record.native != 0; });
    return {numbered == records.end() ? unspecifiedError : numbered->native, joinedTexts(records)};
}

void throwWorkError(std::span<const OdbcRecord> records, bool isDead)
{
    // A key that is taken, twice; the victim of a deadlock; a row that changed since the snapshot.
    static constexpr std::array<std::int32_t, 4> repeatable{2627, 2601, 1205, 3960};
    const DatabaseError error = workError(records);
    if (isDead || saysLost(records))
        throw ConnectionLost(error.number, error.description);
    if (anyNative(records, repeatable))
        throw RepeatableError(error.number, error.description);
    throw error;
}

} // namespace selfreport
