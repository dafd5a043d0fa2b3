#include "spreadsheet/calculation/Call.h"
#include "spreadsheet/functions/function_families.h"

namespace spreadsheet {

namespace {

/// A question about a single value; errors are values here.
template <auto question>
Operand about(Call& call)
{
    return truth(question(call.value(0)));
}

template <int remainder>
Operand parity(Call& call)
{
    const Value value = call.value(0);
    if (value.isBoolean())
        return CellError::value;
    const double number = std::trunc(call.number(0));
    return call.failed() ? call.error() : truth(std::fmod(std::fabs(number), 2) == remainder);
}

Operand isReference(Call& call)
{
    return truth(call[0].isReference());
}

Operand errorNumber(Call& call)
{
    const Value value = call.value(0);
    if (!value.isError())
        return CellError::na;
    return static_cast<double>(value.error()) + 1; // #NULL! is 1, #N/A 7
}

Operand typeNumber(Call& call)
{
    if (call[0].isArray() || (call[0].isArea() && (call.rows(0) > 1 || call.columns(0) > 1)))
        return 64.0;
    const Value value = call.value(0);
    switch (value.kind()) {
    case ValueKind::text:
        return 2.0;
    case ValueKind::boolean:
        return 4.0;
    case ValueKind::error:
        return 16.0;
    default:
        return 1.0;
    }
}

/// Numbers stay, truth values are 1 and 0, everything else is 0; of a range the first cell counts.
Operand asNumber(Call& call)
{
    const Value value = call[0].isReference() || call[0].isArray() ? call.element(0, 0, 0) : call.value(0);
    if (value.isError())
        return value;
    if (const auto number = countedNumber(value))
        return *number;
    return value.isBoolean() ? toNumber(value) : Operand(0.0);
}

Operand notAvailable(Call&)
{
    return CellError::na;
}

constexpr auto informationFamily = FunctionFamily::information;

const FunctionDescriptor informationTable[] = {
    {"ISBLANK", 1, 1, "v", informationFamily, "值", "值为空单元格时返回 TRUE",
     about<[](const Value& value) { return value.isEmpty(); }>},
    {"ISNUMBER", 1, 1, "v", informationFamily, "值", "值为数字时返回 TRUE",
     about<[](const Value& value) { return value.isNumber(); }>},
    {"ISTEXT", 1, 1, "v", informationFamily, "值", "值为文本时返回 TRUE",
     about<[](const Value& value) { return value.isText(); }>},
    {"ISNONTEXT", 1, 1, "v", informationFamily, "值", "值不是文本时返回 TRUE",
     about<[](const Value& value) { return !value.isText(); }>},
    {"ISLOGICAL", 1, 1, "v", informationFamily, "值", "值为逻辑值时返回 TRUE",
     about<[](const Value& value) { return value.isBoolean(); }>},
    {"ISERROR", 1, 1, "v", informationFamily, "值", "值为任意错误值时返回 TRUE",
     about<[](const Value& value) { return value.isError(); }>},
    {"ISERR", 1, 1, "v", informationFamily, "值", "值为除 #N/A 以外的错误值时返回 TRUE",
     about<[](const Value& value) { return value.isError() && value.error() != CellError::na; }>},
    {"ISNA", 1, 1, "v", informationFamily, "值", "值为错误值 #N/A 时返回 TRUE",
     about<[](const Value& value) { return value.isError() && value.error() == CellError::na; }>},
    {"ISREF", 1, 1, "r", informationFamily, "值", "值为引用时返回 TRUE", isReference, placesOnly},
    {"ISEVEN", 1, 1, "v", informationFamily, "数值", "数值为偶数时返回 TRUE", parity<0>},
    {"ISODD", 1, 1, "v", informationFamily, "数值", "数值为奇数时返回 TRUE", parity<1>},
    {"NA", 0, 0, "", informationFamily, "", "返回错误值 #N/A", notAvailable},
    {"N", 1, 1, "c", informationFamily, "值", "将值转换为数字，文本为0", asNumber},
    {"ERROR.TYPE", 1, 1, "v", informationFamily, "错误值", "返回错误类型的编号", errorNumber},
    {"TYPE", 1, 1, "r", informationFamily, "值", "返回值的数据类型编号", typeNumber},
};

} // namespace

std::span<const FunctionDescriptor> informationFunctions()
{
    return informationTable;
}

} // namespace spreadsheet
