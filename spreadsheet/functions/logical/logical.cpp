#include "spreadsheet/calculation/Call.h"
#include "spreadsheet/calculation/operators.h"
#include "spreadsheet/functions/function_families.h"

namespace spreadsheet {

namespace {

Operand chooseByCondition(Call& call)
{
    const bool condition = call.logical(0);
    if (call.failed())
        return call.error();
    if (condition)
        return passedOn(call, 1);
    return call.count() > 2 ? passedOn(call, 2) : truth(false);
}

Operand otherwiseIfError(Call& call)
{
    const Value value = call.value(0);
    return passedOn(call, value.isError() ? 1 : 0);
}

Operand otherwiseIfNotAvailable(Call& call)
{
    const Value value = call.value(0);
    return passedOn(call, value.isError() && value.error() == CellError::na ? 1 : 0);
}

/// How many truth values the arguments hold and how many of them are true. Texts that say neither are passed
/// over wherever they stand, in ranges empty cells and the words for truth values as well.
struct Truths {
    std::size_t all = 0;
    std::size_t held = 0;
};

Truths truths(Call& call)
{
    Truths truths;
    const auto take = [&](const Value& value) {
        const Value coerced = toBoolean(value);
        if (coerced.isError())
            call.fail(coerced.error());
        ++truths.all;
        truths.held += !coerced.isError() && coerced.boolean();
    };
    for (std::size_t argument = 0; argument < call.count(); ++argument) {
        const bool inRange = call[argument].isReference() || call[argument].isArray();
        call.eachValue(argument, [&](const Value& value) {
            const bool saysNothing = inRange ? value.isEmpty() || (value.isText() && !countedNumber(value))
                                             : value.isText() && toBoolean(value).isError();
            if (!saysNothing)
                take(value);
        });
    }
    if (truths.all == 0)
        call.fail(CellError::value);
    return truths;
}

template <auto function>
Operand ofTruths(Call& call)
{
    const Truths found = truths(call);
    return call.failed() ? call.error() : truth(function(found));
}

Operand negation(Call& call)
{
    const bool value = call.logical(0);
    return call.failed() ? call.error() : truth(!value);
}

constexpr auto logicalFamily = FunctionFamily::logical;

const FunctionDescriptor logicalTable[] = {
    {"IF", 2, 3, "vvv", logicalFamily, "条件,真值,[假值]",
     "判断条件是否成立，成立返回一个值，否则返回另一个值", chooseByCondition, branches},
    {"IFS", 2, manyArguments, "vv", logicalFamily, "条件1,值1,[…]", "返回第一个成立的条件所对应的值", nullptr,
     branches, 2},
    {"SWITCH", 3, manyArguments, "vvv", logicalFamily, "表达式,值1,结果1,[…],[默认值]",
     "返回与表达式相等的第一个值所对应的结果", nullptr, branches, 2},
    {"IFERROR", 2, 2, "vv", logicalFamily, "值,错误时的值", "如果值是错误则返回另一个值，否则返回该值",
     otherwiseIfError, branches},
    {"IFNA", 2, 2, "vv", logicalFamily, "值,无结果时的值", "如果值是 #N/A 则返回另一个值，否则返回该值",
     otherwiseIfNotAvailable, branches},
    {"AND", 1, manyArguments, "r", logicalFamily, "逻辑值1,[逻辑值2,…]", "所有参数都为真时返回 TRUE",
     ofTruths<[](const Truths& t) { return t.held == t.all; }>},
    {"OR", 1, manyArguments, "r", logicalFamily, "逻辑值1,[逻辑值2,…]", "任一参数为真时返回 TRUE",
     ofTruths<[](const Truths& t) { return t.held != 0; }>},
    {"XOR", 1, manyArguments, "r", logicalFamily, "逻辑值1,[逻辑值2,…]", "为真的参数有奇数个时返回 TRUE",
     ofTruths<[](const Truths& t) { return t.held % 2 == 1; }>},
    {"NOT", 1, 1, "v", logicalFamily, "逻辑值", "对逻辑值求反", negation},
    {"TRUE", 0, 0, "", logicalFamily, "", "返回逻辑值 TRUE", [](Call&) { return truth(true); }},
    {"FALSE", 0, 0, "", logicalFamily, "", "返回逻辑值 FALSE", [](Call&) { return truth(false); }},
};

} // namespace

std::span<const FunctionDescriptor> logicalFunctions()
{
    return logicalTable;
}

} // namespace spreadsheet
