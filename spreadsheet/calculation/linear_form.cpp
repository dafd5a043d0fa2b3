#include "spreadsheet/calculation/linear_form.h"

#include "spreadsheet/calculation/TracingMachine.h"
#include "spreadsheet/cells/Book.h"
#include "spreadsheet/formula/FormulaPool.h"

#include <algorithm>
#include <map>

namespace spreadsheet {

namespace {

/// The cells that a figure is made of. They are settled those first that others read, then gone through back
/// from the one asked for, each once: what it counts there goes on to what it reads. So a cell needs no form
/// of its own, which a column of running sums would have as many terms of as it has pairs of rows.
class Cone {
public:
    Cone(const Book& book, const CallAnswers& answers)
        : m_book(book)
        , m_cells(book)
        , m_machine(book, m_cells, answers)
    {
    }

    void settle(const CallPlace& asked);
    void settleAll();
    LinearForm form(const CallPlace& asked);
    /// Forward, over all cells that are settled.
    std::vector<CarriedSeverity> carried(const CallSeverity& severity);

private:
    struct Node {
        CallPlace cell;
        CallPlace caller;         ///< the first cell of its array formula
        FigureTrace trace;        ///< that holds the parts
        const FigureParts* parts; ///< of this cell
        bool isCounted;           ///< in sums
        double weight = 0;
        bool isReached = false;
        bool isByCondition = false;
    };

    void look(const CallPlace& cell);
    void keep(const CallPlace& cell, const CallPlace& caller, const FigureTrace& trace,
              const FigureParts* parts);
    void handOn(const Node& node, LinearForm& form);
    void handOnCells(const Node& node, const FigurePart& part);

