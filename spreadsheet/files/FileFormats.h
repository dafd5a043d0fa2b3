#pragma once
#include "spreadsheet/files/ole2/little_endian.h"
#include "spreadsheet/files/placing/ContentError.h"

#include <filesystem>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace spreadsheet {

class PendingFile;
class Warnings;
class Workbook;

/// A kind of files that workbooks are read from and written to. Menus, dialogs and the command line offer
/// what the table of all of them holds.
struct FileFormat {
    std::string_view caption;                  ///< what dialogs call such a file
    std::span<const std::string_view> endings; ///< of files' names, in small letters with the point; the
                                               ///< first is that of new files
    bool isStrict; ///< programs refuse such a file under the ending of another format that is strict
    /// Whether the content of a file, however it is called, is of this kind; null: nothing in it tells.
    bool (*senses)(Bytes content);
    /// Puts a file's content in place of everything that the workbook holds; null: only written. Adds what
    /// could not be carried over. @throws ContentError; the workbook is as it was then
    void (*read)(Bytes content, Workbook& workbook, Warnings& warnings);
    /// Writes a workbook under a title to a file. Adds what the format could not hold.
    /// @throws ContentError if the workbook does not fit the format; FileError
    void (*write)(const Workbook& workbook, const std::string& title, PendingFile& file, Warnings& warnings);

    std::string_view ending() const { return endings.front(); }
};

/// All formats, our own first.
std::span<const FileFormat> fileFormats();

/// By the ending of a file's name, letter case ignored; null for another ending.
const FileFormat* fileFormatOfName(const std::filesystem::path& file);

/// The format that has such an ending. @throws std::logic_error if none has
const FileFormat& fileFormat(std::string_view ending);

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
                                      const FileFormat& format);

} // namespace spreadsheet
