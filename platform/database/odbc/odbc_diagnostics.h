#pragma once
#include "platform/database/session/DatabaseError.h"

#include <span>
#include <sql.h>
#include <string>
#include <vector>

namespace selfreport {

/// One record of what a driver says about a failure.
struct OdbcRecord {
    std::string state; ///< five letters
    std::int32_t native = 0;
    std::string text;
};

/// All records of a handle, first to last: the one that tells the cause is not always the first.
std::vector<OdbcRecord> odbcRecords(SQLSMALLINT handleType, SQLHANDLE handle);

/// The error of a failed opening: loginRejected only if a record says that name or password were refused and
/// none that it was the database; encryptionRefused if it was no login that failed.
/// @param encrypts  nothing but an encrypted connection was wanted
DatabaseError openingError(std::span<const OdbcRecord> records, bool encrypts = false);

/// Whether the session is gone. The driver gives the loss a state of the warning class, so states alone
/// mislead.
bool saysLost(std::span<const OdbcRecord> records);

/// Whether nothing but warnings is said (a value that did not fit at once, a change of database).
bool onlyWarns(std::span<const OdbcRecord> records);

/// The error of failed work; its number is the first native one.
DatabaseError workError(std::span<const OdbcRecord> records);

/// … thrown as what it is: ConnectionLost, RepeatableError or a plain DatabaseError.
/// @param isDead  the driver says of the connection that it is gone
[[noreturn]] void throwWorkError(std::span<const OdbcRecord> records, bool isDead);

} // namespace selfreport
