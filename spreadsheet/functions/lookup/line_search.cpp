#include "spreadsheet/functions/lookup/line_search.h"

#include "spreadsheet/calculation/LookupIndexes.h"
#include "spreadsheet/calculation/wildcards.h"
#include "spreadsheet/values/cancellation.h"
#include "spreadsheet/values/coercion.h"
#include "spreadsheet/values/folding.h"

namespace spreadsheet {

namespace {

/// Size of the used part of an argument along one axis.
int usedSize(const Call& call, std::size_t argument, bool down)
{
    const Operand& operand = call[argument];
    if (!operand.isArea())
        return down ? call.rows(argument) : call.columns(argument);
    const CellRange used = usedPart(call.place().book, operand.area());
    return std::max(0, down ? used.rows() : used.columns());
}

/// The first column or row of an area.
Area lineOf(const Area& area, bool down)
{
    Area line = area;
    (down ? line.cells.right : line.cells.bottom) = down ? line.cells.left : line.cells.top;
    return line;
}

} // namespace

Line Line::firstColumn(Call& call, std::size_t argument)
{
    return {call, argument, true, usedSize(call, argument, true)};
}

Line Line::firstRow(Call& call, std::size_t argument)
{
    return {call, argument, false, usedSize(call, argument, false)};
}

Line Line::longerSide(Call& call, std::size_t argument)
{
    return call.columns(argument) > call.rows(argument) ? firstRow(call, argument)
                                                        : firstColumn(call, argument);
}

Value Line::at(int place) const
{
    constexpr double slower = 4; // than to make an element
    m_call.pay(slower);
    return m_down ? m_call.element(m_argument, place, 0) : m_call.element(m_argument, 0, place);
}

std::optional<int> Line::indexed(const Value& wanted) const
{
    const Area& area = m_call[m_argument].area();
    LineIndex* const index = m_call.place().indexes->index(lineOf(area, m_down), m_down);
    if (!index)
        return std::nullopt;
    const Places* places = wanted.isNumber() ? index->number(wanted.number())
                           : wanted.isText() ? index->text(foldedText(wanted.textView()))
                                             : index->boolean(wanted.boolean());
    if (!places || places->all.front() > (m_down ? area.cells.bottom : area.cells.right))
        return m_size;
    return places->all.front() - (m_down ? area.cells.top : area.cells.left);
}

std::optional<int> Line::equal(const Value& wanted) const
{
    std::optional<WildcardPattern> pattern;
    if (wanted.isText())
        pattern.emplace(wanted.textView());
    const bool plain =
        !pattern || (!pattern->hasWildcards() && wanted.textView().find('~') == std::string_view::npos);
    if (plain && !wanted.isEmpty() && m_call.place().indexes && m_call[m_argument].isArea()) {
        if (const auto place = indexed(wanted))
            return *place < m_size ? place : std::nullopt;
    }
    for (int place = 0; place < m_size; ++place) {
        const Value value = at(place);
        if (value.kind() != wanted.kind())
            continue;
        if (pattern ? pattern->matches(value.textView()) : value == wanted)
            return place;
    }
    return std::nullopt;
}

std::optional<int> Line::lastNotGreater(const Value& wanted) const
{
    std::optional<int> found;
    int low = 0;
    int high = m_size - 1;
    while (low <= high) {
        const int middle = low + (high - low) / 2;
        int comparable = middle;
        Value value = at(comparable);
        while (comparable < high && value.kind() != wanted.kind())
            value = at(++comparable);
        const int order = value.kind() == wanted.kind() ? compareValues(value, wanted) : 1;
        if (order == 0)
            return lastEqual(comparable, wanted);
        if (order < 0) {
            found = comparable;
            low = comparable + 1;
        } else {
            high = middle - 1;
        }
    }
    return found;
}

/// Values of other kinds between equal ones are passed over.
int Line::lastEqual(int from, const Value& wanted) const
{
    if (wanted.isNumber() && m_down && m_call[m_argument].isArea())
        return lastEqualNumber(from, wanted.number());
    int last = from;
    for (int place = from + 1; place < m_size && !m_call.failed(); ++place) {
        const Value value = at(place);
        if (value.kind() != wanted.kind())
            continue;
        if (compareValues(value, wanted) != 0)
            break;
        last = place;
    }
    return last;
}

/// The same, straight through the column: there may be very many equal numbers.
int Line::lastEqualNumber(int from, double wanted) const
{
    const Area& area = m_call[m_argument].area();
    const CellRange& cells = area.cells;
    int last = from;
    const Area rest{area.sheet, {cells.left, cells.top + from + 1, cells.left, cells.top + m_size - 1}};
    forEachStretch(m_call.place().book, rest, [&](const CellStretch& stretch) {
        m_call.pay(stretch.count);
        for (int i = 0; i < stretch.count; ++i) {
            if (stretch.kinds[i] != ValueKind::number)
                continue;
            if (!sameNumber(stretch.payloads[i].number, wanted))
                return false;
            last = stretch.firstRow + i - cells.top;
        }
        return !m_call.failed();
    });
    return last;
}

std::optional<int> Line::lastNotLess(const Value& wanted) const
{
    std::optional<int> found;
    for (int place = 0; place < m_size; ++place) {
        const Value value = at(place);
        if (value.kind() != wanted.kind())
            continue;
        const int order = compareValues(value, wanted);
        if (order < 0)
            break;
        found = place;
        if (order == 0)
            break;
    }
    return found;
}

} // namespace spreadsheet
