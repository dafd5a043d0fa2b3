#pragma once
#include "spreadsheet/calculation/Call.h"
#include "spreadsheet/calculation/CallCells.h"
#include "spreadsheet/calculation/FigureParts.h"

#include <span>
#include <utility>

namespace spreadsheet {

/// The operands of an operator or function with what is known of them, and what it came to: what rules of
/// linear forms are handed. Arguments count from 0.
class TracedCall {
public:
    TracedCall(std::string_view function, const EvaluationPlace& place, CallCells& cells,
               std::span<const Operand> operands, std::span<const FigureTrace> traces, const Operand& result)
        : m_function(function)
        , m_place(place)
        , m_cells(cells)
        , m_operands(operands)
        , m_traces(traces)
        , m_result(result)
    {
    }

    std::string_view function() const { return m_function; }
    const EvaluationPlace& place() const { return m_place; }
    CallCells& cells() const { return m_cells; }
    std::size_t count() const { return m_operands.size(); }
    const Operand& operand(std::size_t argument) const { return m_operands[argument]; }
    std::span<const Operand> operands() const { return m_operands; }
    const FigureTrace& trace(std::size_t argument) const { return m_traces[argument]; }
    Value result() const { return singleValue(m_result, m_place); }

    /// Whether an argument, or some cell of it, depends on calls.
    bool dependsOnCalls(std::size_t argument) const;
    /// A reference whose cells are to be asked, rather than a value or an array.
    bool isCells(std::size_t argument) const
    {
        return !m_traces[argument] && m_operands[argument].isReference();
    }

    /// An element as a value, and what it is made of; its constant counts only where it depends on calls.
    struct Element {
        Value value;
        FigureParts parts;
    };
    /// The single value that an operator takes of an argument.
    Element single(std::size_t argument) const;
    bool singleDependsOnCalls(std::size_t argument) const;
    Element cell(int sheet, CellAddress cell) const;

    int rows(std::size_t argument) const;    ///< up to the used part of the sheet
    int columns(std::size_t argument) const; ///< likewise
    /// A single row or column repeats.
    Element element(std::size_t argument, int row, int column) const;
    /// … that a call for each element takes. Outside array mode ranges beside arrays give a single cell.
    Element taken(std::size_t argument, int row, int column, bool arrayMode) const;

    /// All that the arguments depend on, as something that is no sum.
    FigureParts nonlinear() const;

private:
    std::string_view m_function; ///< or operator
    const EvaluationPlace& m_place;
    CallCells& m_cells;
    std::span<const Operand> m_operands;
    std::span<const FigureTrace> m_traces;
    const Operand& m_result;
};

/// The parts of an element as of a number, its constant filled in.
FigureParts asNumber(TracedCall::Element element, bool from1904);

} // namespace spreadsheet
