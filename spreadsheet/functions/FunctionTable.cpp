#include "spreadsheet/functions/FunctionTable.h"

#include "spreadsheet/calculation/Call.h"

#include <algorithm>
#include <array>
#include <exception>
#include <new>
#include <vector>

namespace spreadsheet {

char FunctionDescriptor::kind(std::size_t argument) const
{
    if (argument < kinds.size())
        return kinds[argument];
    if (kinds.empty())
        return 'v'; // takes none; the compiler asks before it counts them
    const auto step = static_cast<std::size_t>(repeat);
    return kinds[kinds.size() - step + (argument - kinds.size()) % step];
}

Operand FunctionDescriptor::answer(Call& call) const
{
    try {
        return evaluate(call);
    } catch (const std::bad_alloc&) {
        return CellError::value;
    } catch (const std::exception&) {
        constexpr double searched = 2e6; // what the numeric library gives up took it milliseconds
        call.pay(searched);
        return CellError::num;
    }
}

namespace {

std::vector<const FunctionDescriptor*> collect()
{
    std::vector<const FunctionDescriptor*> all;
    static constexpr std::span<const FunctionDescriptor> (*tables[])() = {
        mathematicalFunctions,
        roundingFunctions,
        trigonometricFunctions,
        combinatorialFunctions,
        romanFunctions,
        matrixFunctions,
        statisticalFunctions,
        orderFunctions,
        spreadFunctions,
        correlationFunctions,
        regressionFunctions,
        sampleTestFunctions,
        normalDistributionFunctions,
        continuousDistributionFunctions,
        discreteDistributionFunctions,
        logicalFunctions,
        lookupFunctions,
        extendedLookupFunctions,
        arrayShapingFunctions,
        textFunctions,
        doubleByteTextFunctions,
        amountTextFunctions,
        dateFunctions,
        dateSpanFunctions,
        workdayFunctions,
        informationFunctions,
        cellInformationFunctions,
        annuityFunctions,
        cashFlowFunctions,
        depreciationFunctions,
        bondFunctions,
        oddBondFunctions,
        securityFunctions,
        numberBaseFunctions,
        complexFunctions,
        engineeringFunctions,
        databaseFunctions,
        euroFunctions,
        thaiFunctions,
    };
    for (const auto table : tables) {
        for (const FunctionDescriptor& function : table())
            all.push_back(&function);
    }
    std::ranges::sort(all, {}, &FunctionDescriptor::name);
    return all;
}

const std::vector<const FunctionDescriptor*>& sortedFunctions()
{
    static const std::vector<const FunctionDescriptor*> functions = collect();
    return functions;
}

} // namespace

const FunctionDescriptor* findFunction(std::string_view name)
{
    std::string upper(name);
    for (char& c : upper)
        c = c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c;
    const auto& all = sortedFunctions();
    const auto found = std::ranges::lower_bound(all, std::string_view(upper), {}, &FunctionDescriptor::name);
    return found != all.end() && (*found)->name == upper ? *found : nullptr;
}

std::span<const FunctionDescriptor* const> allFunctions()
{
    return sortedFunctions();
}

std::string_view familyName(FunctionFamily family)
{
    static constexpr std::array<std::string_view, 10> names{
        "财务", "日期与时间", "数学与三角", "统计", "查找与引用", "数据库", "文本", "逻辑", "信息", "工程"};
    return names[static_cast<std::size_t>(family)];
}

} // namespace spreadsheet
