#include "windows/formatting/frmLineSize.h"

#include "platform/windows/buttons.h"
#include "platform/windows/number_fields.h"
#include "platform/windows/settle.h"
#include "spreadsheet/cells/SheetSettings.h"
#include "spreadsheet/view/needed_size.h"
#include "spreadsheet/view/SpreadsheetControl.h"
#include "windows/formatting/cell_commands.h"

#include <QDoubleSpinBox>
#include <QFormLayout>

#include <cmath>

namespace selfreport {

namespace {

} // namespace

frmLineSize::frmLineSize(spreadsheet::SpreadsheetControl& grid, Lines lines, QWidget* parent)
    : QDialog(parent)
    , m_grid(grid)
    , m_lines(lines)
    , m_size(new DecimalField)
{
    const bool rows = lines == Lines::rows;
    setObjectName("frmLineSize");
    setWindowTitle(rows ? QStringLiteral("行高") : QStringLiteral("列宽"));
    m_size->setObjectName("size");
    m_size->setRange(1, spreadsheet::maxLineSize / spreadsheet::twipsPerPoint);
    m_size->setDecimals(2);
    m_size->setSuffix(QStringLiteral(" 磅"));
    const auto& settings = grid.cells().sheet().settings();
    const spreadsheet::CellAddress cell = grid.cursor().activeCell();
    m_size->setValue(
        (rows ? shownRowHeight(grid.cells().sheet(), cell.row) : settings.columns.size(cell.column)) /
        spreadsheet::twipsPerPoint);
    auto* form = new QFormLayout(this);
    form->addRow(rows ? QStringLiteral("行高(&R)：") : QStringLiteral("列宽(&C)："), m_size);
    form->addRow(okAndClose(
        "确定(&Q)", [this] { cmdXPOK_Click(); }, "取消(&E)", [this] { close(); }));
    m_size->setFocus();
    m_size->selectAll();
    settle(*this);
}

void frmLineSize::cmdXPOK_Click()
{
    const int twips = static_cast<int>(std::lround(m_size->value() * spreadsheet::twipsPerPoint));
    if (m_lines == Lines::rows)
        setRowHeights(m_grid, twips);
    else
        setColumnWidths(m_grid, twips);
    close();
}

} // namespace selfreport
