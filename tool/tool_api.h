#pragma once
#include <cstdint>
#include <iosfwd>
#include <string>
#include <vector>

namespace selfreport {

/// Where a command writes. UTF-8 texts, lines ended by LF.
struct ToolStreams {
    std::ostream& results; ///< what the command is for
    std::ostream& notes;   ///< progress, diagnostics of cells, and why it failed
};

/// Files that a report is written to. "" leaves one out. A file that stands is replaced at the very end, by
/// one that is whole; if anything fails both stay as they were.
struct ReportFiles {
    std::string pdf; ///< every sheet
    std::string csv; ///< every sheet's used area, an empty line between sheets
    /// Whether they are written although fetches of cells failed. Then every page begins with a line that
    /// says how many, and the CSV ends with one, behind an empty line, so that all cells keep their places.
    bool allowFailed = false;
    /// Whether nothing is written while a call names what there is not, or its fetch failed: the second
    /// whatever `allowFailed` says.
    bool isStrict = false;
    bool isArchive = false; ///< the PDF keeps to PDF/A-1b
};

// The commands of the program. Each returns its exit code: 0, or 1 after a line on `notes` that says why it
// failed and names the thing. None lets an exception out. `database` is a connection string, or the file name
// of an embedded database.

/// Writes the demo ledger with its stored reports into a new embedded database.
/// @param replaces  whether a file that stands there may be replaced
int toolDemo(const std::string& file, bool replaces, const ToolStreams& streams) noexcept;

/// One line for each stored report: id, name, who saved it and when, parted by tabs.
int toolList(const std::string& database, const ToolStreams& streams) noexcept;

/// Evaluates a stored report and writes it; without files as CSV to `results`. Cells whose fetch failed or
/// found nothing are listed on `notes`. A fetch that failed makes the figures worthless: nothing is written
/// and 1 returned, unless it is allowed. A strict run that is refused for names returns 4.
int toolRun(const std::string& database, std::int32_t reportId, const ReportFiles& files,
            const ToolStreams& streams) noexcept;

/// Sets figures of the demo reports beside the results of separate queries; 1 also if any two differ.
int toolCheck(const std::string& database, const ToolStreams& streams) noexcept;

/// Checks whether everything holds in a ledger that holds in a sound one, and whether reports read it as it
/// is written. Reads only. 1 also if anything does not hold or could not be asked.
/// @param year  only that one; 0: all
/// @param asJson  one JSON object instead of lines
int toolProve(const std::string& database, int year, bool asJson, const ToolStreams& streams) noexcept;

/// Takes a figure of a stored report apart, into the calls of its formula and what the ledger has behind
/// them, and holds the sum of each level against the one above. 1 also if a sum differs or a part is not
/// known.
/// @param cell   "Sheet1!B7"; without a sheet one of the first
/// @param depth  levels, from 1
int toolExplain(const std::string& database, std::int32_t reportId, const std::string& cell, int depth,
                bool asJson, const ToolStreams& streams) noexcept;

/// Opens the program's window on a database and returns when it is closed.
/// @param database  "": the user is asked for the file of an embedded database
int toolWindow(const std::string& database, const ToolStreams& streams) noexcept;

/// A kind of files that workbooks are converted between.
struct ToolFormat {
    std::string ending; ///< of new files' names, with the point
    bool isRead;        ///< else it is only written
};
std::vector<ToolFormat> toolFormats();

/// Reads a workbook of any kind (by its content) and writes it in the format that the ending of `output`
/// names. A file that stands there is replaced at the very end. What
/// could not be carried over is listed on `notes`.
/// @param recalculates  computes every formula in between; Acct and REF_F give #NAME?, no ledger is open
int toolConvert(const std::string& input, const std::string& output, bool recalculates,
                const ToolStreams& streams) noexcept;

/// The functions that formulas may call, by family, as a Markdown text.
int toolFunctions(const ToolStreams& streams) noexcept;

} // namespace selfreport
