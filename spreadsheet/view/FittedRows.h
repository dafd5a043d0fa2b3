#pragma once
#include "spreadsheet/print/PageText.h"
#include "spreadsheet/view/CellGeometry.h"

#include <cstdint>
#include <map>
#include <optional>

namespace spreadsheet {

/// Heights of rows that follow their texts, found for the rows in sight and around them when these change.
class FittedRows {
public:
    FittedRows();

    /// Finds the heights for what a geometry shows. True if one of them is another than before: places are
    /// others then, and more or fewer rows may be in sight.
    /// @param revision  of the workbook
    bool fit(const Sheet& sheet, std::uint64_t revision, const CellGeometry& geometry);
    /// Another sheet is shown.
    void forget();
    /// In twips by row; other rows have their own or the usual one.
    const std::map<int, int>& heights() const { return m_heights; }

private:
    struct Measured {
        std::uint64_t revision;
        int first, last;
    };
    bool measure(const Sheet& sheet, int first, int last);

    PageText m_text;
    std::map<int, int> m_heights;
    std::optional<Measured> m_around; ///< the rows in sight
    std::optional<Measured> m_end;    ///< the last ones
};

} // namespace spreadsheet
