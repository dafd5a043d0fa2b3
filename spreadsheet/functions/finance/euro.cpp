#include "spreadsheet/functions/function_families.h"
#include "spreadsheet/functions/plain_arguments.h"
#include "spreadsheet/values/decimal.h"
#include "text/ascii.h"

#include <algorithm>

namespace spreadsheet {

namespace {

/// A currency that the euro replaced.
struct Currency {
    std::string_view code;
    double rate; ///< units for one euro, fixed by the Council's regulations 2866/98 and its amendments
    int decimals;
};

constexpr Currency currencies[] = {
    {"EUR", 1, 2},        {"ATS", 13.7603, 2}, {"BEF", 40.3399, 0}, {"DEM", 1.95583, 2},  {"ESP", 166.386, 0},
    {"FIM", 5.94573, 2},  {"FRF", 6.55957, 2}, {"GRD", 340.75, 0},  {"IEP", 0.787564, 2}, {"ITL", 1936.27, 0},
    {"LUF", 40.3399, 0},  {"NLG", 2.20371, 2}, {"PTE", 200.482, 0}, {"SIT", 239.64, 2},   {"MTL", 0.4293, 2},
    {"CYP", 0.585274, 2}, {"SKK", 30.126, 2},  {"EEK", 15.6466, 2},
};

const Currency* currencyArgument(Call& call, std::size_t argument)
{
    const std::string code = ascii::upper(plainText(call, argument));
    const auto found = std::ranges::find(currencies, code, &Currency::code);
    if (found != std::end(currencies))
        return found;
    call.fail(CellError::value);
    return nullptr;
}

/// By way of the euro; that step may be rounded to at least three digits, the result is rounded to the
/// target's decimals unless full precision is asked for.
Operand euroConverted(Call& call)
{
    const double amount = plainNumber(call, 0);
    const Currency* source = currencyArgument(call, 1);
    const Currency* target = currencyArgument(call, 2);
    const bool full = call.given(3) && call.logical(3);
    const int digits = call.given(4) ? plainInteger(call, 4) : 0;
    if (call.failed())
        return call.error();
    if (call.given(4) && digits < 3)
        return CellError::value;
    if (source == target)
        return amount;
    double euros = amount / source->rate;
    if (digits > 0)
        euros = roundDecimal(euros, digits);
    const double result = euros * target->rate;
    return checked(full ? result : roundDecimal(result, target->decimals));
}

const FunctionDescriptor euroTable[] = {
    {"EUROCONVERT", 3, 5, "vvvvv", FunctionFamily::financial, "数值,原货币,目标货币,[全精度],[中间位数]",
     "在欧元与欧元区原货币之间换算", euroConverted},
};

} // namespace

std::span<const FunctionDescriptor> euroFunctions()
{
    return euroTable;
}

} // namespace spreadsheet
