// Cells that may read each other: their order, and those that really do.
#include "spreadsheet/calculation/ReadOrder.h"
#include "spreadsheet/calculation/Recalculation.h"
#include "spreadsheet/formula/FormulaPool.h"

namespace spreadsheet {

void Recalculation::evaluateCells(const Component& component)
{
    const auto runs = m_graph.runs();
    CellOrder(m_graph, component)
        .run(
            m_marked,
            [&](CellOrder::Node node) {
                if (!shouldStop())
                    evaluateRun(runs[static_cast<std::size_t>(node.run)], {node.row, node.row});
            },
            [&](std::span<const CellOrder::Node> cells) { evaluateAsRead(cells); });
}

/// Cells that may read each other: what they do read shows while they run.
void Recalculation::evaluateAsRead(std::span<const CellOrder::Node> cells)
{
    const auto runs = m_graph.runs();
    ReadOrder order(m_graph, cells);
    const std::unique_ptr<Evaluator, void (*)(Evaluator*)> guarded(
        &m_evaluator, [](Evaluator* evaluator) { evaluator->setGuard(nullptr); });
    m_evaluator.setGuard(&order);
    order.run(
        [&](CellOrder::Node node) {
            if (shouldStop())
                return;
            evaluateAlone(runs[static_cast<std::size_t>(node.run)], node.row);
            m_report.evaluatedCells += !order.waits();
        },
        [&](CellOrder::Node node) { setCircular(runs[static_cast<std::size_t>(node.run)], node.row); });
}

void Recalculation::evaluateAlone(const Run& run, int row)
{
    if (run.isArray)
        return evaluateArray(run);
    Column& column = m_book.sheet(run.sheet).writableColumn(run.column());
    const std::size_t slot = column.lowerSlot(row);
    CellBlock& block = column.computedBlock(slot);
    const int index = row - column.slots()[slot].firstRow;
    evaluateCell(run, m_book.formulas[run.formula], block, index, row);
    dropShown(block, index, 1);
}

void Recalculation::setCircular(const Run& run, int row)
{
    const int lastRow = run.isArray ? run.cells.bottom : row;
    for (int column = run.cells.left; column <= run.cells.right; ++column) {
        Column& cells = m_book.sheet(run.sheet).writableColumn(column);
        for (int at = row; at <= lastRow; ++at) {
            const std::size_t slot = cells.lowerSlot(at);
            cells.computedBlock(slot).setValue(at - cells.slots()[slot].firstRow, CellError::ref);
            m_report.circular.push_back({run.sheet, column, at});
        }
    }
}

} // namespace spreadsheet
