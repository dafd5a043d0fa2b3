#include "reports/commit_outcome.h"

#include "platform/database/Connection.h"

namespace selfreport {

namespace {

bool foundDone(const Connection& connection, const DatabaseError& failure,
               const std::function<bool(Connection&)>& isDone)
{
    try {
        return isDone(*connection.another());
    } catch (const DatabaseError&) {
        throw OutcomeUnknown(failure.number,
                             "提交更改时出错, 无法确定更改是否已保存。\n" + failure.description);
    }
}

} // namespace

void commitOrFindOut(Transaction& transaction, const std::function<bool(Connection&)>& isDone)
{
    try {
        transaction.commit();
    } catch (const DatabaseError& failure) {
        transaction.giveUp(); // its locks would be in the way of looking
        if (foundDone(transaction.connection(), failure, isDone))
            return;
        if (dynamic_cast<const RepeatableError*>(&failure))
            throw;
        throw CommitFailed(failure.number, "提交更改时出错, 更改没有保存。\n" + failure.description);
    }
}

} // namespace selfreport
