#include "spreadsheet/functions/plain_arguments.h"

#include "spreadsheet/cells/Book.h"
#include "spreadsheet/values/date_serial.h"

#include <limits>

namespace spreadsheet {

namespace {

int serialDay(Call& call, double serial)
{
    const double day = std::floor(serial + serialShift(call));
    if (serial >= 0 && day <= lastSerial)
        return static_cast<int>(day);
    call.fail(CellError::num);
    return 0;
}

} // namespace

Value plainValue(const Call& call, std::size_t argument)
{
    if (argument >= call.count())
        return {};
    const bool several = call[argument].isAreas() || call.rows(argument) > 1 || call.columns(argument) > 1;
    if (several && call[argument].isReference())
        return CellError::value;
    const Value value = call.value(argument);
    return value.isBoolean() ? Value(CellError::value) : value;
}

double plainNumber(Call& call, std::size_t argument)
{
    if (call.failed())
        return 0;
    const Value number = call.numberOf(plainValue(call, argument));
    if (!number.isError())
        return number.number();
    call.fail(number.error());
    return 0;
}

double plainNumber(Call& call, std::size_t argument, double otherwise)
{
    return argument < call.count() ? plainNumber(call, argument) : otherwise;
}

int plainInteger(Call& call, std::size_t argument)
{
    const double whole = std::trunc(plainNumber(call, argument));
    if (std::fabs(whole) <= std::numeric_limits<int>::max())
        return static_cast<int>(whole);
    call.fail(CellError::num);
    return 0;
}

int plainInteger(Call& call, std::size_t argument, int otherwise)
{
    return argument < call.count() ? plainInteger(call, argument) : otherwise;
}

std::string plainText(Call& call, std::size_t argument)
{
    if (call.failed())
        return {};
    const Value text = toText(plainValue(call, argument));
    if (!text.isError())
        return std::string(text.textView());
    call.fail(text.error());
    return {};
}

std::vector<double> plainNumbers(Call& call, std::size_t argument)
{
    std::vector<double> numbers;
    if (call.failed())
        return numbers;
    call.eachValue(argument, [&](const Value& value) {
        constexpr double slower = 8; // than a number of an array
        call.pay(slower);
        if (value.isEmpty() || call.failed())
            return;
        const Value number = value.isBoolean() ? Value(CellError::value) : call.numberOf(value);
        if (number.isError())
            call.fail(number.error());
        else
            numbers.push_back(number.number());
    });
    return numbers;
}

double serialShift(const Call& call)
{
    return call.place().book.countsFrom1904 ? daysFrom1900To1904 : 0;
}

int dayArgument(Call& call, std::size_t argument)
{
    return serialDay(call, call.number(argument));
}

int plainDay(Call& call, std::size_t argument)
{
    return serialDay(call, plainNumber(call, argument));
}

std::vector<int> plainDays(Call& call, std::size_t argument)
{
    std::vector<int> days;
    for (const double serial : plainNumbers(call, argument))
        days.push_back(serialDay(call, serial));
    return days;
}

Operand dayResult(const Call& call, int serial)
{
    const double day = serial - serialShift(call);
    return serial < 0 || day < 0 ? Operand(CellError::num) : Operand(day);
}

} // namespace spreadsheet
