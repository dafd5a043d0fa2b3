#pragma once
#include "platform/database/session/DatabaseError.h"

#include <functional>

namespace selfreport {

class Connection;
class Transaction;

/// A commit that failed; the text tells what became of the changes.
struct CommitFailed : DatabaseError {
    using DatabaseError::DatabaseError;
};

/// … and it cannot be found out.
struct OutcomeUnknown : CommitFailed {
    using CommitFailed::CommitFailed;
};

/// Commits. A commit that fails leaves open what became of the changes, most of all when the connection
/// breaks meanwhile, so they are looked for on a new connection to the same database.
/// @param isDone  whether the changes stand in the database
/// @throws CommitFailed if they do not, OutcomeUnknown if that cannot be found out
/// @throws RepeatableError if they do not because another session was in the way
void commitOrFindOut(Transaction& transaction, const std::function<bool(Connection&)>& isDone);

} // namespace selfreport
