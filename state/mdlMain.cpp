#include "state/mdlMain.h"

#include "state/shared_state.h"

namespace selfreport {

bool openDB()
{
    return sharedContext.database.open();
}

void closeDB()
{
    sharedContext.database.close();
}

void showSharedMessage(Icon icon, std::string_view text)
{
    dialogs().message(icon, gTitle, text);
}

void tellUser(Icon icon, std::string_view text)
{
    sharedContext.database.tell(icon, text);
}

bool databaseProcedure(Icon icon, std::function<void(Connection&)> work)
{
    return sharedContext.database.run(icon, std::move(work));
}

} // namespace selfreport
