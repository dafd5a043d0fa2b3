#pragma once
#include "spreadsheet/workbook/cell_borders.h"
#include "spreadsheet/workbook/Workbook.h"

#include <QString>
#include <QStringList>

#include <functional>
#include <memory>
#include <optional>
#include <vector>

namespace spreadsheet {

/// Sides of a cell, to be added up.
enum BorderSides { noSide = 0, leftSide = 1, rightSide = 2, topSide = 4, bottomSide = 8, allSides = 15 };

/// What windows do with a workbook's cells by program. Operations without a place mean the current position
/// on the addressed sheet. Columns, rows and sheets count from 1. Each change is an undo step of its own
/// unless an UndoStep is open. Nothing here asks the user, moves the cursor or fires an event of the control.
class CellOperations {
public:
    /// On an empty workbook of its own.
    CellOperations();
    virtual ~CellOperations();
    CellOperations(const CellOperations&) = delete;
    CellOperations& operator=(const CellOperations&) = delete;

    Workbook& workbook() { return *m_workbook; }
    const Workbook& workbook() const { return *m_workbook; }
    /// Works on a workbook that somebody else owns and that must outlive this; null: on a fresh one of its
    /// own; the present one: it holds another content now, which is shown from its beginning.
    void setWorkbook(Workbook* workbook);

    // Sheets
    int activeSheet() const { return m_workbook->activeSheet(); } ///< the one that is seen
    /// Shows a sheet, which is also the addressed one then. Others than 1 to sheetCount() do nothing.
    void setActiveSheet(int index);
    int addressedSheet() const; ///< the one that operations work on
    /// Until another sheet is shown; others than 1 to sheetCount() do nothing.
    void setAddressedSheet(int index);
    Sheet& sheet() { return m_workbook->sheet(addressedSheet()); }
    const Sheet& sheet() const { return m_workbook->sheet(addressedSheet()); }
    Sheet& shownSheet() { return m_workbook->sheet(activeSheet()); }
    const Sheet& shownSheet() const { return m_workbook->sheet(activeSheet()); }
    int sheetCount() const { return m_workbook->sheetCount(); }
    QString sheetName() const;
    Refusal setSheetCount(int count);
    Refusal setSheetName(const QString& name);

    // Size of the addressed sheet
    int rowCount() const { return sheet().settings().rowCount; }
    int columnCount() const { return sheet().settings().columnCount; }
    /// Cells beyond go, as one undo step. Refused outside 1 to maxRows (maxColumns), and if an array formula
    /// would be cut.
    Refusal setRowCount(int count);
    Refusal setColumnCount(int count);
    int lastDataRow() const { return sheet().lastDataRow(); } ///< 0: no data
    int lastDataColumn() const { return sheet().lastDataColumn(); }
    void setRowHeight(int row, int twips); ///< 0 hides
    void setColumnWidth(int column, int twips);
    /// Before a row or column; the sheet grows by as many. Refused if it would lose data.
    Refusal insertRowsAt(int row, int count);
    Refusal insertColumnsAt(int column, int count);

    // Current position: where reads and writes of attributes go. It is not the active cell, and moving one
    // leaves the other.
    CellAddress current() const { return m_current; }
    /// Places outside the sheet do nothing.
    void setCurrent(int column, int row);

    // Contents
    QString text() const { return text(m_current.column, m_current.row); } ///< as it is displayed
    QString text(int column, int row) const;
    /// Taken literally; only in cells of a number, date or time type a text that reads as a number becomes
    /// one.
    /// "" empties the cell.
    void setText(const QString& text) { setText(m_current.column, m_current.row, text); }
    void setText(int column, int row, const QString& text);
    QString formula() const; ///< without "="; "" for a constant
    /// With or without "="; "" takes a formula away and leaves a constant.
    /// Refused, the cell keeps what it had.
    Refusal setFormula(const QString& text);
    QString tag() const;
    void setTag(const QString& tag);

    // Looks
    const CellStyle& style() const { return sheet().style(m_current); }
    /// Type, decimals, font, alignment, colours, lock: changes the current cell's.
    void changeStyle(const std::function<void(CellStyle&)>& change);
    /// … and those of every cell of a range, as one undo step.
    void changeStyle(const CellRange& range, const std::function<void(CellStyle&)>& change);
    /// … of every cell of several ranges, as if each lay in one alone.
    /// @param change  sets something or inverts it
    void changeStyleOfEach(const std::vector<CellRange>& ranges,
                           const std::function<void(CellStyle&)>& change);
    /// The named sides of every cell of a range get this line, and the cells beside them with it; none of the
    /// sides named: nothing happens.
    void setBorder(const CellRange& range, int sides, Colour colour, LineStyle style);
    /// Draws lines in and around each of the ranges, as one undo step.
    void drawBorders(const std::vector<CellRange>& ranges, const BorderLines& lines);

    // Spans
    std::optional<CellRange> spanAt(int column, int row) const { return sheet().spanAt({column, row}); }
    void addSpan(const CellRange& range)
    {
        sheet().addSpan(range);
        changed();
    }
    /// Of the addressed sheet, all that meet the range.
    void removeSpans(const CellRange& range)
    {
        sheet().removeSpans(range);
        changed();
    }

    // Drop-down lists. A cell without a list of its own has its column's.
    QStringList dropDownOf(CellAddress cell) const; ///< of the addressed sheet
    QStringList dropDown() const { return dropDownOf(m_current); }
    /// Of the current cell; empty: none of its own.
    void setDropDown(const QStringList& entries) { putDropDown(m_current, entries); }
    void setColumnDropDown(int column, const QStringList& entries) { putDropDown({column, 0}, entries); }
    /// The entry, from 0, that the current cell's text equals; -1 if none.
    int dropDownIndex() const;
    void setDropDownIndex(int index); ///< puts the entry into the cell; others than entries do nothing

    // Captions of button cells. A cell without one of its own has its column's.
    QString buttonCaption() const; ///< "": the button shows the cell's value
    void setButtonCaption(const QString& caption) { putButtonCaption(m_current, caption); }
    /// Of a cell (row 0: of a whole column); "": none of its own.
    void putButtonCaption(CellAddress place, const QString& caption);
    /// Likewise.
    void putDropDown(CellAddress place, const QStringList& entries);

    // Print settings of the addressed sheet
    const PrintSettings& printSettings() const { return sheet().settings().print; }
    void changePrintSettings(const std::function<void(PrintSettings&)>& change);

    // Custom functions and recalculation
    void registerFunction(const QString& name, int parameterCount, FunctionHandler handler);
    void recalculate(); ///< every formula
    /// Called instead of Workbook::recalculateChanged after each edit of the user. Empty: that one.
    std::function<void()> recalculateChanged;
    void recalculateAfterEdit();

protected:
    /// The cells or sheets changed by program.
    virtual void changed() {}
    /// Another sheet is shown.
    virtual void sheetSwitched() {}
    /// Another workbook, or another content, is shown.
    virtual void workbookSwitched() { sheetSwitched(); }

private:
    Refusal setLineCount(int count, int former, int most, Refusal (Sheet::*remove)(int, int),
                         int SheetSettings::*kept);

    std::unique_ptr<Workbook> m_own;
    Workbook* m_workbook;
    int m_addressedId = 0; ///< id of the addressed sheet; 0: the active one
    CellAddress m_current;
};

} // namespace spreadsheet
