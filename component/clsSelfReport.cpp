#include "component/clsSelfReport.h"
#include "component/application.h"
#include "component/host_call.h"
#include "component/instances.h"
#include "component/state/shared_state.h"
#include "component/windows.h"

namespace selfreport {

clsSelfReport::clsSelfReport() noexcept
{
    countInstance(+1);
}

clsSelfReport::~clsSelfReport()
{
    hostCall([] { gCnn.reset(); });
    countInstance(-1);
}

bool clsSelfReport::editForm(const std::int16_t& /*intType*/, const std::int16_t* /*isShow*/) noexcept
{
    m_lastError = hostCall([] {
        startToolkit(Display::needed);
        showDesigner();
    });
    return false;
}

bool clsSelfReport::init(const std::string& strConnString, const std::string& strTitle,
                         const std::string& strLoginUserId, const std::string& strAppPath) noexcept
{
    m_lastError = hostCall([&] {
        gConnString = strConnString;
        gTitle = strTitle;
        gLoginUserId = strLoginUserId;
        gAppPath = strAppPath;
    });
    return false;
}

bool clsSelfReport::cwSelfReport() noexcept
{
    m_lastError = hostCall([] {
        gRunMode = false;
        gFromList = 1;
        startToolkit(Display::needed);
        showReportList();
    });
    return false;
}

bool clsSelfReport::cwSelfReportExe(const std::int32_t& intInterId) noexcept
{
    m_lastError = hostCall([&] {
        gRunMode = true;
        gEditFlag = 1;
        gPreviewZoomIndex = -1;
        gReportId = intInterId;
        startToolkit(Display::needed);
        showDesigner();
    });
    return false;
}

} // namespace selfreport
