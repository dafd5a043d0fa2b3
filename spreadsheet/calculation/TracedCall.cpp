#include "spreadsheet/calculation/TracedCall.h"

#include <algorithm>

namespace spreadsheet {

namespace {

CellRange usedCells(const Book& book, const Area& area)
{
    return area.cells.isOneCell() ? area.cells : usedPart(book, area);
}

/// The cell that implicit intersection takes; nothing where it takes none.
std::optional<CellAddress> intersected(const EvaluationPlace& place, const CellRange& cells)
{
    const CellAddress cell{cells.columns() > 1 ? place.cell.column : cells.left,
                           cells.rows() > 1 ? place.cell.row : cells.top};
    return cells.contains(cell) ? std::optional(cell) : std::nullopt;
}

FigurePart partOf(const Area& cells)
{
    FigurePart part;
    part.cells = cells;
    return part;
}

} // namespace

bool TracedCall::dependsOnCalls(std::size_t argument) const
{
    if (const FigureTrace& trace = m_traces[argument])
        return std::ranges::any_of(trace->parts, &FigureParts::dependsOnCalls);
    if (m_operands[argument].isValue())
        return false;
    bool any = false; // all areas are asked, so that what is not known is found out at once
    for (const Area& area : m_operands[argument].areas())
        any = m_cells.anyIn(area) || any;
    if (!m_operands[argument].isReferenceArray())
        return any;
    const ReferenceArray& references = m_operands[argument].referenceArray();
    for (int row = 0; row < references.rows(); ++row)
        for (int column = 0; column < references.columns(); ++column)
            for (const Area& area : references.at(row, column).areas())
                any = m_cells.anyIn(area) || any;
    return any;
}

TracedCall::Element TracedCall::cell(int sheet, CellAddress cell) const
{
    Element element{cellValue(m_place.book, sheet, cell), {}};
    const Area area{sheet, {cell.column, cell.row, cell.column, cell.row}};
    if (m_cells.anyIn(area))
        element.parts.parts.push_back(partOf(area));
    return element;
}

TracedCall::Element TracedCall::single(std::size_t argument) const
{
    const Operand& operand = m_operands[argument];
    if (m_traces[argument])
        return {singleValue(operand, m_place), m_traces[argument]->parts.front()};
    if (operand.isValue())
        return {operand.value(), {}};
    const Areas areas = operand.areas();
    if (areas.size() == 1)
        if (const auto found = intersected(m_place, areas.front().cells))
            return cell(areas.front().sheet, *found);
    return {singleValue(operand, m_place), {}};
}

bool TracedCall::singleDependsOnCalls(std::size_t argument) const
{
    if (const FigureTrace& trace = m_traces[argument])
        return trace->parts.front().dependsOnCalls();
    return m_operands[argument].isReference() && single(argument).parts.dependsOnCalls();
}

int TracedCall::rows(std::size_t argument) const
{
    const Operand& operand = m_operands[argument];
    if (operand.isArea())
        return usedCells(m_place.book, operand.area()).rows();
    return operand.isArray() ? operand.array().rows() : 1;
}

int TracedCall::columns(std::size_t argument) const
{
    const Operand& operand = m_operands[argument];
    if (operand.isArea())
        return usedCells(m_place.book, operand.area()).columns();
    return operand.isArray() ? operand.array().columns() : 1;
}

TracedCall::Element TracedCall::element(std::size_t argument, int row, int column) const
{
    const Operand& operand = m_operands[argument];
    Element found;
    if (operand.isArea()) {
        const CellRange& cells = operand.area().cells;
        const CellAddress address{cells.left + (cells.columns() == 1 ? 0 : column),
                                  cells.top + (cells.rows() == 1 ? 0 : row)};
        if (!m_traces[argument])
            return cells.contains(address) ? cell(operand.area().sheet, address) : Element{CellError::na, {}};
        found.value = cellValue(m_place.book, operand.area().sheet, address);
    } else {
        found.value = operand.isArray() ? operand.array().spread(row, column) : singleValue(operand, m_place);
    }
    if (m_traces[argument])
        if (const FigureParts* const parts = m_traces[argument]->spread(row, column))
            found.parts = *parts;
    return found;
}

TracedCall::Element TracedCall::taken(std::size_t argument, int row, int column, bool arrayMode) const
{
    const Operand& operand = m_operands[argument];
    const bool isIntersected = !arrayMode && operand.isReference() && !operand.isReferenceArray();
    return isIntersected ? single(argument) : element(argument, row, column);
}

FigureParts TracedCall::nonlinear() const
{
    FigureParts all;
    for (std::size_t argument = 0; argument < count(); ++argument) {
        if (m_traces[argument])
            for (const FigureParts& element : m_traces[argument]->parts)
                all.add(element, 1);
        else if (dependsOnCalls(argument))
            for (const Area& area : m_operands[argument].areas())
                all.parts.push_back(partOf(area));
    }
    all.nonlinear = m_function;
    return all;
}

FigureParts asNumber(TracedCall::Element element, bool from1904)
{
    if (element.parts.dependsOnCalls())
        return std::move(element.parts);
    const Value number = toNumber(element.value, from1904);
    element.parts.constant = number.isNumber() ? number.number() : 0;
    return std::move(element.parts);
}

} // namespace spreadsheet
