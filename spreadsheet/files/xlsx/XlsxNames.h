#pragma once
#include "spreadsheet/files/xlsx/structured_references.h"

#include <map>
#include <string>
#include <string_view>
#include <vector>

namespace spreadsheet {

/// What formulas of a read .xlsx file name and ours do not know: parts of tables, and names that mean one
/// thing on one sheet and another elsewhere.
class XlsxNames {
public:
    void addTable(XlsxTable table) { m_tables.push_back(std::move(table)); }
    /// @param sheet  the only one that the name holds for; empty: all
    /// @param ours   what it is called here
    void addName(std::string_view sheet, std::string_view name, std::string ours);

    /// A formula of a cell with all these replaced.
    std::string plain(std::string_view formula, std::string_view sheet, CellAddress cell) const;

private:
    class Rewriter;

    const XlsxTable* table(std::string_view name) const;
    const XlsxTable* tableAt(std::string_view sheet, CellAddress cell) const;
    /// Null if no such name holds for the sheet itself.
    const std::string* name(std::string_view sheet, std::string_view name) const;

    std::vector<XlsxTable> m_tables;
    std::map<std::pair<std::string, std::string>, std::string> m_names; ///< by sheet and name, folded
    bool m_hasLocal = false;
};

} // namespace spreadsheet
