#include "state/host_calls.h"

#include "state/shared_state.h"

namespace selfreport {

void initShared(const std::string& connString, const std::string& title, const std::string& loginUserId,
                const std::string& appPath)
{
    gConnString = connString;
    gTitle = title;
    gLoginUserId = loginUserId;
    gAppPath = appPath;
}

void prepareForList()
{
    gRunMode = false;
    gFromList = 1;
}

void prepareForRun(std::int32_t report)
{
    gRunMode = true;
    gEditFlag = 1;
    gPreviewZoomIndex = -1;
    gReportId = report;
}

} // namespace selfreport
