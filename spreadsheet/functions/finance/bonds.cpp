#include "spreadsheet/functions/finance/coupon_periods.h"
#include "spreadsheet/functions/finance/root_search.h"
#include "spreadsheet/functions/function_families.h"
#include "spreadsheet/functions/plain_arguments.h"

namespace spreadsheet {

namespace {

/// A security with regular coupons as it stands at settlement.
class Bond {
public:
    /// Reads settlement and maturity, the first two arguments, and the frequency and basis at the end;
    /// the call fails if they name no coupon period.
    Bond(Call& call, std::size_t frequencyNumber)
        : m_settlement(plainDay(call, 0))
        , m_maturity(plainDay(call, 1))
        , m_frequency(frequencyArgument(call, frequencyNumber))
        , m_days(basisArgument(call, frequencyNumber + 1))
    {
        if (call.failed())
            return;
        const auto found =
            m_settlement < m_maturity ? couponPeriod(m_settlement, m_maturity, m_frequency) : std::nullopt;
        if (found)
            m_period = *found;
        else
            call.fail(CellError::num);
    }

    const CouponPeriod& period() const { return m_period; }
    int frequency() const { return m_frequency; }
    double periodDays() const { return m_days.inPeriod(m_period.previous, m_period.next, m_frequency); }
    double daysPassed() const { return m_days.between(m_period.previous, m_settlement); }
    double daysToNext() const
    {
        if (!m_days.is360())
            return m_period.next - m_settlement;
        // The last of February counts as a 30th where coupons fall on the ends of months.
        const CalendarDay maturity = *dayOfSerial(m_maturity);
        const bool isMonthEnd = maturity.day == daysOfMonth(maturity.year, maturity.month);
        return (isMonthEnd ? m_days.ofWholePeriod(m_period.previous, m_period.next)
                           : m_days.between(m_period.previous, m_period.next)) -
               daysPassed();
    }
    /// Parts of the period before and after settlement. They add up to 1 but where the days pass by the
    /// calendar and the period is a part of 360 or 365 days.
    double passed() const { return daysPassed() / periodDays(); }
    double toNext() const { return daysToNext() / periodDays(); }

    /// Per 100 of nominal value, without accrued interest.
    double price(double rate, double yield, double redemption) const
    {
        const double coupon = 100 * rate / m_frequency;
        const double growth = yield / m_frequency;
        const double accrued = coupon * passed();
        if (m_period.count == 1)
            return (redemption + coupon) / (1 + toNext() * growth) - accrued;
        double sum = 0;
        double discount = std::pow(1 + growth, -toNext());
        for (int i = 1; i < m_period.count; ++i) {
            sum += coupon * discount;
            discount /= 1 + growth;
        }
        return sum + (coupon + redemption) * discount - accrued;
    }

    std::optional<double> yield(Call& call, double rate, double price, double redemption) const
    {
        if (m_period.count == 1) {
            const double coupon = rate / m_frequency;
            const double paid = price / 100 + passed() * coupon;
            return (redemption / 100 + coupon - paid) / paid * m_frequency / toNext();
        }
        const auto difference = [&](double tried) { return this->price(rate, tried, redemption) - price; };
        return findRate(call, m_period.count, difference, 0.05);
    }

