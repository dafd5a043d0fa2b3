#include "spreadsheet/calculation/PerturbedBook.h"

#include "spreadsheet/calculation/Call.h"
#include "spreadsheet/calculation/Recalculation.h"

#include <algorithm>
#include <utility>

namespace spreadsheet {

namespace {

/// Blocks are shared with the book otherwise, and computed values are written into shared ones.
std::shared_ptr<BookSheet> apart(const BookSheet& sheet)
{
    auto copy = std::make_shared<BookSheet>(sheet);
    for (Column& column : copy->columns) {
        Column fresh;
        for (const Column::Slot& slot : column.slots())
            fresh.appendBlock(slot.firstRow, slot.block->slice(0, slot.block->count()));
        column = std::move(fresh);
    }
    return copy;
}

std::string questionOf(const FunctionCall& call)
{
    std::string question(call.name());
    for (int parameter = 1; parameter <= call.parameterCount(); ++parameter) {
        question += '\0';
        question += static_cast<char>('0' + static_cast<int>(call.parameterStatus(parameter)));
        question += call.parameterText(parameter);
    }
    return question;
}

void handBack(FunctionCall& call, const Value& answer)
{
    if (answer.isNumber())
        call.setResult(answer.number());
    else if (answer.isText())
        call.setResult(answer.textView());
    else
        call.setResult(answer.isError() ? answer.error() : CellError::value);
}

} // namespace

PerturbedBook::PerturbedBook(const Book& book, const CallAnswers& answers)
    : m_book(std::make_unique<Book>(book))
    , m_answers(answers)
{
    for (std::shared_ptr<BookSheet>& sheet : m_book->sheets)
        sheet = apart(*sheet);
    CustomFunctions& customs = m_book->formulas.customs();
    for (int custom = 0; custom < customs.size(); ++custom)
        if (customs[custom].handler)
            customs.add(std::string(customs[custom].name), customs[custom].parameterCount,
                        [this](FunctionCall& call) { answer(call); });
    m_recalculation = std::make_unique<Recalculation>(*m_book);
    m_recalculation->setCallerHook([this](CallPlace cell) {
        m_cell = cell;
        m_call = 0;
    });
    m_recalculation->all();
    m_answers = {};
}

PerturbedBook::~PerturbedBook() = default;

/// An equal call of the same cell, in the order in which it made them, else of any.
const PerturbedBook::Asked* PerturbedBook::known(const std::string& question) const
{
    const Asked* elsewhere = nullptr;
    for (const Asked& asked : m_asked) {
        if (asked.question != question)
            continue;
        if (asked.made.cell == m_cell && asked.made.call >= m_call)
            return &asked;
        elsewhere = elsewhere ? elsewhere : &asked;
    }
    return elsewhere;
}

void PerturbedBook::answer(FunctionCall& call)
{
    std::string question = questionOf(call);
    if (m_answers) {
        m_asked.push_back({std::move(question), {m_cell, m_call, m_answers(m_cell, m_call)}});
        ++m_call;
        return handBack(call, m_asked.back().made.answer);
    }
    const Asked* const asked = known(question);
    if (!asked)
        return call.setResult(CellError::na);
    const bool isOwn = asked->made.cell == m_cell;
    m_call = isOwn ? asked->made.call + 1 : m_call;
    const bool isChanged =
        isOwn && m_changed && m_cell == m_changed->cell && asked->made.call == m_changed->call;
    handBack(call, isChanged ? m_changed->answer : asked->made.answer);
}

void PerturbedBook::compute(const CallPlace& cell, int call, Value answer)
{
    m_changed = Made{cell, call, std::move(answer)};
    m_recalculation->all();
    m_changed.reset();
}

Value PerturbedBook::value(const CallPlace& cell) const
{
    return cellValue(*m_book, cell.sheet, {cell.column, cell.row});
}

std::vector<PerturbedBook::Made> PerturbedBook::calls() const
{
    std::vector<Made> calls;
    for (const Asked& asked : m_asked)
        calls.push_back(asked.made);
    return calls;
}

} // namespace spreadsheet
