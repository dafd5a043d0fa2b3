#pragma once
#include "spreadsheet/workbook/Sheet.h"

#include <initializer_list>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace selfreport::demo {

/// Fills a sheet from the top with the lines of a statement: title, a line under it, headings, rows.
class StatementSheet {
public:
    /// @param widths  one for each column, in tenths of an inch
    StatementSheet(spreadsheet::Sheet& sheet, std::span<const int> widths);

    /// A line across all columns, bold and large.
    void title(std::string_view text);
    /// A line with one text at its left, centre and right.
    void underTitle(std::string_view left, std::string_view centre, std::string_view right);
    /// An unframed line across all columns, below the rows.
    void note(std::string_view text);
    /// A framed line of column headings on grey.
    void headings(std::initializer_list<std::string_view> texts);
    /// The same from texts that are not known beforehand.
    void headings(std::span<const std::string> texts);

    /// Begins a framed row and returns its number.
    int beginRow();
    int row() const { return m_row; } ///< the last one begun

    void text(int column, std::string_view text);
    void centred(int column, std::string_view text);
    /// A formula shown with `decimals` places and commas, and as nothing where it is 0.
    /// @throws std::runtime_error if the sheet refuses it
    void formula(int column, const std::string& formula, int decimals = 2);
    void percentage(int column, const std::string& formula);
    /// Makes the row's cells bold.
    void emphasize();

    /// Keeps the headings in view and on every page, and all columns on one.
    void finish();

    /// "C12"
    std::string cell(int column) const;

private:
    using Change = std::function<void(spreadsheet::CellStyle&)>;
    spreadsheet::CellRange wholeRow() const { return {1, m_row, m_columns, m_row}; }
    int columnsOfAtLeast(int twips) const;
    void nextRow(int height);
    void outline();
    void setFormula(int column, const std::string& formula);

    spreadsheet::Sheet& m_sheet;
    int m_columns;
    int m_row = 0;
    int m_headingRow = 0;
    int m_lastRow = 0; ///< of the framed ones
};

/// Text of an `Acct` call as the formula dialogs write it. Empty year and periods are not given.
struct Fetch {
    std::string account;
    std::string type; ///< fetch type key
    std::string year;
    std::string first = "1";
    std::string last = "12";
    std::string currency{};
};
std::string acct(const Fetch& fetch);

/// Text of a `REF_F` call.
std::string reference(std::string_view report, std::string_view cell, std::string_view tab);

} // namespace selfreport::demo
