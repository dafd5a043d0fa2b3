#include "spreadsheet/functions/FunctionTable.h"

#include "spreadsheet/functions/function_families.h"
#include "text/ascii.h"

#include <algorithm>
#include <vector>

namespace spreadsheet {

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
    const std::string upper = ascii::upper(name);
    const auto& all = sortedFunctions();
    const auto found = std::ranges::lower_bound(all, std::string_view(upper), {}, &FunctionDescriptor::name);
    return found != all.end() && (*found)->name == upper ? *found : nullptr;
}

std::span<const FunctionDescriptor* const> allFunctions()
{
    return sortedFunctions();
}

} // namespace spreadsheet
