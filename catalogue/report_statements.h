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

/// @param name  as typed; blanks at its ends are taken off
std::string insertMenuItemStatement(std::int64_t item, std::int64_t report, std::string_view name);

std::string reportStatement(std::int64_t report);

/// The page set-up of a stored report, each null replaced by its default.
std::string pageSetupStatement(std::int64_t report);

std::string deleteReportStatement(std::int64_t report);
std::string deleteMenuItemStatement(std::int64_t report);

} // namespace selfreport
