#include "reports/report_statements.h"

#include "platform/database/dialect/sql_text.h"
#include "text/ascii.h"

namespace selfreport {

std::string lockReportStatement(std::int64_t report)
{
    return "update tblCWSelfReport set fisshow=fisshow where noid=" + std::to_string(report);
}

std::string countReportStatement(std::int64_t report)
{
    return "select count(*) as fcount from tblCWSelfReport where noid=" + std::to_string(report);
}

std::string countMenuItemStatement(std::int64_t item)
{
    return "select count(*) as fcount from tblsystemprivillenge where fitemid=" + std::to_string(item);
}

std::string menuItemStatement(std::int64_t report)
{
    return "select fitemid from tblsystemprivillenge where fnumber='RSelf" + std::to_string(report) + "'";
}

std::string insertMenuItemStatement(std::int64_t item, std::int64_t report, std::string_view name)
{
    return "insert into tblsystemprivillenge(fitemid,fnumber,fname,fisdetail,fparentid) values(" +
           std::to_string(item) + ",'RSelf" + std::to_string(report) + "','" +
           sqlQuoted(ascii::trimmed(name, " ")) + "',1,521)";
}

std::string reportStatement(std::int64_t report)
{
    return "select * from tblCWSelfReport where noid=" + std::to_string(report);
}

std::string pageSetupStatement(std::int64_t report)
{
    return "select isnull(fHeader,'') as fHeader,isnull(fFooter,'') as fFooter "
           ",isnull(fLeft,0.6) as fLeft,isnull(fRight,0.6) as fRight"
           ",isnull(fTop,0.6) as fTop,isnull(fBottom,0.6) as fBottom "
           ",isnull(fDirection,1) as fDirection from tblCWSelfReport where noid=" +
           std::to_string(report);
}

std::string deleteReportStatement(std::int64_t report)
{
    return "delete from tblCWSelfReport where noid=" + std::to_string(report);
}

std::string deleteMenuItemStatement(std::int64_t report)
{
    return "delete from tblsystemprivillenge where fnumber='RSelf" + std::to_string(report) + "' ";
}

} // namespace selfreport
