#include "spreadsheet/functions/finance/coupon_periods.h"
#include "spreadsheet/functions/function_families.h"
#include "spreadsheet/functions/plain_arguments.h"

#include <algorithm>
#include <limits>

namespace spreadsheet {

// Prices, yields and discounts of a kind of security are one relation read in different directions. Arguments
// are checked in one place for each kind, and what differs is a formula of two figures and a part of a year,
// which the basis of the calendar decides.

namespace {

/// Securities that pay once, at maturity: settlement, maturity, two figures greater than 0, basis.
/// `compute(first, second, part of a year)`.
template <auto compute>
Operand ofDiscounted(Call& call)
{
    const int settlement = plainDay(call, 0);
    const int maturity = plainDay(call, 1);
    const double first = plainNumber(call, 2);
    const double second = plainNumber(call, 3);
    const DayCountBasis basis = basisArgument(call, 4);
    return inRangeOrNum(call, settlement < maturity && first > 0 && second > 0, [&] {
        return checked(compute(first, second, yearFraction(settlement, maturity, basis)));
    });
}

double discountRate(double price, double redemption, double years)
{
    return (redemption - price) / redemption / years;
}

double interestRate(double invested, double redemption, double years)
{
    return (redemption - invested) / invested / years;
}

/// Nothing is received where the discount eats up the whole; infinite then.
double amountReceived(double invested, double discount, double years)
{
    const double kept = 1 - discount * years;
    return kept > 0 ? invested / kept : std::numeric_limits<double>::infinity();
}

double discountedPrice(double discount, double redemption, double years)
{
    return redemption - discount * redemption * years;
}

/// Securities that pay their interest at maturity; all parts of a year are parts of the year of issue.
template <bool ofPrice>
Operand paidAtMaturity(Call& call)
{
    const int settlement = plainDay(call, 0);
    const int maturity = plainDay(call, 1);
    const int issue = plainDay(call, 2);
    const double rate = plainNumber(call, 3);
    const double figure = plainNumber(call, 4);
    const BondDays days(basisArgument(call, 5));
    const bool inRange =
        rate >= 0 && (ofPrice ? figure >= 0 : figure > 0) && issue < settlement && settlement < maturity;
    return inRangeOrNum(call, inRange, [&] {
        const double year = days.inYear(issue, settlement);
        const double whole = days.between(issue, maturity) / year;
        const double accrued = days.between(issue, settlement) / year;
        const double outstanding = whole - accrued;
        if (ofPrice)
            return checked((100 + whole * rate * 100) / (1 + outstanding * figure) - accrued * rate * 100);
        const double invested = figure / 100 + accrued * rate;
        return checked((1 + whole * rate - invested) / invested / outstanding);
    });
}

/// Treasury bills run at most a year: days to maturity and one figure greater than 0.
template <auto compute>
Operand ofTreasuryBill(Call& call)
{
    const int settlement = plainDay(call, 0);
    const int maturity = plainDay(call, 1);
    const double figure = plainNumber(call, 2);
    if (call.failed())
        return call.error();
    const int yearLater = addMonths(*dayOfSerial(settlement), 12);
    if (figure <= 0 || maturity <= settlement || (yearLater >= 0 && maturity > yearLater))
        return CellError::num;
    return checked(compute(figure, maturity - settlement));
}

/// None where the discount eats up the whole.
double billPrice(double discount, int days)
{
    const double price = 100 * (1 - discount * days / 360);
    return price > 0 ? price : std::numeric_limits<double>::quiet_NaN();
}

double billYield(double price, int days)
{
    return (100 - price) / price * 360 / days;
}

/// The yield of a bond that pays interest every half year and costs the same.
double billEquivalentYield(double discount, int days)
{
    const double price = billPrice(discount, days) / 100;
    if (days <= 182)
        return 365 * discount / (360 * price);
    const double part = days / (days == 366 ? 366.0 : 365.0);
    const double root = std::sqrt(part * part - (2 * part - 1) * (1 - 1 / price));
    return 2 * (root - part) / (2 * part - 1);
}

Operand accruedAtMaturity(Call& call)
{
    const int issue = plainDay(call, 0);
    const int settlement = plainDay(call, 1);
    const double rate = plainNumber(call, 2);
    const double nominal = call.given(3) ? plainNumber(call, 3) : 1000;
    const DayCountBasis basis = basisArgument(call, 4);
    return inRangeOrNum(call, rate > 0 && nominal > 0 && issue < settlement,
                        [&] { return checked(nominal * rate * yearFraction(issue, settlement, basis)); });
}

/// Interest periods from issue to settlement; coupon days are counted from the first interest day.
class AccrualPeriods {
public:
    AccrualPeriods(int firstInterest, int frequency, const BondDays& days)
        : m_firstInterest(firstInterest)
        , m_frequency(frequency)
        , m_days(days)
    {
    }

