#include "spreadsheet/formula/CustomFunction.h"

#include "spreadsheet/values/coercion.h"
#include "spreadsheet/values/number_text.h"

#include <cmath>

namespace spreadsheet {

namespace {

/// The whole number of a parameter; nothing if it has none.
std::optional<std::int64_t> wholeNumber(const Value& value)
{
    std::optional<double> number;
    if (value.isNumber())
        number = value.number();
    else if (value.isBoolean())
        number = value.boolean() ? 1 : 0;
    else if (value.isText())
        number = trimmedBlanks(value.textView()).empty() ? 0.0 : parseNumber(value.textView());
    if (!number || !(std::fabs(*number) < 9e18))
        return std::nullopt;
    return static_cast<std::int64_t>(*number);
}

} // namespace

const Value* FunctionCall::parameter(int number) const
{
    if (number < 1 || number > parameterCount())
        return nullptr;
    return &m_parameters[static_cast<std::size_t>(number) - 1];
}

ParameterStatus FunctionCall::parameterStatus(int number) const
{
    const Value* value = parameter(number);
    if (!value || value->isEmpty())
        return ParameterStatus::missing;
    return value->isError() ? ParameterStatus::error : ParameterStatus::usable;
}

ParameterStatus FunctionCall::integerStatus(int number) const
{
    const ParameterStatus status = parameterStatus(number);
    if (status != ParameterStatus::usable)
        return status;
    return wholeNumber(*parameter(number)) ? ParameterStatus::usable : ParameterStatus::noNumber;
}

std::string FunctionCall::parameterText(int number) const
{
    if (parameterStatus(number) != ParameterStatus::usable)
        return {};
    return std::string(toText(*parameter(number)).textView());
}

std::int64_t FunctionCall::parameterInteger(int number) const
{
    const Value* value = parameter(number);
    return value ? wholeNumber(*value).value_or(0) : 0;
}

void FunctionCall::setResult(std::string_view text)
{
    if (const auto number = figureOfText(text))
        m_result = Value(Text::countedAs(text, *number));
    else
        m_result = Value::text(text);
}

} // namespace spreadsheet
