#pragma once
#include "platform/database/Connection.h"

#include <cstdint>
#include <memory>
#include <string>

namespace selfreport {

// What all windows and stored-report operations share. It lives as long as the component is loaded; nothing
// is reset between calls but by the writers named here. Used on the user-interface thread only.

// Written by clsSelfReport::init.
inline std::string gConnString;  ///< read by openDB only, and handed to the basic-data choosers
inline std::string gTitle;       ///< title of the message boxes
inline std::string gLoginUserId; ///< stored as the report's biller
inline std::string gAppPath;     ///< application folder without a trailing separator

/// The one shared connection; none between database actions. Written by openDB and closeDB.
inline std::unique_ptr<Connection> gCnn;

/// The report that the designer loads and saves or the list deletes. Written by cwSelfReportExe, the list
/// window, and insertReport once a new report is stored.
inline std::int32_t gReportId = 0;

/// 0: the designer starts a new report and saving inserts it; 1: it loads `gReportId` and saving replaces it.
inline std::int16_t gEditFlag = 0;

/// The designer shows a stored report for use. Set by cwSelfReport (false) and cwSelfReportExe (true) only.
inline bool gRunMode = false;

/// 1: the closing designer refills the report list. Set by cwSelfReport, never cleared.
inline std::int16_t gFromList = 0;

/// The list's current row across that refill. Written by the closing designer.
inline std::int32_t gListRow = 0;

// Code strings of the report in the designer as they are stored, placeholders unfilled. Written by loadReport
// and the header and footer editor.
inline std::string gHeaderText;
inline std::string gFooterText;

/// Zoom chosen in the page setup; -1: none chosen. Set to -1 by cwSelfReportExe only.
inline std::int16_t gPreviewZoomIndex = 0;

// The cell that an open cell or formula dialog works on; 32 bits, as a sheet may have more than 32,767 rows.
// Written by the designer's commands.
inline std::int32_t gCellRow = 0;
inline std::int32_t gCellCol = 0;

/// The sheet that the table properties dialog renames. Written by the designer's command.
inline std::int16_t gActiveSheet = 0;

} // namespace selfreport
