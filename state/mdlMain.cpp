#include "state/mdlMain.h"

#include "access/driver_call.h"
#include "failures/failure_text.h"
#include "state/shared_state.h"

#include <exception>

namespace selfreport {

RecalculationUnderWay* RecalculationUnderWay::s_outermost = nullptr;

RecalculationUnderWay::RecalculationUnderWay()
{
    if (!s_outermost)
        s_outermost = this;
}

RecalculationUnderWay::~RecalculationUnderWay()
{
    if (s_outermost != this)
        return;
    s_outermost = nullptr;
    closeDB(); // a fetch without an account leaves it open
}

bool RecalculationUnderWay::openingFailed()
{
    return s_outermost && s_outermost->m_openingFailed;
}

std::string_view openingFailureText(std::int32_t number)
{
    return number == loginRejected ? "用户名或密码错误!" : "数据库文件不存在或读取错误!";
}

bool openDB()
{
    if (gCnn)
        return true;
    if (RecalculationUnderWay::openingFailed())
        return false;
    std::int32_t number = unspecifiedError;
    try {
        gCnn = driverCall<std::unique_ptr<Connection>>(
            [target = gConnString] { return openConnection(target); });
        return true;
    } catch (const DatabaseError& error) {
        number = error.number;
    } catch (const std::exception&) {
        // told like any other failure
    }
    if (RecalculationUnderWay::s_outermost)
        RecalculationUnderWay::s_outermost->m_openingFailed = true;
    tellUser(Icon::critical, openingFailureText(number));
    return false;
}

void closeDB()
{
    gCnn.reset();
}

void tellUser(Icon icon, std::string_view text)
{
    RecalculationUnderWay* const recalculation = RecalculationUnderWay::s_outermost;
    if (recalculation && !recalculation->m_told.emplace(icon, text).second)
        return;
    dialogs().message(icon, gTitle, text);
}

bool databaseProcedure(Icon icon, const std::function<void(Connection&)>& work)
{
    if (!openDB())
        return false; // openDB has told the user
    try {
        work(*gCnn);
        closeDB();
        return true;
    } catch (const std::exception& error) {
        // A message box runs the event loop: the connection must be gone before it opens.
        closeDB();
        tellUser(icon, failures::sentenceOf(error));
        return false;
    }
}

} // namespace selfreport