    double count(int issue, int settlement) const
    {
        const int step = 12 / m_frequency;
        int months = -step;
        while (couponDay(m_firstInterest, months + step) >= 0 &&
               couponDay(m_firstInterest, months + step) < settlement)
            months += step;
        int start = couponDay(m_firstInterest, months);
        int end = couponDay(m_firstInterest, months + step);
        double periods = m_days.between(std::max(issue, start), settlement) / length(start, end);
        while (start > issue) {
            end = start;
            months -= step;
            start = couponDay(m_firstInterest, months);
            periods += start <= issue ? partBefore(issue, start, end) : 1;
        }
        return periods;
    }

private:
    double length(int start, int end) const { return m_days.inPeriod(std::max(start, 0), end, m_frequency); }
    double partBefore(int issue, int start, int end) const
    {
        if (start == issue)
            return 1;
        return m_days.between(issue, end) / length(start, end);
    }

    int m_firstInterest;
    int m_frequency;
    BondDays m_days;
};

Operand accrued(Call& call)
{
    const int issue = plainDay(call, 0);
    const int firstInterest = plainDay(call, 1);
    const int settlement = plainDay(call, 2);
    const double rate = plainNumber(call, 3);
    const double nominal = call.given(4) ? plainNumber(call, 4) : 1000;
    const int frequency = frequencyArgument(call, 5);
    const BondDays days(basisArgument(call, 6));
    const bool sinceIssue = !call.given(7) || call.logical(7); // a truth value is at its place here
    return inRangeOrNum(call, rate > 0 && nominal > 0 && issue < settlement, [&] {
        const AccrualPeriods periods(firstInterest, frequency, days);
        const int from = sinceIssue || settlement <= firstInterest ? issue : firstInterest;
        return checked(nominal * rate / frequency * periods.count(from, settlement));
    });
}

constexpr auto securityFamily = FunctionFamily::financial;

const FunctionDescriptor securityTable[] = {
    {"DISC", 4, 5, "vvvvv", securityFamily, "结算日,到期日,价格,清偿价值,[基准]", "返回证券的贴现率",
     ofDiscounted<discountRate>},
    {"INTRATE", 4, 5, "vvvvv", securityFamily, "结算日,到期日,投资额,清偿价值,[基准]",
     "返回一次性付息证券的利率", ofDiscounted<interestRate>},
    {"RECEIVED", 4, 5, "vvvvv", securityFamily, "结算日,到期日,投资额,贴现率,[基准]",
     "返回一次性付息证券到期收回的金额", ofDiscounted<amountReceived>},
    {"PRICEDISC", 4, 5, "vvvvv", securityFamily, "结算日,到期日,贴现率,清偿价值,[基准]",
     "返回折价发行的证券每100元面值的价格", ofDiscounted<discountedPrice>},
    {"YIELDDISC", 4, 5, "vvvvv", securityFamily, "结算日,到期日,价格,清偿价值,[基准]",
     "返回折价发行的证券的年收益率", ofDiscounted<interestRate>},
    {"PRICEMAT", 5, 6, "vvvvvv", securityFamily, "结算日,到期日,发行日,票息率,收益率,[基准]",
     "返回到期付息的证券每100元面值的价格", paidAtMaturity<true>},
    {"YIELDMAT", 5, 6, "vvvvvv", securityFamily, "结算日,到期日,发行日,票息率,价格,[基准]",
     "返回到期付息的证券的年收益率", paidAtMaturity<false>},
    {"TBILLEQ", 3, 3, "vvv", securityFamily, "结算日,到期日,贴现率", "返回国库券的等效债券收益率",
     ofTreasuryBill<billEquivalentYield>},
    {"TBILLPRICE", 3, 3, "vvv", securityFamily, "结算日,到期日,贴现率", "返回国库券每100元面值的价格",
     ofTreasuryBill<billPrice>},
    {"TBILLYIELD", 3, 3, "vvv", securityFamily, "结算日,到期日,价格", "返回国库券的收益率",
     ofTreasuryBill<billYield>},
    {"ACCRINT", 6, 8, "vvvvvvvv", securityFamily,
     "发行日,首次付息日,结算日,票息率,面值,频率,[基准],[自发行日起]", "返回定期付息证券的应计利息", accrued},
    {"ACCRINTM", 3, 5, "vvvvv", securityFamily, "发行日,结算日,票息率,[面值],[基准]",
     "返回到期付息证券的应计利息", accruedAtMaturity},
};

} // namespace

std::span<const FunctionDescriptor> securityFunctions()
{
    return securityTable;
}

} // namespace spreadsheet
