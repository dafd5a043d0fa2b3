#pragma once
#include "spreadsheet/files/xls/RecordWriter.h"
#include "spreadsheet/workbook/Workbook.h"

#include <map>
#include <string>
#include <vector>

namespace spreadsheet {

/// Gives numbers to what formulas of an .xls file mention: pairs of sheets, functions by name, defined names.
class LinkTable {
public:
    explicit LinkTable(const Workbook& workbook);

    /// Number of a reference through the sheets with these ids; -1 if one of them is gone.
    int sheets(int firstId, int lastId);
    /// Number of a function that only has a name, counted from 1.
    int function(std::string_view name);
    /// Number of the defined name that stands for a function newer than the format, counted from 1.
    int laterFunction(std::string_view name);
    /// The names of these, which follow those of the workbook.
    const std::vector<std::string>& laterFunctions() const { return m_laterFunctions; }
    /// Number behind which functions by name stand.
    int functionsBook();
    /// Number of a defined name of the workbook, counted from 1; 0 if it is not defined.
    int name(std::string_view name) const;
    /// The workbook's names in their order, as numbers of its name table.
    const std::vector<int>& names() const { return m_names; }

    void write(RecordWriter& writer) const;

private:
    struct Pair {
        std::uint16_t book, first, last;
        friend bool operator==(const Pair&, const Pair&) = default;
    };
    int number(Pair pair);

    const Workbook& m_workbook;
    std::vector<Pair> m_pairs;
    std::vector<std::string> m_functions, m_laterFunctions;
    std::vector<int> m_names;
};

} // namespace spreadsheet
