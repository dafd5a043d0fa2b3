#include "platform/database/odbc/odbc_diagnostics.h"

#include "platform/database/dialect/server_errors.h"
#include "platform/database/odbc/odbc_text.h"

#include <algorithm>
#include <array>
#include <sqlext.h>
#include <sqlucode.h>
#include <string_view>

namespace selfreport {

// What a driver says of a failure is neither complete nor in order: the cause may stand in the last record, a
// lost connection under a state of the warning class, a refused login beside a refused database. So all
// records are read, and judged by server numbers first, states second, and texts last.

namespace {

template <std::size_t N>
bool anyNative(std::span<const OdbcRecord> records, const std::array<std::int32_t, N>& numbers)
{
    return std::ranges::any_of(records, [&](const OdbcRecord& record) {
        return std::ranges::find(numbers, record.native) != numbers.end();
    });
}

std::vector<std::int32_t> numbersOf(std::span<const OdbcRecord> records)
{
    std::vector<std::int32_t> numbers;
    for (const OdbcRecord& record : records)
        numbers.push_back(commonNumber(record.native, record.text));
    return numbers;
}

constexpr const char* connectionIsLost = "与数据库的连接已断开，请再试一次";
constexpr const char* timeOut = "等待数据库应答超时，请稍后再试";
constexpr const char* notReached = "连不上数据库服务器，请检查网络和服务器的地址";

struct Kind {
    std::int32_t native; ///< 0: told by the state
    std::string_view state;
    const char* text;
};

/// What drivers tell by themselves, where no server has given a number. What tells more stands first.
constexpr std::array kinds{
    Kind{20003, "", timeOut},
    Kind{0, "HYT", timeOut},
    Kind{0, "28000", "用户名或密码不被接受，请检查后再试"},
    Kind{0, "IM", "没有安装可用的数据库驱动程序，请管理员安装"},
    Kind{0, "08001", notReached},
    Kind{20009, "", notReached},
    Kind{20002, "", notReached},
    Kind{0, "08", connectionIsLost},
    Kind{20004, "", connectionIsLost},
    Kind{20006, "", connectionIsLost},
    Kind{20017, "", connectionIsLost},
    Kind{20020, "", connectionIsLost},
    Kind{0, "HY008", "操作已取消"},
    Kind{0, "42S02", "找不到表或视图，请管理员检查数据库是否完整"},
    Kind{0, "23", "数据重复或不完整，请检查后再试"},
    Kind{0, "40001", "与其他用户的操作互相等待，请再试一次"},
};

/// Our words for what the records tell.
std::string ourWords(std::span<const OdbcRecord> records, const char* otherwise)
{
    if (const std::string_view text = serverErrorText(numbersOf(records)); !text.empty())
        return std::string(text);
    for (const Kind& kind : kinds)
        if (std::ranges::any_of(records, [&](const OdbcRecord& record) {
                return kind.native != 0 ? record.native == kind.native : record.state.starts_with(kind.state);
            }))
            return kind.text;
    return otherwise;
}

/// A driver tells of a handshake that failed no more than that it has no connection, although it had reached
/// the server.
bool failedToEncrypt(std::span<const OdbcRecord> records, bool encrypts)
{
    static constexpr std::array<std::int32_t, 1> connectionFailed{20002};
    static constexpr std::array<std::int32_t, 1> notReachable{20009};
    const auto numbers = numbersOf(records);
    if (refusesEncryption(numbers))
        return true;
    return encrypts && serverErrorText(numbers).empty() && anyNative(records, connectionFailed) &&
           !anyNative(records, notReachable);
}

/// What the records say, behind words of ours.
std::string textsBehind(const std::string& ours, std::span<const OdbcRecord> records)
{
    std::string text;
    for (const OdbcRecord& record : records) {
        if (record.text.empty() || text.find(record.text) != std::string::npos)
            continue;
        text += (text.empty() ? "" : "\n") + record.text;
    }
    if (records.empty())
        return connectionIsLost;
    return text.empty() ? ours : ours + "：" + text;
}

std::string joinedTexts(std::span<const OdbcRecord> records, const char* otherwise = "数据库报告了错误")
{
    return textsBehind(ourWords(records, otherwise), records);
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

DatabaseError openingError(std::span<const OdbcRecord> records, bool encrypts)
{
    if (failedToEncrypt(records, encrypts)) {
        const std::array number{encryptionRefused};
        return {encryptionRefused, textsBehind(std::string(serverErrorText(number)), records)};
    }
    const bool login =
        refusesLogin(numbersOf(records)) ||
        (serverErrorText(numbersOf(records)).empty() &&
         std::ranges::any_of(records, [](const OdbcRecord& record) { return record.state == "28000"; }));
    return {login ? loginRejected : unspecifiedError, joinedTexts(records)};
}

bool saysLost(std::span<const OdbcRecord> records)
{
    static constexpr std::array<std::int32_t, 5> lost{20003, 20004, 20006, 20017, 20020};
    return endsSession(numbersOf(records)) || anyNative(records, lost) ||
           std::ranges::any_of(records,
                               [](const OdbcRecord& record) { return record.state.starts_with("08"); });
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
    DatabaseError error(numbered == records.end() ? unspecifiedError
                                                  : commonNumber(numbered->native, numbered->text),
                        joinedTexts(records));
    error.isTimeOut =
        saysTimeOut(numbersOf(records)) || std::ranges::any_of(records, [](const OdbcRecord& record) {
            return record.native == 20003 || record.state.starts_with("HYT");
        });
    return error;
}

void throwWorkError(std::span<const OdbcRecord> records, bool isDead)
{
    // A driver whose server went away in the middle of a reply may give no reason at all.
    const bool tellsNothing =
        std::ranges::all_of(records, [](const OdbcRecord& record) { return record.text.empty(); });
    DatabaseError error = workError(records);
    if (isDead || tellsNothing || saysLost(records)) {
        error.description = joinedTexts(records, connectionIsLost);
        throw errorAs<ConnectionLost>(error);
    }
    if (mayBeRepeated(numbersOf(records)))
        throw RepeatableError(error.number, error.description);
    throw error;
}

} // namespace selfreport
