#include "spreadsheet/functions/finance/root_search.h"
#include "spreadsheet/functions/function_families.h"
#include "spreadsheet/functions/plain_arguments.h"
#include "spreadsheet/values/CompensatedSum.h"

#include <algorithm>

namespace spreadsheet {

namespace {

/// What cash flows one period apart are worth one period before the first of them.
double worthBefore(std::span<const double> flows, double rate)
{
    CompensatedSum sum;
    double discount = 1;
    for (const double flow : flows) {
        discount /= 1 + rate;
        sum.add(flow * discount);
    }
    return sum.total();
}

bool goBothWays(std::span<const double> flows)
{
    return std::ranges::any_of(flows, [](double flow) { return flow > 0; }) &&
           std::ranges::any_of(flows, [](double flow) { return flow < 0; });
}

Operand netPresentValue(Call& call)
{
    const double rate = call.number(0);
    std::vector<double> flows;
    for (std::size_t argument = 1; argument < call.count(); ++argument) {
        const std::vector<double> part = call.numbersByRows(argument);
        flows.insert(flows.end(), part.begin(), part.end());
    }
    if (call.failed())
        return call.error();
    return rate == -1 ? Operand(CellError::div0) : checked(worthBefore(flows, rate));
}

/// The numbers of the first argument alone.
std::vector<double> flowsArgument(Call& call)
{
    std::vector<double> flows = call.numbersByRows(0);
    call.pay(4 * static_cast<double>(flows.size())); // each is discounted more than once
    return flows;
}

Operand internalRate(Call& call)
{
    const std::vector<double> flows = flowsArgument(call);
    const double guess = call.given(1) ? call.number(1) : 0.1;
    if (call.failed())
        return call.error();
    if (!goBothWays(flows))
        return CellError::num;
    // Worth at the first flow, which keeps its sign changes for rates near -1.
    const auto worth = [&](double rate) { return worthBefore(flows, rate) * (1 + rate); };
    return rateResult(call, findRate(call, static_cast<double>(flows.size()), worth, guess));
}

Operand modifiedInternalRate(Call& call)
{
    const std::vector<double> flows = flowsArgument(call);
    const double financing = call.number(1);
    const double reinvesting = call.number(2);
    if (call.failed())
        return call.error();
    const bool anyPaid = std::ranges::any_of(flows, [](double flow) { return flow < 0; });
    if (!anyPaid || flows.size() < 2 || financing == -1 || reinvesting == -1)
        return CellError::div0;
    std::vector<double> paid = flows;
    std::vector<double> received = flows;
    for (std::size_t i = 0; i < flows.size(); ++i)
        (flows[i] < 0 ? received : paid)[i] = 0;
    const auto periods = static_cast<double>(flows.size());
    const double gain = worthBefore(received, reinvesting) * std::pow(1 + reinvesting, periods);
    const double stake = worthBefore(paid, financing) * (1 + financing);
    return checked(std::pow(-gain / stake, 1 / (periods - 1)) - 1);
}

/// Cash flows with their dates.
struct DatedFlows {
    std::vector<double> amounts;
    std::vector<int> days;

    DatedFlows(Call& call, std::size_t amountArgument, std::size_t dayArgumentNumber)
        : amounts(plainNumbers(call, amountArgument))
        , days(plainDays(call, dayArgumentNumber))
    {
        const bool fits = amounts.size() == days.size() && !days.empty();
        if (!call.failed() && (!fits || std::ranges::min(days) < days.front()))
            call.fail(CellError::num);
    }

    double worth(double rate) const
    {
        CompensatedSum sum;
        for (std::size_t i = 0; i < days.size(); ++i)
            sum.add(amounts[i] * std::pow(1 + rate, (days.front() - days[i]) / 365.0));
        return sum.total();
    }
};

Operand datedPresentValue(Call& call)
{
    const double rate = plainNumber(call, 0);
    const DatedFlows flows(call, 1, 2);
    return inRangeOrNum(call, rate > 0, [&] { return checked(flows.worth(rate)); });
}

Operand datedInternalRate(Call& call)
{
    const DatedFlows flows(call, 0, 1);
    const double guess = call.given(2) ? plainNumber(call, 2) : 0.1;
    return inRangeOrNum(call, goBothWays(flows.amounts), [&] {
        const double work = 8 * static_cast<double>(flows.days.size()); // a power each
        return rateResult(call, findRate(
                                    call, work, [&](double rate) { return flows.worth(rate); }, guess));
    });
}

Operand compounded(Call& call)
{
    double worth = plainNumber(call, 0);
    for (const double rate : plainNumbers(call, 1))
        worth *= 1 + rate;
    return call.failed() ? call.error() : checked(worth);
}

constexpr auto cashFlowFamily = FunctionFamily::financial;

const FunctionDescriptor cashFlowTable[] = {
    {"NPV", 2, manyArguments, "vr", cashFlowFamily, "贴现率,数值1,[数值2,…]", "返回定期现金流的净现值",
     netPresentValue},
    {"IRR", 1, 2, "rv", cashFlowFamily, "现金流,[估计值]", "返回定期现金流的内部收益率", internalRate},
    {"MIRR", 3, 3, "rvv", cashFlowFamily, "现金流,融资利率,再投资利率", "返回定期现金流的修正内部收益率",
     modifiedInternalRate},
    {"XNPV", 3, 3, "vrr", cashFlowFamily, "贴现率,现金流,日期", "返回不定期现金流的净现值",
     datedPresentValue},
    {"XIRR", 2, 3, "rrv", cashFlowFamily, "现金流,日期,[估计值]", "返回不定期现金流的内部收益率",
     datedInternalRate},
    {"FVSCHEDULE", 2, 2, "vr", cashFlowFamily, "本金,利率序列", "返回应用一系列复利后本金的终值", compounded},
};

} // namespace

std::span<const FunctionDescriptor> cashFlowFunctions()
{
    return cashFlowTable;
}

} // namespace spreadsheet
