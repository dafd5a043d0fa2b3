#include "spreadsheet/functions/dates/day_counts.h"
#include "spreadsheet/functions/function_families.h"
#include "spreadsheet/functions/plain_arguments.h"
#include "spreadsheet/values/decimal.h"

#include <algorithm>
#include <limits>

namespace spreadsheet {

// Each method is a law of its own and not to be guessed from the others: what is rounded, and when the rest
// is written off, is a rule of accounting. So every one is a function or a struct of its own, and only ranges
// are checked in common.

namespace {

Operand straightLine(Call& call)
{
    const double cost = call.number(0);
    const double salvage = call.number(1);
    const double life = call.number(2);
    if (call.failed())
        return call.error();
    return life == 0 ? Operand(CellError::div0) : checked((cost - salvage) / life);
}

Operand sumOfYears(Call& call)
{
    const double cost = call.number(0);
    const double salvage = call.number(1);
    const double life = call.number(2);
    const double period = call.number(3);
    return inRangeOrNum(call, salvage >= 0 && period > 0 && period <= life, [&] {
        return checked((cost - salvage) * (life - period + 1) * 2 / (life * (life + 1)));
    });
}

/// The value falls by a rate, rounded to three places, that leads to the salvage value; the first year
/// has only some months, and a year after the last has the rest.
double fixedDeclining(double cost, double salvage, double life, double period, double months)
{
    if (cost == 0)
        return 0;
    const double rate = roundDecimal(1 - std::pow(salvage / cost, 1 / life), 3);
    const double first = cost * rate * months / 12;
    if (period == 1)
        return first;
    // After the first year the book value falls by the same factor every year.
    const double value = (cost - first) * std::pow(1 - rate, period - 2);
    return period > life ? value * rate * (12 - months) / 12 : value * rate;
}

Operand fixedDecliningArgument(Call& call)
{
    const double cost = call.number(0);
    const double salvage = call.number(1);
    const double life = call.number(2);
    const double period = std::trunc(call.number(3));
    const double months = std::trunc(call.number(4, 12));
    const bool inRange = cost >= 0 && salvage >= 0 && life > 0 && period >= 1 && months >= 1 &&
                         months <= 12 && period <= life + (months < 12 ? 1 : 0);
    return inRangeOrNum(call, inRange,
                        [&] { return checked(fixedDeclining(cost, salvage, life, period, months)); });
}

/// An asset whose value falls by `factor / life` a period, never below its salvage value.
struct DecliningAsset {
    double cost;
    double salvage;
    double life;
    double factor = 2;

