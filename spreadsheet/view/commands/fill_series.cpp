#include "spreadsheet/view/commands/fill_series.h"

#include "spreadsheet/display/cell_types.h"
#include "spreadsheet/values/date_serial.h"
#include "spreadsheet/values/decimal.h"
#include "spreadsheet/view/commands/text_series.h"

#include <algorithm>
#include <cmath>
#include <optional>

namespace spreadsheet {

namespace {

bool isDate(const SeriesCell& cell)
{
    return cellTypeRow(cell.type).holds == CellHolds::days && dayOfSerial(cell.value.number()).has_value();
}

int monthOf(const CalendarDay& day)
{
    return day.year * 12 + day.month - 1;
}

/// The day `day` of the month `months` after year 0, or the month's last day if it is shorter.
std::optional<int> serialInMonth(int months, int day)
{
    const int year = months / 12;
    const int month = months % 12 + 1;
    return serialOfDay(year, month, std::min(day, daysOfMonth(year, month)));
}

/// Dates on the same day of their months, months apart by the same number.
std::optional<Series> monthSeries(const std::vector<SeriesCell>& cells)
{
    if (cells.size() < 2)
        return std::nullopt;
    std::vector<CalendarDay> days;
    int day = 0;
    for (const SeriesCell& cell : cells) {
        days.push_back(*dayOfSerial(cell.value.number()));
        day = std::max(day, days.back().day);
    }
    const int first = monthOf(days[0]);
    const int step = monthOf(days[1]) - first;
    if (step == 0)
        return std::nullopt;
    for (std::size_t i = 0; i < cells.size(); ++i) {
        const int month = first + step * static_cast<int>(i);
        if (monthOf(days[i]) != month || serialInMonth(month, day) != std::floor(cells[i].value.number()))
            return std::nullopt;
    }
    const bool lastDays =
        std::ranges::all_of(days, [](const CalendarDay& d) { return d.day == daysOfMonth(d.year, d.month); });
    const int wanted = lastDays ? 31 : day;
    return [=](int index) {
        const auto serial = serialInMonth(first + step * index, wanted);
        return serial ? Value(*serial) : Value(CellError::num);
    };
}

/// The straight line with the least squares of differences; through all of them if there is one.
Series lineSeries(const std::vector<SeriesCell>& cells)
{
    const auto count = static_cast<double>(cells.size());
    const double middle = (count - 1) / 2;
    const double first = cells[0].value.number();
    double sum = 0, slope = 0, squares = 0;
    for (std::size_t i = 0; i < cells.size(); ++i) {
        const double distance = static_cast<double>(i) - middle;
        sum += cells[i].value.number() - first;
        slope += distance * (cells[i].value.number() - first);
        squares += distance * distance;
    }
    slope /= squares;
    const double start = first + sum / count - slope * middle;
    double largest = 0;
    for (const SeriesCell& cell : cells)
        largest = std::max(largest, std::abs(cell.value.number()));
    return [=](int index) {
        const double number = start + slope * index;
        // Without the noise of binary fractions: 0.3, 0.2, 0.1 goes on with 0.
        const double magnitude = std::max(largest, std::abs(number));
        return Value(roundDecimal(number, 15 - shownDecimal(magnitude).wholeDigits()));
    };
}

Series numberSeries(const std::vector<SeriesCell>& cells)
{
    if (std::ranges::all_of(cells, isDate)) {
        if (auto series = monthSeries(cells))
            return *series;
        if (cells.size() == 1)
            return [start = cells[0].value.number()](int index) { return Value(start + index); };
    }
    if (cells.size() == 1)
        return [value = cells[0].value](int) { return value; };
    return lineSeries(cells);
}

Series repeated(const std::vector<SeriesCell>& cells)
{
    return [cells](int index) {
        const auto size = static_cast<int>(cells.size());
        const SeriesCell& cell = cells[static_cast<std::size_t>((index % size + size) % size)];
        return cell.isFormula ? Value() : cell.value;
    };
}

} // namespace

Series continuedSeries(const std::vector<SeriesCell>& cells)
{
    const auto all = [&](auto&& holds) {
        return std::ranges::all_of(cells,
                                   [&](const SeriesCell& c) { return !c.isFormula && holds(c.value); });
    };
    if (all([](const Value& value) { return value.isNumber(); }))
        return numberSeries(cells);
    if (!all([](const Value& value) { return value.isText(); }))
        return repeated(cells);
    std::vector<std::string> texts;
    for (const SeriesCell& cell : cells)
        texts.emplace_back(cell.value.textView());
    const auto series = continuedTexts(texts);
    if (!series)
        return repeated(cells);
    return [next = *series](int index) { return Value::text(next(index)); };
}

} // namespace spreadsheet
