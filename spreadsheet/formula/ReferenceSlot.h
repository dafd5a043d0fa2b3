#pragma once
#include "spreadsheet/values/CellAddress.h"

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace spreadsheet {

/// One end of a reference along one axis: a fixed row or column, or a distance from the formula's cell.
struct AxisPoint {
    int value = 0;
    bool absolute = false;

    int at(int base) const { return absolute ? value : base + value; }
    friend bool operator==(const AxisPoint&, const AxisPoint&) = default;
};

/// A reference as it stands in a formula, relative to the cell that holds the formula, with its
/// spelling. Cells filled down hold equal slots.
struct ReferenceSlot {
    enum class Shape : std::uint8_t {
        cell,    ///< B2
        area,    ///< B2:C9
        columns, ///< B:C
        rows,    ///< 2:9
        broken,  ///< #REF!: what it meant was deleted
    };

    Shape shape = Shape::cell;
    int firstSheet = 0; ///< id of the sheet; 0: the formula's own
    int lastSheet = 0;  ///< another id for a reference through several sheets
    AxisPoint left, top, right, bottom;
    std::string sheetText;           ///< as typed, quotes and "!" included; empty for the own sheet
    bool sheetQuoted = false;        ///< typed with quotes, so it keeps them under another name
    std::uint8_t lowerCaseLeft = 0;  ///< bit i: column letter i is written small
    std::uint8_t lowerCaseRight = 0; ///< the same for the second corner

    bool isSingleCell() const { return shape == Shape::cell; }
    /// The cells meant by a formula in `base`, corners in order; nothing if broken or outside the sheet.
    std::optional<CellRange> range(CellAddress base) const;
    /// Appends the reference letter by letter as `base` shows it.
    void render(CellAddress base, std::string& text) const;
    /// Appends what tells this slot from others.
    void appendKey(std::string& key) const;

    friend bool operator==(const ReferenceSlot&, const ReferenceSlot&) = default;
};

/// "Sheet1!", "'2月 调整'!" or "一月:三月!": the prefix of a reference to a sheet, or to all sheets from
/// one to another; quoted where a name needs it or it is asked for.
std::string sheetPrefix(std::string_view sheetName, std::string_view lastSheetName = {}, bool quoted = false);

/// Takes "Sheet1!" or "'2月 调整'!" off the front of a reference: the sheet's name, quotes undone. Nothing,
/// and the text stays, if no sheet is named.
std::optional<std::string> takeSheetName(std::string_view& reference);

} // namespace spreadsheet
