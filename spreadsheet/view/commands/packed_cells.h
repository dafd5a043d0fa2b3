#pragma once
#include "spreadsheet/cells/LiftedCells.h"
#include "spreadsheet/values/Refusal.h"

#include <QByteArray>

#include <cstdint>
#include <string>
#include <variant>

namespace spreadsheet {

class Workbook;

/// Where a block on the clipboard comes from.
struct PackedOrigin {
    std::uint64_t token = 0; ///< tells this copy from all others, on this machine and elsewhere
    int sheetId = 0;
    CellRange range;
    bool wholeRows =
        false; ///< rows were selected by their headings: the range ends where the sheet's cells end
    bool wholeColumns = false;
};

/// A block of cells with everything they have, as bytes that any workbook of this program understands:
/// formulas travel as texts, styles as their fields.
QByteArray packCells(Workbook& workbook, const PackedOrigin& origin, const LiftedCells& cells);

struct UnpackedCells {
    PackedOrigin origin;
    LiftedCells cells;
    int refusedFormulas = 0; ///< formulas that mean nothing here (another sheet's name); their values stay
};

/// Takes such bytes into a workbook's pools. Nothing else of the workbook changes.
/// @return the cells, or why the bytes are no such block (one Chinese sentence)
[[nodiscard]] std::variant<UnpackedCells, Refusal> unpackCells(Workbook& workbook, const QByteArray& bytes);

} // namespace spreadsheet
