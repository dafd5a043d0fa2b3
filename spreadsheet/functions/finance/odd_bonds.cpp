#include "spreadsheet/functions/finance/coupon_periods.h"
#include "spreadsheet/functions/finance/root_search.h"
#include "spreadsheet/functions/function_families.h"
#include "spreadsheet/functions/plain_arguments.h"

#include <algorithm>

namespace spreadsheet {

namespace {

/// An irregular stretch of time measured in coupon periods.
struct PeriodParts {
    double whole = 0;       ///< from its beginning to its end
    double accrued = 0;     ///< from its beginning to settlement
    double outstanding = 0; ///< from settlement to its end
};

/// Adds the part of one regular period that the stretch covers.
void addPeriod(PeriodParts& parts, const BondDays& days, double length, int start, int end, int settlement)
{
    const int reached = std::clamp(settlement, start, end);
    parts.whole += days.between(start, end) / length;
    parts.accrued += days.between(start, reached) / length;
    parts.outstanding += days.between(reached, end) / length;
}

/// A security whose first coupon period is irregular.
struct OddFirstBond {
    double rate;
    double redemption;
    int frequency;
    PeriodParts first;
    double toFirst = 0;   ///< coupon periods from settlement to the first coupon
    int couponsAfter = 0; ///< after the first one, the last at maturity

