#include "platform/database/odbc/odbc_diagnostics.h"

#include "platform/database/odbc/odbc_text.h"

#include <algorithm>
#include <array>
#include <sqlext.h>
#include <sqlucode.h>
#include <string_view>

namespace selfreport {

namespace {

template <std::size_t N>
bool anyNative(std::span<const OdbcRecord> records, const std::array<std::int32_t, N>& numbers)
{
    return std::ranges::any_of(records, [&](const OdbcRecord& record) {
        return std::ranges::find(numbers, record.native) != numbers.end();
    });
}

constexpr const char* connectionIsLost = "与数据库的连接已断开";

struct Kind {
    std::int32_t native; ///< 0: told by the state
    std::string_view state;
    const char* text;
};

/// What tells more stands first.
constexpr std::array kinds{
    Kind{208, "", "找不到表或视图"},
    Kind{207, "", "找不到列"},
    Kind{2812, "", "找不到存储过程"},
    Kind{229, "", "没有权限"},
    Kind{230, "", "没有权限"},
    Kind{262, "", "没有权限"},
    Kind{297, "", "没有权限"},
    Kind{300, "", "没有权限"},
    Kind{2627, "", "数据重复"},
    Kind{2601, "", "数据重复"},
    Kind{547, "", "与其他数据的关系不允许这样改"},
    Kind{515, "", "缺少必须有的数据"},
    Kind{1205, "", "与其他用户的操作互相等待，请再试一次"},
    Kind{1222, "", "数据正被其他用户占用，请稍后再试"},
    Kind{1105, "", "数据库的空间已满"},
    Kind{9002, "", "数据库的空间已满"},
    Kind{20003, "", "等待数据库应答超时"},
    Kind{0, "HYT", "等待数据库应答超时"},
    Kind{0, "28000", "登录被拒绝"},
    Kind{0, "IM", "没有安装可用的数据库驱动程序"},
    Kind{0, "08001", "连不上数据库服务器"},
    Kind{20009, "", "连不上数据库服务器"},
    Kind{20002, "", "连不上数据库服务器"},
    Kind{0, "08", connectionIsLost},
    Kind{20004, "", connectionIsLost},
    Kind{20006, "", connectionIsLost},
    Kind{20017, "", connectionIsLost},
    Kind{20020, "", connectionIsLost},
    Kind{0, "HY008", "操作已取消"},
    Kind{0, "42S02", "找不到表或视图"},
    Kind{0, "23", "数据重复或不完整，数据库不接受"},
    Kind{0, "40001", "与其他用户的操作互相等待，请再试一次"},
};

/// Our words for what the records tell.
const char* ourWords(std::span<const OdbcRecord> records, const char* otherwise)
{
    for (const Kind& kind : kinds)
        if (std::ranges::any_of(records, [&](const OdbcRecord& record) {
                return kind.native != 0 ? record.native == kind.native : record.state.starts_with(kind.state);
            }))
            return kind.text;
    return otherwise;
}

std::string joinedTexts(std::span<const OdbcRecord> records, const char* otherwise = "数据库报告了错误")
{
    std::string text;
    for (const OdbcRecord& record : records) {
        if (record.text.empty() || text.find(record.text) != std::string::npos)
            continue;
        text += (text.empty() ? "" : "\n") + record.text;
    }
    return text.empty() ? "与数据库的连接已断开, 或数据库没有说明原因"
                        : ourWords(records, otherwise) + ("：" + text);
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

/// The same as one of a kind.
template <class Kind>
Kind errorAs(const DatabaseError& error)
{
    Kind kind(error.number, error.description);
    kind.isTimeOut = error.isTimeOut;
    return kind;
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
    DatabaseError error(numbered == records.end() ? unspecifiedError : numbered->native,
                        joinedTexts(records));
    error.isTimeOut = std::ranges::any_of(records, [](const OdbcRecord& record) {
        return record.native == 20003 || record.state.starts_with("HYT");
    });
    return error;
}

void throwWorkError(std::span<const OdbcRecord> records, bool isDead)
{
    // A key that is taken, twice; the victim of a deadlock; a row that changed since the snapshot.
    static constexpr std::array<std::int32_t, 4> repeatable{2627, 2601, 1205, 3960};
    DatabaseError error = workError(records);
    if (isDead || saysLost(records)) {
        error.description = joinedTexts(records, connectionIsLost);
        throw errorAs<ConnectionLost>(error);
    }
    if (anyNative(records, repeatable))
        throw RepeatableError(error.number, error.description);
    throw error;
}

} // namespace selfreport
