#include "catalogue/commit_outcome.h"

#include "component/state/shared_state.h"
#include "platform/database/Connection.h"

namespace selfreport {

void commitOrFindOut(Transaction& transaction, const std::function<bool(Connection&)>& isDone)
{
    try {
        transaction.commit();
    } catch (const ConnectionLost& lost) {
        bool done = false;
        try {
            done = isDone(*openConnection(gConnString));
        } catch (const DatabaseError&) {
            throw DatabaseError(lost.number, lost.description + "\n连接在提交时断开, 无法确定更改是否已保存");
        }
        if (!done)
            throw DatabaseError(lost.number, lost.description + "\n连接在提交时断开, 更改没有保存");
    }
}

} // namespace selfreport
