#include "platform/database/sqlite/sqlite_failure.h"

#include <algorithm>
#include <array>
#include <sqlite3.h>

namespace selfreport {

namespace {

constexpr int primaryCode = 0xff; ///< the part of an extended code that tells the kind

struct FailureKind {
    int code;
    const char* text;
};

constexpr std::array kinds{
    FailureKind{SQLITE_BUSY, "数据库正被其他程序占用，请稍后再试"},
    FailureKind{SQLITE_LOCKED, "数据库正被其他程序占用，请稍后再试"},
    FailureKind{SQLITE_PROTOCOL, "数据库正被其他程序占用，请稍后再试"},
    FailureKind{SQLITE_FULL, "磁盘已满"},
    FailureKind{SQLITE_READONLY, "数据库是只读的"},
    FailureKind{SQLITE_PERM, "没有权限"},
    FailureKind{SQLITE_AUTH, "没有权限"},
    FailureKind{SQLITE_CANTOPEN, "数据库文件打不开"},
    FailureKind{SQLITE_IOERR, "数据库文件读写出错"},
    FailureKind{SQLITE_CORRUPT, "数据库文件已损坏"},
    FailureKind{SQLITE_NOTADB, "文件不是数据库"},
    FailureKind{SQLITE_NOMEM, "内存不足"},
    FailureKind{SQLITE_TOOBIG, "内容太大，数据库存不下"},
    FailureKind{SQLITE_INTERRUPT, "操作已取消"},
    FailureKind{SQLITE_CONSTRAINT, "数据重复或不完整，数据库不接受"},
    FailureKind{SQLITE_MISMATCH, "数据的类型不符"},
};

} // namespace

std::string sqliteReason(int code, const char* said)
{
    const auto kind = std::ranges::find(kinds, code & primaryCode, &FailureKind::code);
    const std::string ours = kind == kinds.end() ? "数据库不能执行语句" : kind->text;
    return said && *said ? ours + "：" + said : ours;
}

DatabaseError sqliteError(sqlite3* database)
{
    const int code = sqlite3_errcode(database);
    DatabaseError error(unspecifiedError, sqliteReason(code, sqlite3_errmsg(database)));
    error.isTimeOut = (code & primaryCode) == SQLITE_BUSY; // which came after the time that is waited
    return error;
}

} // namespace selfreport
