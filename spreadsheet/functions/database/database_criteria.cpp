#include "spreadsheet/functions/database/database_criteria.h"

#include "spreadsheet/calculation/Evaluator.h"
#include "spreadsheet/cells/Book.h"
#include "spreadsheet/formula/FormulaPool.h"
#include "spreadsheet/values/coercion.h"
#include "spreadsheet/values/folding.h"

namespace spreadsheet {

namespace {

/// Whether a text leaves it to the function how it compares.
bool hasNoOperator(std::string_view text)
{
    return !text.empty() && text.front() != '=' && text.front() != '<' && text.front() != '>';
}

Criterion criterionOf(const Value& value, bool from1904)
{
    const Criterion plain(value, from1904);
    const bool isText = plain.kind() == Criterion::Kind::text || plain.kind() == Criterion::Kind::pattern;
    if (!isText || !value.isText() || !hasNoOperator(value.textView()))
        return plain;
    return Criterion(Value::text(std::string(value.textView()) + "*"), from1904);
}

} // namespace

DatabaseList::DatabaseList(Call& call, std::size_t argument)
    : m_book(call.place().book)
{
    if (!call[argument].isArea()) {
        const bool isError = call[argument].isValue() && call[argument].value().isError();
        call.fail(isError ? call[argument].value().error() : CellError::value);
        return;
    }
    m_area = call[argument].area();
    if (m_area.cells.rows() < 2)
        call.fail(CellError::value);
    m_records = std::max(usedPart(m_book, m_area).bottom - m_area.cells.top, 0);
    call.pay(4.0 * m_records);
}

Value DatabaseList::at(int record, int field) const
{
    return cellValue(m_book, m_area.sheet, {m_area.cells.left + field, m_area.cells.top + 1 + record});
}

int DatabaseList::fieldOf(const Value& nameOrNumber) const
{
    if (nameOrNumber.isText()) {
        const std::string name = foldedText(nameOrNumber.textView());
        const int used = m_book.sheet(m_area.sheet).storedColumns() - m_area.cells.left + 1;
        for (int field = 0; field < std::min(fields(), used + 1); ++field) { // behind it all are empty
            const Value candidate = toText(fieldName(field));
            if (candidate.isText() && foldedText(candidate.textView()) == name)
                return field;
        }
        return -1;
    }
    const Value number = toNumber(nameOrNumber);
    const bool inRange = number.isNumber() && number.number() >= 1 && number.number() < fields() + 1.0;
    return inRange ? static_cast<int>(number.number()) - 1 : -1;
}

DatabaseCriteria::DatabaseCriteria(Call& call, std::size_t argument, const DatabaseList& list)
    : m_place(call.place())
    , m_list(list)
{
    if (call.failed())
        return;
    if (!call[argument].isArea()) {
        call.fail(CellError::value);
        return;
    }
    const Area area = call[argument].area();
    if (area.cells.rows() < 2) { // names without anything to compare with
        call.fail(CellError::value);
        return;
    }
    m_sheet = area.sheet;
    std::vector<int> fields;
    for (int column = area.cells.left; column <= area.cells.right; ++column) {
        const Value name = toText(cellValue(m_place.book, area.sheet, {column, area.cells.top}));
        fields.push_back(name.isText() && !name.textView().empty() ? list.fieldOf(name) : -1);
        if (column > m_place.book.sheet(area.sheet).storedColumns())
            break; // nothing stands there
    }
    const int lastUsed = usedPart(m_place.book, area).bottom;
    constexpr double slower = 192; // than to make an element: a text is read as a condition
    const double rows = std::max(lastUsed - area.cells.top, 0) + 1;
    call.pay(slower * rows * static_cast<double>(fields.size()));
    if (call.failed())
        return;
    for (int row = area.cells.top + 1; row <= std::min(lastUsed, area.cells.bottom); ++row)
        m_rows.push_back(readRow(area, fields, row));
    if (area.cells.bottom > std::max(lastUsed, area.cells.top))
        m_rows.emplace_back(); // an empty row: every record meets it
    double conditions = 0;
    for (const Row& row : m_rows)
        conditions += static_cast<double>(row.size());
    call.pay(4 * conditions * list.records());
}

DatabaseCriteria::Row DatabaseCriteria::readRow(const Area& area, const std::vector<int>& fields,
                                                int row) const
{
    Row conditions;
    for (std::size_t i = 0; i < fields.size(); ++i) {
        const CellAddress cell{area.cells.left + static_cast<int>(i), row};
        const Value value = cellValue(m_place.book, area.sheet, cell);
        const bool isEmpty = value.isEmpty() || (value.isText() && value.textView().empty());
        if (!isEmpty)
            conditions.push_back({fields[i], criterionOf(value, m_place.book.countsFrom1904), cell});
    }
    return conditions;
}

bool DatabaseCriteria::holds(const Condition& condition, int record) const
{
    if (condition.field >= 0)
        return condition.criterion.matches(m_list.value(record, condition.field));
    Value value = cellValue(m_place.book, m_sheet, condition.cell);
    const Column* column = m_place.book.sheet(m_sheet).column(condition.cell.column);
    const std::uint32_t number = column ? column->formula(condition.cell.row) : 0;
    const FormulaPool& formulas = m_place.book.formulas;
    // Custom calls are made once, for the cell itself.
    if (number != 0 && !formulas[number].callsCustom() && condition.cell.row + record <= maxRows) {
        EvaluationPlace shifted = m_place;
        shifted.sheet = m_sheet;
        shifted.cell = {condition.cell.column, condition.cell.row + record};
        value = Evaluator(m_place.book).cellValueOf(formulas[number], shifted).value_or(value);
    }
    const Value truthValue = toBoolean(value);
    return truthValue.isBoolean() && truthValue.boolean();
}

std::vector<int> DatabaseCriteria::matches() const
{
    std::vector<int> records;
    for (int record = 0; record < m_list.records(); ++record) {
        const bool counts = std::ranges::any_of(m_rows, [&](const Row& row) {
            return std::ranges::all_of(row, [&](const Condition& each) { return holds(each, record); });
        });
        if (counts)
            records.push_back(record);
    }
    return records;
}

} // namespace spreadsheet