    double price(double yield) const
    {
        const double coupon = 100 * rate / frequency;
        const double growth = 1 + yield / frequency;
        double discount = std::pow(growth, -toFirst);
        double sum = coupon * first.whole * discount;
        for (int i = 0; i < couponsAfter; ++i) {
            discount /= growth;
            sum += coupon * discount;
        }
        return sum + redemption * discount - coupon * first.accrued;
    }
};

/// The days of an irregular first period.
struct FirstDays {
    int settlement;
    int maturity;
    int issue;
    int firstCoupon;
};

/// Coupons must fall on the same days whether counted from maturity or from the first one.
bool reachesFirstCoupon(const FirstDays& when, int frequency)
{
    if (!(when.issue < when.settlement && when.settlement < when.firstCoupon &&
          when.firstCoupon < when.maturity))
        return false;
    const auto period = couponPeriod(when.firstCoupon, when.maturity, frequency);
    return period && period->previous == when.firstCoupon;
}

void measureFirstPeriod(Call& call, OddFirstBond& bond, const FirstDays& when, const BondDays& days)
{
    const auto current = couponPeriod(when.settlement, when.firstCoupon, bond.frequency);
    const auto earliest = couponPeriod(when.issue, when.firstCoupon, bond.frequency);
    if (!current || !earliest)
        return void(call.fail(CellError::num));
    const int step = 12 / bond.frequency;
    const double regular = days.inPeriod(current->previous, current->next, bond.frequency);
    for (int index = earliest->count; index >= 1; --index) {
        const int end = couponDay(when.firstCoupon, (1 - index) * step);
        const int start = couponDay(when.firstCoupon, -index * step);
        const double length = days.isActual() ? end - start : regular;
        if (start >= when.issue) { // a period that is covered wholly counts as exactly one
            bond.first.whole += 1;
            const int reached = std::clamp(when.settlement, start, end);
            bond.first.accrued += days.between(start, reached) / length;
        } else {
            addPeriod(bond.first, days, length, when.issue, end, when.settlement);
        }
    }
    const bool isShort = earliest->count == 1;
    const double toNext = isShort || !(days.is360() || days.isActual())
                              ? days.between(when.settlement, current->next)
                              : regular - days.between(current->previous, when.settlement);
    bond.toFirst = toNext / regular + current->count - 1;
    bond.couponsAfter = couponPeriod(when.firstCoupon, when.maturity, bond.frequency)->count;
}

/// ODDFPRICE and ODDFYIELD.
template <bool ofPrice>
Operand oddFirst(Call& call)
{
    FirstDays when{};
    when.settlement = plainDay(call, 0);
    when.maturity = plainDay(call, 1);
    when.issue = plainDay(call, 2);
    when.firstCoupon = plainDay(call, 3);
    OddFirstBond bond{};
    bond.rate = plainNumber(call, 4);
    const double figure = plainNumber(call, 5);
    bond.redemption = plainNumber(call, 6);
    bond.frequency = frequencyArgument(call, 7);
    const BondDays days(basisArgument(call, 8));
    if (call.failed())
        return call.error();
    const bool inRange = bond.rate >= 0 && (ofPrice ? figure >= 0 : figure > 0) && bond.redemption > 0 &&
                         reachesFirstCoupon(when, bond.frequency);
    if (!inRange)
        return CellError::num;
    measureFirstPeriod(call, bond, when, days);
    if (call.failed())
        return call.error();
    if (ofPrice)
        return checked(bond.price(figure));
    const auto difference = [&](double yield) { return bond.price(yield) - figure; };
    return rateResult(call, findRate(call, bond.couponsAfter + 8, difference, 0.05));
}

/// The last coupon period in parts of regular ones, which begin at the last interest day.
PeriodParts lastPeriod(int settlement, int maturity, int lastInterest, int frequency, const BondDays& days)
{
    PeriodParts parts;
    const int step = 12 / frequency;
    int start = lastInterest;
    for (int index = 1; start >= 0 && start < maturity; ++index) {
        const int end = couponDay(lastInterest, index * step);
        if (end < 0)
            break;
        const double length = days.ofWholePeriod(start, end);
        addPeriod(parts, days, length, start, std::min(end, maturity), settlement);
        start = end;
    }
    return parts;
}

/// ODDLPRICE and ODDLYIELD: only the payment at maturity is left, interest on it is simple.
template <bool ofPrice>
Operand oddLast(Call& call)
{
    const int settlement = plainDay(call, 0);
    const int maturity = plainDay(call, 1);
    const int lastInterest = plainDay(call, 2);
    const double rate = plainNumber(call, 3);
    const double figure = plainNumber(call, 4);
    const double redemption = plainNumber(call, 5);
    const int frequency = frequencyArgument(call, 6);
    const BondDays days(basisArgument(call, 7));
    const bool inRange = rate >= 0 && (ofPrice ? figure >= 0 : figure > 0) && redemption > 0 &&
                         lastInterest < settlement && settlement < maturity;
    return inRangeOrNum(call, inRange, [&] {
        const PeriodParts parts = lastPeriod(settlement, maturity, lastInterest, frequency, days);
        const double coupon = 100 * rate / frequency;
        const double paid = parts.whole * coupon + redemption;
        if (ofPrice)
            return checked(paid / (1 + parts.outstanding * figure / frequency) - parts.accrued * coupon);
        const double invested = parts.accrued * coupon + figure;
        return checked((paid - invested) / invested * frequency / parts.outstanding);
    });
}

constexpr auto oddBondFamily = FunctionFamily::financial;

const FunctionDescriptor oddBondTable[] = {
    {"ODDFPRICE", 8, 9, "vvvvvvvvv", oddBondFamily,
     "结算日,到期日,发行日,首期付息日,票息率,收益率,清偿价值,频率,[基准]",
     "返回首期付息不规则的证券每100元面值的价格", oddFirst<true>},
    {"ODDFYIELD", 8, 9, "vvvvvvvvv", oddBondFamily,
     "结算日,到期日,发行日,首期付息日,票息率,价格,清偿价值,频率,[基准]", "返回首期付息不规则的证券的收益率",
     oddFirst<false>},
    {"ODDLPRICE", 7, 8, "vvvvvvvv", oddBondFamily,
     "结算日,到期日,末期付息日,票息率,收益率,清偿价值,频率,[基准]",
     "返回末期付息不规则的证券每100元面值的价格", oddLast<true>},
    {"ODDLYIELD", 7, 8, "vvvvvvvv", oddBondFamily,
     "结算日,到期日,末期付息日,票息率,价格,清偿价值,频率,[基准]", "返回末期付息不规则的证券的收益率",
     oddLast<false>},
};

} // namespace

std::span<const FunctionDescriptor> oddBondFunctions()
{
    return oddBondTable;
}

} // namespace spreadsheet
