#pragma once
#include "reports/ReportContext.h"

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>

namespace selfreport {

/// Shows a message box titled `gTitle`.
void showSharedMessage(Icon icon, std::string_view text);

/// What all windows and stored-report operations share. It lives as long as the component is loaded; nothing
/// is reset between calls but by the writers named here. Used on the user-interface thread only.
inline ReportContext sharedContext{{}, showSharedMessage};

// Its parts, under the names that the suite knows them by.

// Written by clsSelfReport::init.
inline std::string& gConnString = sharedContext.database.connectionString; ///< read when a database is opened
inline std::string& gTitle = sharedContext.title;                          ///< title of the message boxes
inline std::string& gLoginUserId = sharedContext.user;                     ///< stored as the report's biller
inline std::string& gAppPath = sharedContext.folder; ///< application folder without a trailing separator

/// The one shared connection; none between database actions. Written by openDB and closeDB.
inline std::unique_ptr<Connection>& gCnn = sharedContext.database.connection;

/// The report that the designer loads and saves or the list deletes. Written by cwSelfReportExe, the list
/// window, and insertReport once a new report is stored.
inline std::int32_t& gReportId = sharedContext.report.id;

/// 0: the designer starts a new report and saving inserts it; 1: it loads `gReportId` and saving replaces it.
inline std::int16_t& gEditFlag = sharedContext.report.editFlag;

/// The designer shows a stored report for use. Set by cwSelfReport (false) and cwSelfReportExe (true) only.
inline bool& gRunMode = sharedContext.report.isRun;

/// 1: the closing designer refills the report list. Set by cwSelfReport, never cleared.
inline std::int16_t& gFromList = sharedContext.fromList;

/// The list's current row across that refill. Written by the closing designer.
inline std::int32_t& gListRow = sharedContext.listRow;

// Code strings of the report in the designer as they are stored, placeholders unfilled. Written by loadReport
// and the header and footer editor.
inline std::string& gHeaderText = sharedContext.report.header;
inline std::string& gFooterText = sharedContext.report.footer;

/// Zoom chosen in the page setup; -1: none chosen. Set to -1 by cwSelfReportExe only.
inline std::int16_t& gPreviewZoomIndex = sharedContext.report.zoomIndex;

// The cell that an open cell or formula dialog works on; 32 bits, as a sheet may have more than 32,767 rows.
// Written by the designer's commands.
inline std::int32_t& gCellRow = sharedContext.cellRow;
inline std::int32_t& gCellCol = sharedContext.cellCol;

/// The sheet that the table properties dialog renames. Written by the designer's command.
inline std::int16_t& gActiveSheet = sharedContext.activeSheet;

} // namespace selfreport
