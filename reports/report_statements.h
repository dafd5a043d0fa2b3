#pragma once
#include <cstdint>
#include <string>
#include <string_view>

namespace selfreport {

// The texts that the report store and the report list send, byte for byte.

inline constexpr std::string_view lastReportIdStatement =
    "select isnull(max(noid),0) as noid1 from tblCWSelfReport";

inline constexpr std::string_view lastMenuItemStatement =
    "select isnull(max(fitemid),0) as noid1 from tblsystemprivillenge ";

inline constexpr std::string_view reportListStatement =
    "select a.*,b.fusername as fbilleridname from tblCWSelfReport  as a left outer join tbluser as b on "
    "a.fbillerid=b.fuserid order by a.noid ";

/// The suite's menu of stored reports.
inline constexpr std::string_view reportMenuStatement =
    "select fnumber,fname from tblsystemprivillenge where fparentid=521";

/// Values: id, name, time, 1, user, content.
inline constexpr std::string_view insertReportStatement =
    "insert into tblCWSelfReport(noid,fname,fdate,fisshow,fbillerid,fFileContent) "
    "values(?,?,?,?,?,?)";

/// Values: those and header, footer, top, bottom, left, right, direction.
inline constexpr std::string_view insertReportWithPageSetupStatement =
    "insert into tblCWSelfReport(noid,fname,fdate,fisshow,fbillerid,fFileContent,fHeader,fFooter,"
    "fTop,fBottom,fLeft,fRight,fDirection) values(?,?,?,?,?,?,?,?,?,?,?,?,?)";

/// Makes those who store new reports wait for each other: all take the lock of one row, if there is any.
inline constexpr std::string_view queueForNewReportStatement =
    "update tblCWSelfReport set fisshow=fisshow where noid=(select min(noid) from tblCWSelfReport)";

/// Value: a user's id.
inline constexpr std::string_view userNameStatement = "select fusername from tbluser where fuserid=?";

/// Value: a name.
inline constexpr std::string_view reportOfNameStatement = "select noid from tblCWSelfReport where fname=?";

/// Takes the row's lock on every provider, which hints to a query do not.
std::string lockReportStatement(std::int64_t report);

std::string countReportStatement(std::int64_t report);
std::string countMenuItemStatement(std::int64_t item);
std::string menuItemStatement(std::int64_t report);

/// @param name  as typed; blanks at its ends are taken off
std::string insertMenuItemStatement(std::int64_t item, std::int64_t report, std::string_view name);

std::string reportStatement(std::int64_t report);

/// The page set-up of a stored report, each null replaced by its default.
std::string pageSetupStatement(std::int64_t report);

std::string deleteReportStatement(std::int64_t report);
std::string deleteMenuItemStatement(std::int64_t report);

} // namespace selfreport
