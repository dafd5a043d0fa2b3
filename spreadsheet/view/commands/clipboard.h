#pragma once
#include "spreadsheet/values/Refusal.h"
#include "spreadsheet/view/commands/packed_cells.h"
#include "spreadsheet/view/commands/PastedTable.h"

#include <QString>

#include <memory>
#include <optional>
#include <string>
#include <variant>

class QMimeData;

namespace spreadsheet {

class Sheet;
class Workbook;

/// Cells that one copy takes at most.
inline constexpr long long maxCopiedCells = 10'000'000;
/// UTF-16 units of the text in a cell, at most: what other spreadsheets and their files hold.
inline constexpr qsizetype longestCellText = 32'767;

/// The range that a copy really takes: whole rows and columns end where the sheet's cells end.
CellRange copiedRange(const Sheet& sheet, const CellRange& range);

struct Copied {
    std::unique_ptr<QMimeData> data;
    PackedOrigin origin; ///< a cut is recognised by it when it is pasted
};

/// A range for the clipboard: our own form for pasting here, text and an HTML table for others.
/// @return the data, or why the range cannot be copied
[[nodiscard]] std::variant<Copied, Refusal> copyToClipboard(Workbook& workbook, const Sheet& sheet,
                                                            const CellRange& range);

/// What the clipboard offers a sheet: cells of ours, else a table of another program.
struct ClipboardContent {
    std::optional<UnpackedCells> own;
    PastedTable table;
    int columns() const { return own ? own->cells.columns : table.columns; }
    int rows() const { return own ? own->cells.rows : table.rows; }
};

/// The clipboard's text.
/// @param most  how long it may be, in UTF-16 units
/// @return the text, or why it cannot be pasted (too large, no text, empty)
[[nodiscard]] std::variant<QString, Refusal> clipboardText(const QMimeData& data, qsizetype most);

/// @return the content, or why it cannot be pasted (too large, no text, damaged, empty)
[[nodiscard]] std::variant<ClipboardContent, Refusal> readClipboard(Workbook& workbook,
                                                                    const QMimeData& data);

} // namespace spreadsheet
