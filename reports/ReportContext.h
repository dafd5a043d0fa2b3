#pragma once
#include "access/DatabaseAccess.h"

#include <cstdint>
#include <string>
#include <utility>

namespace selfreport {

/// The report that is open, as its window and the windows over it see it.
struct OpenReport {
    std::int32_t id = 0;         ///< under which it is loaded, saved or deleted
    std::int16_t editFlag = 0;   ///< 0: a new one, saving inserts it; 1: a stored one, saving replaces it
    bool isRun = false;          ///< shown for use, not for design
    std::int16_t zoomIndex = -1; ///< chosen in the page setup for the preview; -1: none chosen
    std::string header, footer;  ///< code strings as they are stored, placeholders unfilled
};

/// Who works with which database on which report: what all windows share, or one run of a report has for
/// itself.
struct ReportContext {
    explicit ReportContext(std::string connectionString = {}, DatabaseAccess::Tell tells = {})
        : database(std::move(connectionString), std::move(tells))
    {
    }

    DatabaseAccess database;
    std::string title;  ///< of the message boxes
    std::string user;   ///< id of the one who is logged in
    std::string folder; ///< the application's, without a trailing separator

    OpenReport report;
    std::int16_t fromList = 0;             ///< 1: the closing designer refills the report list
    std::int32_t listRow = 0;              ///< the list's current row across that refill
    std::int32_t cellRow = 0, cellCol = 0; ///< the cell that an open cell or formula dialog works on
    std::int16_t activeSheet = 0;          ///< the sheet that the table properties dialog renames
};

} // namespace selfreport
