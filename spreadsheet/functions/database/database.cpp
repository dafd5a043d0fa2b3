#include "spreadsheet/functions/aggregates/call_over_values.h"
#include "spreadsheet/functions/database/database_criteria.h"
#include "spreadsheet/functions/function_families.h"

namespace spreadsheet {

namespace {

/// The values of the field, the second argument, in the records that meet the criteria.
std::vector<Value> chosenValues(Call& call)
{
    const DatabaseList list(call, 0);
    const Value field = call.value(1);
    if (field.isError())
        call.fail(field.error());
    const DatabaseCriteria criteria(call, 2, list);
    const int number = call.failed() ? -1 : list.fieldOf(field);
    if (number < 0) {
        call.fail(CellError::value);
        return {};
    }
    std::vector<Value> values;
    for (const int record : criteria.matches())
        values.push_back(list.value(record, number));
    std::erase_if(values, [](const Value& value) { return value.isEmpty(); });
    return values;
}

/// A function of the table over the chosen values.
template <const char* function>
Operand overChosen(Call& call)
{
    const std::vector<Value> values = chosenValues(call);
    return call.failed() ? call.error() : calledOver(call.place(), function, values);
}

/// Without a field the records themselves are counted.
template <const char* function>
Operand countChosen(Call& call)
{
    if (call.given(1))
        return overChosen<function>(call);
    const DatabaseList list(call, 0);
    const DatabaseCriteria criteria(call, 2, list);
    return call.failed() ? call.error() : Operand(static_cast<double>(criteria.matches().size()));
}

Operand onlyChosen(Call& call)
{
    const std::vector<Value> values = chosenValues(call);
    if (call.failed())
        return call.error();
    if (values.empty())
        return CellError::value;
    return values.size() == 1 ? Operand(values.front()) : Operand(CellError::num);
}

constexpr auto databaseFamily = FunctionFamily::database;
constexpr char sumName[] = "SUM";
constexpr char averageName[] = "AVERAGE";
constexpr char countName[] = "COUNT";
constexpr char countFilledName[] = "COUNTA";
constexpr char largestName[] = "MAX";
constexpr char smallestName[] = "MIN";
constexpr char productName[] = "PRODUCT";
constexpr char sampleDeviationName[] = "STDEV";
constexpr char deviationName[] = "STDEVP";
constexpr char sampleVarianceName[] = "VAR";
constexpr char varianceName[] = "VARP";

const FunctionDescriptor databaseTable[] = {
    {"DSUM", 3, 3, "rvr", databaseFamily, "数据库,字段,条件", "返回满足条件的记录中字段的和",
     overChosen<sumName>},
    {"DAVERAGE", 3, 3, "rvr", databaseFamily, "数据库,字段,条件", "返回满足条件的记录中字段的平均值",
     overChosen<averageName>},
    {"DCOUNT", 3, 3, "rvr", databaseFamily, "数据库,字段,条件", "返回满足条件的记录中字段为数字的个数",
     countChosen<countName>},
    {"DCOUNTA", 3, 3, "rvr", databaseFamily, "数据库,字段,条件", "返回满足条件的记录中字段非空的个数",
     countChosen<countFilledName>},
    {"DGET", 3, 3, "rvr", databaseFamily, "数据库,字段,条件", "返回满足条件的唯一一条记录中的字段",
     onlyChosen},
    {"DMAX", 3, 3, "rvr", databaseFamily, "数据库,字段,条件", "返回满足条件的记录中字段的最大值",
     overChosen<largestName>},
    {"DMIN", 3, 3, "rvr", databaseFamily, "数据库,字段,条件", "返回满足条件的记录中字段的最小值",
     overChosen<smallestName>},
    {"DPRODUCT", 3, 3, "rvr", databaseFamily, "数据库,字段,条件", "返回满足条件的记录中字段的乘积",
     overChosen<productName>},
    {"DSTDEV", 3, 3, "rvr", databaseFamily, "数据库,字段,条件", "估算满足条件的记录中字段的样本标准偏差",
     overChosen<sampleDeviationName>},
    {"DSTDEVP", 3, 3, "rvr", databaseFamily, "数据库,字段,条件", "计算满足条件的记录中字段的总体标准偏差",
     overChosen<deviationName>},
    {"DVAR", 3, 3, "rvr", databaseFamily, "数据库,字段,条件", "估算满足条件的记录中字段的样本方差",
     overChosen<sampleVarianceName>},
    {"DVARP", 3, 3, "rvr", databaseFamily, "数据库,字段,条件", "计算满足条件的记录中字段的总体方差",
     overChosen<varianceName>},
};

} // namespace

std::span<const FunctionDescriptor> databaseFunctions()
{
    return databaseTable;
}

} // namespace spreadsheet
