#include "platform/database/sqlite/sqlite_failure.h"

#include <algorithm>
#include <array>
#include <sqlite3.h>

namespace selfreport {

namespace {

constexpr int primaryCode = 0xff; ///< the part of an extended code that tells the kind

struct Kind {
    int code;
    const char* text;
};

constexpr std::array kinds{
    Kind{SQLITE_BUSY, "数据库正被其他程序占用，请稍后再试"},
    Kind{SQLITE_LOCKED, "数据库正被其他程序占用，请稍后再试"},
    Kind{SQLITE_PROTOCOL, "数据库正被其他程序占用，请稍后再试"},
    Kind{SQLITE_FULL, "磁盘已满"},
    Kind{SQLITE_READONLY, "数据库是只读的"},
    Kind{SQLITE_PERM, "没有权限"},
    Kind{SQLITE_AUTH, "没有权限"},
    Kind{SQLITE_CANTOPEN, "数据库文件打不开"},
    Kind{SQLITE_IOERR, "数据库文件读写出错"},
    Kind{SQLITE_CORRUPT, "数据库文件已损坏"},
    Kind{SQLITE_NOTADB, "文件不是数据库"},
    Kind{SQLITE_NOMEM, "内存不足"},
    Kind{SQLITE_TOOBIG, "内容太大，数据库存不下"},
    Kind{SQLITE_INTERRUPT, "操作已取消"},
    Kind{SQLITE_CONSTRAINT, "数据重复或不完整，数据库不接受"},
    Kind{SQLITE_MISMATCH, "数据的类型不符"},
};

} // namespace

std::string sqliteReason(int code, const char* said)
{
    const auto kind = std::ranges::find(kinds, code & primaryCode, &Kind::code);
    const std::string ours = kind == kinds.end() ? "数据库不能执行语句" : kind->text;
    return said && *said ? ours + "：" + said : ours;
}

DatabaseError sqliteError(sqlite3* database)
{
    return {unspecifiedError, sqliteReason(sqlite3_errcode(database), sqlite3_errmsg(database))};
}

} // namespace selfreport
