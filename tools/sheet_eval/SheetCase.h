#pragma once
#include "spreadsheet/workbook/Workbook.h"

#include <nlohmann/json_fwd.hpp>

#include <iosfwd>
#include <stdexcept>
#include <string>
#include <vector>

namespace spreadsheet {

/// A request that cannot be served; what() is the reason.
struct CaseError : std::runtime_error {
    using std::runtime_error::runtime_error;
};

/// A cell that a request asks for, under the name that it gave.
struct WantedCell {
    std::string name; ///< "Sheet1!B2", "'2月 调整'!A1"
    int sheet = 1;
    CellAddress cell;
};

/// One request of sheet-eval: a small workbook and the cells that are wanted of it.
class SheetCase {
public:
    /// Fills a fresh workbook with names, cells and array formulas; computes nothing.
    ///
    /// @param notes  a line for each formula that the language does not take, with the reason; its cells
    ///               hold #NAME?
    /// @throws CaseError if the request has another form than it must have
    SheetCase(const nlohmann::json& request, std::ostream& notes);

    Workbook& workbook() { return m_workbook; }
    const std::vector<WantedCell>& wanted() const { return m_wanted; }

private:
    void addSheets(const nlohmann::json& sheets);
    void defineNames(const nlohmann::json& names);
    void fillCells(int sheet, const nlohmann::json& cells);
    void fillCell(Sheet& sheet, CellAddress cell, const nlohmann::json& content);
    void fillArray(const std::string& reference, const nlohmann::json& formula);
    void noteRefused(const std::string& place, const Refusal& problem);
    /// The sheet that a reference names, which is taken off.
    int takeSheet(const std::string& whole, std::string_view& reference) const;

    Workbook m_workbook;
    std::vector<WantedCell> m_wanted;
    std::ostream& m_notes;
};

} // namespace spreadsheet
