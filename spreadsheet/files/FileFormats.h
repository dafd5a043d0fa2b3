#pragma once
#include "spreadsheet/files/placing/ContentError.h"

#include <filesystem>
#include <optional>
#include <string>
#include <vector>

namespace spreadsheet {

class Workbook;

/// Kinds of files that workbooks are read from and written to.
enum class FileFormat {
    ss7,  ///< our own
    xls,  ///< BIFF8 in a compound file; BIFF5 and 7 are read too
    xlsx, ///< zipped XML
    csv,  ///< text of fields and lines
    html, ///< a table to be looked at; only written
};

/// By the ending of a file's name (.ss7, .xls, .xlsx, .csv, .txt, .html, .htm; letter case ignored); nothing
/// for another ending.
std::optional<FileFormat> fileFormatOfName(const std::filesystem::path& file);

/// Loads a file of whatever kind its content is, however it is called, in place of everything that the
/// workbook holds. Registered functions, the prepare hook and the undo setting stay. Cells show the values
/// that the file has; nothing is recalculated.
/// @return what could not be carried over, one Chinese sentence each
/// @throws ContentError that names the reason: not readable, damaged, protected by a password, text or HTML
///         under the name of a workbook; the workbook is as it was then
std::vector<std::string> loadWorkbook(Workbook& workbook, const std::filesystem::path& file);

/// Writes a workbook. A file that stands there is replaced at the very end by one that is whole, and stays
/// if anything fails.
/// @return what the format could not hold, one Chinese sentence each
/// @throws ContentError if the workbook does not fit the format; FileError if the file cannot be written
std::vector<std::string> saveWorkbook(const Workbook& workbook, const std::filesystem::path& file,
                                      FileFormat format);

} // namespace spreadsheet