    /// The mean time of the payments in years, weighted by their present values (after Macaulay).
    double duration(double rate, double yield) const
    {
        const double coupon = 100 * rate / m_frequency;
        const double growth = 1 + yield / m_frequency;
        double worth = 0;
        double weighted = 0;
        for (int i = 0; i < m_period.count; ++i) {
            const double time = toNext() + i;
            const double paid = (coupon + (i + 1 == m_period.count ? 100 : 0)) * std::pow(growth, -time);
            worth += paid;
            weighted += paid * time;
        }
        return weighted / worth / m_frequency;
    }

private:
    int m_settlement;
    int m_maturity;
    int m_frequency;
    BondDays m_days;
    CouponPeriod m_period;
};

template <auto property>
Operand ofCoupon(Call& call)
{
    const Bond bond(call, 2);
    return call.failed() ? call.error() : Operand(static_cast<double>(property(bond)));
}

template <auto day>
Operand couponDate(Call& call)
{
    const Bond bond(call, 2);
    return call.failed() ? call.error() : dayResult(call, day(bond.period()));
}

/// PRICE and YIELD: rate, the other one's figure, redemption, frequency, basis.
template <bool ofPrice>
Operand priceOrYield(Call& call)
{
    const int settlement = plainDay(call, 0); // errors in the order of the arguments
    const int maturity = plainDay(call, 1);
    const double rate = plainNumber(call, 2);
    const double figure = plainNumber(call, 3);
    const double redemption = plainNumber(call, 4);
    const Bond bond(call, 5);
    const bool inRange =
        settlement < maturity && rate >= 0 && redemption > 0 && (ofPrice ? figure >= 0 : figure > 0);
    return inRangeOrNum(call, inRange, [&] {
        return ofPrice ? checked(bond.price(rate, figure, redemption))
                       : rateResult(call, bond.yield(call, rate, figure, redemption));
    });
}

template <bool modified>
Operand duration(Call& call)
{
    plainDay(call, 0);
    plainDay(call, 1);
    const double rate = plainNumber(call, 2);
    const double yield = plainNumber(call, 3);
    const Bond bond(call, 4);
    return inRangeOrNum(call, rate >= 0 && yield >= 0, [&] {
        return checked(bond.duration(rate, yield) / (modified ? 1 + yield / bond.frequency() : 1));
    });
}

constexpr auto bondFamily = FunctionFamily::financial;

const FunctionDescriptor bondTable[] = {
    {"COUPDAYBS", 3, 4, "vvvv", bondFamily, "结算日,到期日,频率,[基准]", "返回从付息期开始到结算日的天数",
     ofCoupon<[](const Bond& bond) { return bond.daysPassed(); }>},
    {"COUPDAYS", 3, 4, "vvvv", bondFamily, "结算日,到期日,频率,[基准]", "返回结算日所在付息期的天数",
     ofCoupon<[](const Bond& bond) { return bond.periodDays(); }>},
    {"COUPDAYSNC", 3, 4, "vvvv", bondFamily, "结算日,到期日,频率,[基准]", "返回从结算日到下一付息日的天数",
     ofCoupon<[](const Bond& bond) { return bond.daysToNext(); }>},
    {"COUPNCD", 3, 4, "vvvv", bondFamily, "结算日,到期日,频率,[基准]", "返回结算日之后的下一付息日",
     couponDate<[](const CouponPeriod& period) { return period.next; }>},
    {"COUPNUM", 3, 4, "vvvv", bondFamily, "结算日,到期日,频率,[基准]", "返回结算日与到期日之间的付息次数",
     ofCoupon<[](const Bond& bond) { return bond.period().count; }>},
    {"COUPPCD", 3, 4, "vvvv", bondFamily, "结算日,到期日,频率,[基准]", "返回结算日之前的上一付息日",
     couponDate<[](const CouponPeriod& period) { return period.previous; }>},
    {"PRICE", 6, 7, "vvvvvvv", bondFamily, "结算日,到期日,票息率,收益率,清偿价值,频率,[基准]",
     "返回定期付息证券每100元面值的价格", priceOrYield<true>},
    {"YIELD", 6, 7, "vvvvvvv", bondFamily, "结算日,到期日,票息率,价格,清偿价值,频率,[基准]",
     "返回定期付息证券的收益率", priceOrYield<false>},
    {"DURATION", 5, 6, "vvvvvv", bondFamily, "结算日,到期日,票息率,收益率,频率,[基准]",
     "返回定期付息证券的麦考利久期（年）", duration<false>},
    {"MDURATION", 5, 6, "vvvvvv", bondFamily, "结算日,到期日,票息率,收益率,频率,[基准]",
     "返回定期付息证券的修正久期（年）", duration<true>},
};

} // namespace

std::span<const FunctionDescriptor> bondFunctions()
{
    return bondTable;
}

} // namespace spreadsheet
