#include "spreadsheet/functions/function_families.h"
#include "spreadsheet/functions/number_calls.h"
#include "spreadsheet/functions/plain_arguments.h"

#include <algorithm>
#include <limits>
#include <utility>

namespace spreadsheet {

// Numbers are cut off to whole ones, but only if they are not negative: -0.5 is less than 0.

namespace {

double factorial(double number)
{
    if (number < 0 || number >= 171)
        return std::numeric_limits<double>::infinity();
    double product = 1;
    for (int factor = 2; factor <= static_cast<int>(number); ++factor)
        product *= factor;
    return product;
}

Operand combinations(double all, double chosen)
{
    if (all < 0 || chosen < 0 || std::trunc(chosen) > std::trunc(all))
        return CellError::num;
    all = std::trunc(all);
    chosen = std::trunc(chosen);
    chosen = std::min(chosen, all - chosen);
    double product = 1;
    for (double i = 1; i <= chosen && std::isfinite(product); ++i)
        product = product * (all - chosen + i) / i;
    return checked(product < 0x1p53 ? std::round(product) : product);
}

double greatestCommonDivisor(double a, double b)
{
    while (b != 0)
        a = std::exchange(b, std::fmod(a, b));
    return a;
}

double leastCommonMultiple(double a, double b)
{
    return a == 0 || b == 0 ? 0 : a / greatestCommonDivisor(a, b) * b;
}

/// Whole numbers of all arguments, put together two by two.
template <auto function>
Operand ofWholeNumbers(Call& call)
{
    std::optional<double> result;
    for (std::size_t argument = 0; argument < call.count(); ++argument) {
        for (const double number : plainNumbers(call, argument)) {
            const double whole = std::trunc(number);
            if (number < 0 || whole >= 0x1p53)
                call.fail(CellError::num);
            else
                result = result ? function(*result, whole) : whole;
            if (result.value_or(0) >= 0x1p53)
                return CellError::num;
        }
    }
    return call.failed() ? call.error() : Operand(result.value_or(0));
}

/// The product of every second number down to 1 or 2.
Operand doubleFactorial(Call& call)
{
    const double number = plainNumber(call, 0);
    return inRangeOrNum(call, number >= -1, [&] {
        double product = 1;
        for (double factor = std::trunc(number); factor > 1 && std::isfinite(product); factor -= 2)
            product *= factor;
        return checked(product);
    });
}

Operand combinationsWithRepetition(double all, double chosen)
{
    if (all < 0 || chosen < 0)
        return CellError::num;
    all = std::trunc(all);
    chosen = std::trunc(chosen);
    if (all == 0 && chosen > 0)
        return CellError::num;
    return chosen == 0 ? Operand(1.0) : combinations(all + chosen - 1, chosen);
}

Operand permutations(double all, double chosen)
{
    if (all < 0 || chosen < 0 || std::trunc(chosen) > std::trunc(all))
        return CellError::num;
    all = std::trunc(all);
    chosen = std::trunc(chosen);
    double product = 1;
    for (double i = 0; i < chosen && std::isfinite(product); ++i)
        product *= all - i;
    return checked(product);
}

Operand permutationsWithRepetition(double all, double chosen)
{
    return all < 0 || chosen < 0 ? Operand(CellError::num)
                                 : checked(std::pow(std::trunc(all), std::trunc(chosen)));
}

/// The factorial of the sum over the product of the factorials: what each number adds is the count of
/// its places among all so far.
Operand multinomial(Call& call)
{
    double sum = 0;
    double product = 1;
    for (std::size_t argument = 0; argument < call.count(); ++argument) {
        for (const double number : plainNumbers(call, argument)) {
            const double whole = std::trunc(number);
            sum += whole;
            const Operand places = combinations(sum, whole);
            if (number < 0 || places.value().isError())
                return call.failed() ? call.error() : CellError::num;
            product *= places.value().number();
        }
    }
    return call.failed() ? call.error() : checked(product);
}

constexpr auto combinatorialFamily = FunctionFamily::mathematical;

const FunctionDescriptor combinatorialTable[] = {
    {"FACT", 1, 1, "v", combinatorialFamily, "数值", "返回数值的阶乘", ofNumber<factorial>},
    {"COMBIN", 2, 2, "vv", combinatorialFamily, "总数,选取数", "返回从总数中选取若干项的组合数",
     ofNumbers<combinations>},
    {"GCD", 1, manyArguments, "r", combinatorialFamily, "数值1,[数值2,…]", "返回最大公约数",
     ofWholeNumbers<greatestCommonDivisor>},
    {"LCM", 1, manyArguments, "r", combinatorialFamily, "数值1,[数值2,…]", "返回最小公倍数",
     ofWholeNumbers<leastCommonMultiple>},
    {"FACTDOUBLE", 1, 1, "v", combinatorialFamily, "数值", "返回数值的双阶乘", doubleFactorial},
    {"COMBINA", 2, 2, "vv", combinatorialFamily, "总数,选取数", "返回可重复选取的组合数",
     ofNumbers<combinationsWithRepetition>},
    {"MULTINOMIAL", 1, manyArguments, "r", combinatorialFamily, "数值1,[数值2,…]", "返回一组数的多项式系数",
     multinomial},
    {"PERMUT", 2, 2, "vv", FunctionFamily::statistical, "总数,选取数", "返回从总数中选取若干项的排列数",
     ofNumbers<permutations>},
    {"PERMUTATIONA", 2, 2, "vv", FunctionFamily::statistical, "总数,选取数", "返回可重复选取的排列数",
     ofNumbers<permutationsWithRepetition>},
};

} // namespace

std::span<const FunctionDescriptor> combinatorialFunctions()
{
    return combinatorialTable;
}

} // namespace spreadsheet
