#pragma once
#include <functional>

namespace selfreport {

class Connection;
class Transaction;

/// Commits. A connection that breaks meanwhile leaves open what became of the changes, so they are looked for
/// on a new connection to the shared database.
/// @param isDone  whether the changes stand in the database
/// @throws DatabaseError if they do not, or if that cannot be found out; the text says which
void commitOrFindOut(Transaction& transaction, const std::function<bool(Connection&)>& isDone);

} // namespace selfreport