    double rate() const { return std::min(factor / life, 1.0); }
    double valueAfter(double periods) const
    {
        return periods == 0 ? cost : cost * std::pow(1 - rate(), periods);
    }
    double depreciation(double period) const
    {
        const double before = period == 1 ? cost : valueAfter(period - 1);
        return std::max(before - std::max(valueAfter(period), salvage), 0.0);
    }
};

Operand doubleDeclining(Call& call)
{
    DecliningAsset asset{call.number(0), call.number(1), call.number(2)};
    const double period = call.number(3);
    asset.factor = call.number(4, 2);
    const bool inRange =
        asset.cost >= 0 && asset.salvage >= 0 && asset.factor > 0 && period > 0 && period <= asset.life;
    return inRangeOrNum(call, inRange, [&] { return checked(asset.depreciation(period)); });
}

constexpr double mostPeriods = 1e5; ///< that a schedule is computed period by period

/// What has been written off by a time, which may lie within a period; with `switches` the rest is
/// spread evenly over the rest of the life as soon as that is more.
double writtenOff(const DecliningAsset& asset, double time, bool switches)
{
    double total = 0;
    for (double period = 1; period < time + 1; ++period) {
        double part = asset.depreciation(period);
        const double rest = std::max(asset.cost - total - asset.salvage, 0.0);
        const double restOfLife = asset.life - (period - 1);
        const double even = restOfLife <= 1 ? rest : rest / restOfLife;
        if (switches && even > part) {
            const double spread = even * std::min(time - (period - 1), restOfLife);
            return total + std::min(spread, rest);
        }
        total += part * std::min(time - (period - 1), 1.0);
    }
    return total;
}

Operand variableDeclining(Call& call)
{
    DecliningAsset asset{call.number(0), call.number(1), call.number(2)};
    const double start = call.number(3);
    const double end = call.number(4);
    asset.factor = call.number(5, 2);
    const bool switches = !call.logical(6, false);
    const bool inRange = asset.cost >= 0 && asset.salvage >= 0 && asset.life > 0 && asset.factor > 0 &&
                         start >= 0 && start <= end && end <= asset.life && end <= mostPeriods;
    if (inRange)
        call.pay(16 * end);
    return inRangeOrNum(call, inRange, [&] {
        return checked(writtenOff(asset, end, switches) - writtenOff(asset, start, switches));
    });
}

/// Depreciation of the French accounting system: by year, the first one in proportion.
struct ProRataAsset {
    double cost;
    double salvage;
    int period;
    double rate;
    double firstPart; ///< of a year, up to the end of the first period
};

double linearProRata(const ProRataAsset& asset)
{
    const double yearly = asset.cost * asset.rate;
    const double first = yearly * asset.firstPart;
    if (asset.period == 0)
        return std::min(first, asset.cost - asset.salvage);
    const double rest = asset.cost - asset.salvage - first - yearly * (asset.period - 1);
    return std::clamp(rest, 0.0, yearly);
}

/// By how much faster short-lived assets are written off; nothing for lives that the system forbids.
std::optional<double> declineFactor(double life)
{
    constexpr double noise = 1e-9; // 1 / 0.2 is a life of 5
    if (life < 3 - noise || (life > 4 + noise && life < 5 - noise))
        return std::nullopt;
    return life <= 4 + noise ? 1.5 : life <= 6 + noise ? 2.0 : 2.5;
}

/// Rounded to whole amounts; the last two years share what is left.
double decliningProRata(const ProRataAsset& asset, double factor)
{
    const double rate = asset.rate * factor;
    double amount = std::round(asset.firstPart * rate * asset.cost);
    double value = asset.cost - amount;
    double rest = value - asset.salvage;
    for (int year = 0; year < asset.period; ++year) {
        amount = std::round(rate * value);
        rest -= amount;
        if (rest < 0)
            return asset.period - year <= 1 ? std::round(value * 0.5) : 0;
        value -= amount;
        if (amount == 0)
            break; // nothing changes any more
        if (year >= mostPeriods)
            return std::numeric_limits<double>::quiet_NaN();
    }
    return amount;
}

template <bool isLinear>
Operand proRata(Call& call)
{
    ProRataAsset asset{};
    asset.cost = plainNumber(call, 0);
    const int bought = plainDay(call, 1);
    const int firstEnd = plainDay(call, 2);
    asset.salvage = plainNumber(call, 3);
    asset.period = plainInteger(call, 4);
    asset.rate = plainNumber(call, 5);
    const int basis = plainInteger(call, 6, 0);
    const bool inRange = asset.cost > 0 && bought <= firstEnd && asset.salvage >= 0 &&
                         asset.salvage <= asset.cost && asset.period >= 0 && asset.rate > 0 && basis >= 0 &&
                         basis <= 4 && basis != 2;
    constexpr double written = 50; // in units of the rate: of the largest amounts nothing is left
    if (inRange)
        call.pay(std::min<double>(asset.period, written / asset.rate));
    if (call.failed() || !inRange)
        return call.failed() ? call.error() : CellError::num;
    asset.firstPart = yearFraction(bought, firstEnd, static_cast<DayCountBasis>(basis));
    if (isLinear)
        return checked(linearProRata(asset));
    const auto factor = declineFactor(1 / asset.rate);
    return factor ? checked(decliningProRata(asset, *factor)) : Operand(CellError::num);
}

constexpr auto depreciationFamily = FunctionFamily::financial;

const FunctionDescriptor depreciationTable[] = {
    {"SLN", 3, 3, "vvv", depreciationFamily, "原值,残值,寿命", "返回直线法的每期折旧额", straightLine},
    {"SYD", 4, 4, "vvvv", depreciationFamily, "原值,残值,寿命,期间", "返回年数总和法某一期的折旧额",
     sumOfYears},
    {"DB", 4, 5, "vvvvv", depreciationFamily, "原值,残值,寿命,期间,[首年月数]",
     "返回固定余额递减法某一期的折旧额", fixedDecliningArgument},
    {"DDB", 4, 5, "vvvvv", depreciationFamily, "原值,残值,寿命,期间,[倍数]",
     "返回双倍余额递减法某一期的折旧额", doubleDeclining},
    {"VDB", 5, 7, "vvvvvvv", depreciationFamily, "原值,残值,寿命,起始期,截止期,[倍数],[不转直线]",
     "返回余额递减法某段期间的折旧额，必要时转为直线法", variableDeclining},
    {"AMORDEGRC", 6, 7, "vvvvvvv", depreciationFamily, "原值,购入日期,首期期末,残值,期间,折旧率,[基准]",
     "返回法国会计制度下某一期的递减折旧额", proRata<false>},
    {"AMORLINC", 6, 7, "vvvvvvv", depreciationFamily, "原值,购入日期,首期期末,残值,期间,折旧率,[基准]",
     "返回法国会计制度下某一期的直线折旧额", proRata<true>},
};

} // namespace

std::span<const FunctionDescriptor> depreciationFunctions()
{
    return depreciationTable;
}

} // namespace spreadsheet
