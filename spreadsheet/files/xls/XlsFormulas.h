#pragma once
#include "spreadsheet/files/xls/LinkTable.h"
#include "spreadsheet/formula/Formula.h"
#include "spreadsheet/workbook/Workbook.h"

#include <optional>
#include <string>
#include <vector>

namespace spreadsheet {

struct FormulaTree;
struct FormulaNode;

/// Tokens of a formula for any cell that holds it.
struct XlsFormula {
    /// Where rows and columns of a reference stand in the tokens.
    struct Place {
        std::size_t offset;
        int slot;
        bool isArea;
    };
    std::vector<std::byte> tokens, extra;
    std::vector<Place> places;
    std::string problem; ///< why the format cannot hold the formula; empty if it can
};

/// Turns formulas of the pool into tokens, each once.
class XlsFormulas {
public:
    XlsFormulas(const Workbook& workbook, LinkTable& links)
        : m_workbook(workbook)
        , m_links(links)
    {
    }

    /// @param inName  the formula of a defined name: every reference must name its sheet
    const XlsFormula& formula(std::uint32_t number, CellAddress base, bool inName = false);
    /// The tokens as the cell `base` holds them; false if a reference leaves the format's sheet there.
    bool tokensAt(const XlsFormula& formula, std::uint32_t number, CellAddress base,
                  std::vector<std::byte>& tokens) const;

private:
    const Workbook& m_workbook;
    LinkTable& m_links;
    std::vector<std::optional<XlsFormula>> m_made; ///< by number in the pool
};

} // namespace spreadsheet