    const Book& m_book;
    CallCells m_cells;
    TracingMachine m_machine;
    std::vector<Node> m_nodes; ///< those made of calls
    std::vector<CallPlace> m_open;
    std::map<double, double> m_roundings;
};

void Cone::settle(const CallPlace& asked)
{
    m_open.push_back(asked);
    while (!m_open.empty()) {
        const CallPlace cell = m_open.back();
        const CallCells::State state = m_cells.state(cell);
        if (state == CallCells::State::pending || state == CallCells::State::open)
            look(cell);
        else
            m_open.pop_back();
    }
}

/// Settles a cell if all that it reads is settled, else puts what is missing before it.
void Cone::look(const CallPlace& cell)
{
    const BookSheet& sheet = m_book.sheet(cell.sheet);
    const CellAddress address{cell.column, cell.row};
    const std::uint32_t number = sheet.formula(address);
    const Formula& formula = m_book.formulas[number];
    const CellAddress base = sheet.formulaBase(address, formula.isArrayFormula);
    const CellRange range =
        formula.isArrayFormula
            ? sheet.arrayRange(address).value_or(CellRange{base.column, base.row, base.column, base.row})
            : CellRange{base.column, base.row, base.column, base.row};
    const auto eachCell = [&](auto&& use) {
        for (int column = range.left; column <= range.right; ++column)
            for (int row = range.top; row <= range.bottom; ++row)
                use(CallPlace{cell.sheet, column, row});
    };
    eachCell([&](const CallPlace& each) { m_cells.setOpen(each); });
    EvaluationPlace place{m_book, cell.sheet, base};
    place.rows = range.rows();
    place.columns = range.columns();
    const FigureTrace trace = m_machine.trace(formula, place);
    const std::vector<CallPlace> needed = m_cells.takeNeeded();
    if (!needed.empty()) { // the first one comes to lie on top
        m_open.insert(m_open.end(), needed.rbegin(), needed.rend());
        return;
    }
    eachCell([&](const CallPlace& each) {
        keep(each, {cell.sheet, base.column, base.row}, trace,
             trace ? trace->spread(each.row - range.top, each.column - range.left) : nullptr);
    });
}

void Cone::keep(const CallPlace& cell, const CallPlace& caller, const FigureTrace& trace,
                const FigureParts* parts)
{
    if (!parts || !parts->dependsOnCalls())
        return m_cells.settle(cell, -1);
    m_cells.settle(cell, static_cast<int>(m_nodes.size()));
    const Value value = cellValue(m_book, cell.sheet, {cell.column, cell.row});
    m_nodes.push_back({cell, caller, trace, parts, countedNumber(value).has_value()});
}

void Cone::handOnCells(const Node& node, const FigurePart& part)
{
    m_cells.eachIn(part.cells, [&](CellAddress, int number) {
        Node& read = m_nodes[static_cast<std::size_t>(number)];
        read.isReached = true;
        read.isByCondition = read.isByCondition || node.isByCondition || part.isByCondition;
        if (!part.isSummed || read.isCounted)
            read.weight += node.weight * part.coefficient;
    });
}

void Cone::handOn(const Node& node, LinearForm& form)
{
    form.constant += node.weight * node.parts->constant;
    if (form.nonlinearFunction.empty())
        form.nonlinearFunction = node.parts->nonlinear;
    for (const FigurePart& part : node.parts->parts) {
        const double coefficient = node.weight * part.coefficient;
        switch (part.kind) {
        case FigurePart::Kind::cells:
            handOnCells(node, part);
            break;
        case FigurePart::Kind::call:
            form.terms.push_back(
                {node.caller, part.call, coefficient, node.isByCondition || part.isByCondition});
            break;
        case FigurePart::Kind::rounding:
            m_roundings[part.step] += coefficient;
            break;
        }
    }
}

/// Puts equal calls together.
void gather(std::vector<LinearTerm>& terms)
{
    const auto place = [](const LinearTerm& term) { return std::pair(term.cell, term.call); };
    std::ranges::reverse(terms); // mostly that is their order
    if (!std::ranges::is_sorted(terms, {}, place))
        std::ranges::stable_sort(terms, {}, place);
    std::vector<LinearTerm> gathered;
    for (const LinearTerm& term : terms) {
        if (gathered.empty() || place(gathered.back()) != place(term)) {
            gathered.push_back(term);
            continue;
        }
        gathered.back().coefficient += term.coefficient;
        gathered.back().isByCondition = gathered.back().isByCondition || term.isByCondition;
    }
    terms = std::move(gathered);
}

LinearForm Cone::form(const CallPlace& asked)
{
    LinearForm form;
    const Value value = cellValue(m_book, asked.sheet, {asked.column, asked.row});
    const auto number = value.isEmpty() ? 0 : countedNumber(value);
    if (m_cells.state(asked) == CallCells::State::made) {
        const CellRange cell{asked.column, asked.row, asked.column, asked.row};
        m_cells.eachIn({asked.sheet, cell}, [this](CellAddress, int found) {
            Node& node = m_nodes[static_cast<std::size_t>(found)];
            node.weight = 1;
            node.isReached = true;
        });
        for (auto node = m_nodes.rbegin(); node != m_nodes.rend(); ++node)
            if (node->isReached)
                handOn(*node, form);
        gather(form.terms);
    } else {
        form.constant = number.value_or(0);
    }
    for (const auto& [step, amount] : m_roundings)
        form.roundings.push_back({step, amount});
    form.isLinear = number && form.nonlinearFunction.empty();
    return form;
}

void Cone::settleAll()
{
    for (int sheet = 1; sheet <= m_book.sheetCount(); ++sheet)
        for (int number = 1; number <= m_book.sheet(sheet).storedColumns(); ++number)
            for (const Column::Slot& slot : m_book.sheet(sheet).column(number)->slots())
                for (int i = 0; slot.block->formulas() && i < slot.block->count(); ++i)
                    if (slot.block->formulas()[i] != 0)
                        settle({sheet, number, slot.firstRow + i});
}

std::vector<CarriedSeverity> Cone::carried(const CallSeverity& severity)
{
    std::vector<int> worst(m_nodes.size(), 0);
    std::vector<CarriedSeverity> found;
    for (std::size_t at = 0; at < m_nodes.size(); ++at) {
        const Node& node = m_nodes[at];
        for (const FigurePart& part : node.parts->parts) {
            if (part.kind == FigurePart::Kind::call)
                worst[at] = std::max(worst[at], severity(node.caller, part.call));
            if (part.kind == FigurePart::Kind::cells)
                m_cells.eachIn(part.cells, [&](CellAddress, int read) {
                    worst[at] = std::max(worst[at], worst[static_cast<std::size_t>(read)]);
                });
        }
        if (worst[at] > 0)
            found.push_back({node.cell, worst[at]});
    }
    return found;
}

} // namespace

LinearForm linearForm(const Book& book, const CallPlace& cell, const CallAnswers& answers)
{
    Cone cone(book, answers);
    cone.settle(cell);
    return cone.form(cell);
}

std::vector<CarriedSeverity> carriedSeverities(const Book& book, const CallAnswers& answers,
                                               const CallSeverity& severity)
{
    Cone cone(book, answers);
    cone.settleAll();
    return cone.carried(severity);
}

} // namespace spreadsheet
