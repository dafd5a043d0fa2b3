#include "component/clsSelfReport.h"
#include "component/application.h"
#include "component/host_call.h"
#include "component/instances.h"
#include "component/windows.h"
#include "state/host_calls.h"
#include "state/mdlMain.h"

#include <functional>
#include <utility>

namespace selfreport {

clsSelfReport::clsSelfReport() noexcept
{
    countInstance(+1);
}

/// A call under way, during which the host may end the object.
struct clsSelfReport::Call {
    explicit Call(clsSelfReport& called)
        : object(&called)
        , outer(std::exchange(called.m_calls, this))
    {
    }
    ~Call()
    {
        if (object)
            object->m_calls = outer;
    }
    Call(const Call&) = delete;
    Call& operator=(const Call&) = delete;

    clsSelfReport* object; ///< null: it has ended
    Call* outer;
};

template <class Work>
void clsSelfReport::call(const Work& work) noexcept
{
    const Call call(*this);
    std::string error = hostCall(std::ref(work));
    if (call.object)
        m_lastError = std::move(error);
}

clsSelfReport::~clsSelfReport()
{
    for (Call* call = m_calls; call; call = call->outer)
        call->object = nullptr;
    hostCall([] {
        if (!isWindowOpen()) // else it is at work, and closed when that is done
            closeDB();
    });
    countInstance(-1);
}

bool clsSelfReport::editForm(const std::int16_t& /*intType*/, const std::int16_t* /*isShow*/) noexcept
{
    call([] {
        requireRoomFor(HostWindow::designer);
        startToolkit(Display::needed);
        const WorkBelow below;
        showDesigner();
    });
    return false;
}

bool clsSelfReport::init(const std::string& strConnString, const std::string& strTitle,
                         const std::string& strLoginUserId, const std::string& strAppPath) noexcept
{
    call([&] {
        if (isWindowOpen() || isDriverCallUnderWay())
            throw HostError("报表窗口打开时不能重新设置报表组件。");
        initShared(strConnString, strTitle, strLoginUserId, strAppPath);
    });
    return false;
}

bool clsSelfReport::cwSelfReport() noexcept
{
    call([] {
        requireRoomFor(HostWindow::list);
        startToolkit(Display::needed);
        const WorkBelow below;
        prepareForList();
        showReportList();
    });
    return false;
}

bool clsSelfReport::cwSelfReportExe(const std::int32_t& intInterId) noexcept
{
    call([&] {
        requireRoomFor(HostWindow::designer);
        startToolkit(Display::needed);
        const WorkBelow below;
        prepareForRun(intInterId);
        showDesigner();
    });
    return false;
}

} // namespace selfreport
