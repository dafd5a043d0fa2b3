#include "spreadsheet/formula/CustomFunction.h"

#include "spreadsheet/calculation/Call.h"
#include "spreadsheet/display/display_text.h"
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
    return displayText(*parameter(number), CellStyle{});
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

std::optional<double> numberOfGroupedText(std::string_view text)
{
    text = trimmedBlanks(text);
    if (text.find(',') == std::string_view::npos)
        return parseNumber(text);
    std::string plain;
    std::size_t group = 0; // digits since the last comma
    bool grouped = false;
    bool whole = true; // before the point
    for (const char c : text) {
        const bool digit = c >= '0' && c <= '9';
        if (c == ',') {
            if (!whole || group == 0 || group > 3 || (grouped && group != 3))
                return std::nullopt;
            grouped = true;
            group = 0;
            continue;
        }
        if (whole && !digit && c != '-' && c != '+') {
            if (grouped && group != 3)
                return std::nullopt;
            whole = false;
        }
        group += digit;
        plain += c;
    }
    if (whole && grouped && group != 3)
        return std::nullopt;
    return parseNumber(plain);
}

} // namespace spreadsheet
