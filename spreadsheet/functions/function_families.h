#pragma once
#include "spreadsheet/formula/FunctionDescriptor.h"

namespace spreadsheet {

// The tables, one per family file. A row of one is all that a function needs.
std::span<const FunctionDescriptor> mathematicalFunctions();
std::span<const FunctionDescriptor> roundingFunctions();
std::span<const FunctionDescriptor> trigonometricFunctions();
std::span<const FunctionDescriptor> combinatorialFunctions();
std::span<const FunctionDescriptor> romanFunctions();
std::span<const FunctionDescriptor> matrixFunctions();
std::span<const FunctionDescriptor> statisticalFunctions();
std::span<const FunctionDescriptor> orderFunctions();
std::span<const FunctionDescriptor> spreadFunctions();
std::span<const FunctionDescriptor> correlationFunctions();
std::span<const FunctionDescriptor> regressionFunctions();
std::span<const FunctionDescriptor> sampleTestFunctions();
std::span<const FunctionDescriptor> normalDistributionFunctions();
std::span<const FunctionDescriptor> continuousDistributionFunctions();
std::span<const FunctionDescriptor> discreteDistributionFunctions();
std::span<const FunctionDescriptor> logicalFunctions();
std::span<const FunctionDescriptor> lookupFunctions();
std::span<const FunctionDescriptor> extendedLookupFunctions();
std::span<const FunctionDescriptor> arrayShapingFunctions();
std::span<const FunctionDescriptor> textFunctions();
std::span<const FunctionDescriptor> doubleByteTextFunctions();
std::span<const FunctionDescriptor> amountTextFunctions();
std::span<const FunctionDescriptor> dateFunctions();
std::span<const FunctionDescriptor> dateSpanFunctions();
std::span<const FunctionDescriptor> workdayFunctions();
std::span<const FunctionDescriptor> informationFunctions();
std::span<const FunctionDescriptor> cellInformationFunctions();
std::span<const FunctionDescriptor> annuityFunctions();
std::span<const FunctionDescriptor> cashFlowFunctions();
std::span<const FunctionDescriptor> depreciationFunctions();
std::span<const FunctionDescriptor> bondFunctions();
std::span<const FunctionDescriptor> oddBondFunctions();
std::span<const FunctionDescriptor> securityFunctions();
std::span<const FunctionDescriptor> numberBaseFunctions();
std::span<const FunctionDescriptor> complexFunctions();
std::span<const FunctionDescriptor> engineeringFunctions();
std::span<const FunctionDescriptor> databaseFunctions();
std::span<const FunctionDescriptor> euroFunctions();
std::span<const FunctionDescriptor> thaiFunctions();

} // namespace spreadsheet
