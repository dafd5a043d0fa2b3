#include "spreadsheet/functions/finance/root_search.h"
#include "spreadsheet/functions/function_families.h"
#include "spreadsheet/functions/plain_arguments.h"

namespace spreadsheet {

// All of these functions are one equation solved for another of its letters, so they share it as a struct.
// Interest is often small and periods many, where q^n - 1 taken directly loses most of its digits; it is
// worked out through logarithms.

namespace {

/// Equal payments over a number of periods. Amounts received are positive, amounts paid negative; all
/// functions here solve pv·q^n + payment·(1 + rate·type)·(q^n − 1)/rate + fv = 0 with q = 1 + rate.
struct Annuity {
    double rate = 0; ///< of one period
    double periods = 0;
    double payment = 0;
    double present = 0;
    double future = 0;
    bool atBeginning = false; ///< payments at the beginning of each period

    double growth() const { return std::pow(1 + rate, periods); }
    /// Beyond it amounts due at the end count for nothing at the beginning.
    bool growsBeyondMeasure() const { return rate > 0 && periods > 0 && std::isinf(growth()); }
    /// What payments of 1 for ever are worth at the beginning.
    double worthOfPerpetuity() const { return (atBeginning ? 1 + rate : 1) / rate; }
    /// What payments of 1 are worth at the end.
    double worthOfPayments() const
    {
        if (rate == 0)
            return periods;
        const double grown = rate > -1 ? std::expm1(periods * std::log1p(rate)) : growth() - 1;
        return (atBeginning ? 1 + rate : 1) * grown / rate;
    }
    double presentValue() const
    {
        return growsBeyondMeasure() ? -payment * worthOfPerpetuity()
                                    : -(future + payment * worthOfPayments()) / growth();
    }
    double futureValue() const { return -(present * growth() + payment * worthOfPayments()); }
    double paymentOf() const
    {
        return growsBeyondMeasure() ? -present / worthOfPerpetuity()
                                    : -(present * growth() + future) / worthOfPayments();
    }
};

Operand presentValue(Call& call)
{
    Annuity annuity{call.number(0), call.number(1), call.number(2)};
    annuity.future = call.number(3, 0);
    annuity.atBeginning = call.number(4, 0) != 0;
    return call.failed() ? call.error() : checked(annuity.presentValue());
}

Operand futureValue(Call& call)
{
    Annuity annuity{call.number(0), call.number(1), call.number(2)};
    annuity.present = call.number(3, 0);
    annuity.atBeginning = call.number(4, 0) != 0;
    if (call.failed())
        return call.error();
    if (annuity.rate == -1 && annuity.periods < 0) // a negative power of 0
        return CellError::div0;
    return checked(annuity.futureValue());
}

/// Arguments from `first` on: periods, present value, [future value], [type].
Annuity loanArguments(Call& call, std::size_t first)
{
    Annuity loan;
    loan.rate = call.number(0);
    loan.periods = call.number(first);
    loan.present = call.number(first + 1);
    loan.future = call.number(first + 2, 0);
    loan.atBeginning = call.number(first + 3, 0) != 0;
    return loan;
}

Operand payment(Call& call)
{
    const Annuity loan = loanArguments(call, 1);
    return call.failed() ? call.error() : checked(loan.paymentOf());
}

Operand periodCount(Call& call)
{
    const double rate = call.number(0);
    double paid = call.number(1);
    const double present = call.number(2);
    const double future = call.number(3, 0);
    const bool atBeginning = call.number(4, 0) != 0;
    if (call.failed())
        return call.error();
    if (rate == 0)
        return paid == 0 ? Operand(CellError::num) : checked(-(present + future) / paid);
    if (rate <= -1)
        return CellError::num;
    paid *= atBeginning ? 1 + rate : 1;
    const double ratio = (paid - future * rate) / (paid + present * rate);
    return ratio > 0 ? checked(std::log(ratio) / std::log1p(rate)) : Operand(CellError::num);
}

Operand periodRate(Call& call)
{
    Annuity annuity;
    annuity.periods = call.number(0);
    annuity.payment = call.number(1);
    annuity.present = call.number(2);
    annuity.future = call.number(3, 0);
    annuity.atBeginning = call.number(4, 0) != 0;
    const double guess = call.given(5) ? call.number(5) : 0.1;
    if (call.failed())
        return call.error();
    if (annuity.periods <= 0 || guess <= -1)
        return CellError::num;
    const auto balance = [annuity](double rate) mutable {
        annuity.rate = rate;
        return annuity.future - annuity.futureValue();
    };
    constexpr double work = 16; // powers and logarithms
    return rateResult(call, findRate(call, work, balance, guess));
}

/// The interest in one payment: on what is still owed after the payments before it.
double interestPart(Annuity loan, double period)
{
    loan.payment = loan.paymentOf();
    if (loan.atBeginning && period == 1)
        return 0;
    Annuity before = loan;
    before.periods = period - 1;
    const double interest = before.futureValue() * loan.rate;
    return loan.atBeginning ? interest / (1 + loan.rate) : interest;
}

template <bool ofInterest>
Operand partOfPayment(Call& call)
{
    const double rate = call.number(0);
    const double period = call.number(1);
    const Annuity loan = loanArguments(call, 2);
    if (call.failed())
        return call.error();
    if (period < 1 || period > loan.periods || rate <= -1)
        return CellError::num;
    const double interest = interestPart(loan, period);
    return checked(ofInterest ? interest : loan.paymentOf() - interest);
}

/// Interest in the first so many payments: what was paid and did not shrink the debt.
double interestUntil(const Annuity& loan, double payments)
{
    if (payments == 0)
        return 0;
    Annuity begun = loan;
    begun.payment = loan.paymentOf();
    begun.periods = payments;
    const double owed = -begun.futureValue() / (loan.atBeginning ? 1 + loan.rate : 1);
    return begun.payment * payments + loan.present - owed;
}

template <bool ofInterest>
Operand cumulated(Call& call)
{
    Annuity loan;
    loan.rate = plainNumber(call, 0);
    loan.periods = plainInteger(call, 1);
    loan.present = plainNumber(call, 2);
    const int first = plainInteger(call, 3);
    const int last = plainInteger(call, 4);
    const double type = plainNumber(call, 5);
    loan.atBeginning = type == 1;
    const bool inRange = loan.rate > 0 && loan.periods > 0 && loan.present > 0 && first >= 1 &&
                         last >= first && last <= loan.periods && (type == 0 || type == 1);
    return inRangeOrNum(call, inRange, [&] {
        const double interest = interestUntil(loan, last) - interestUntil(loan, first - 1);
        return checked(ofInterest ? interest : loan.paymentOf() * (last - first + 1) - interest);
    });
}

/// Interest of a loan whose principal is paid back in equal parts.
Operand interestOfEqualParts(Call& call)
{
    const double rate = call.number(0);
    const double period = call.number(1);
    const double periods = call.number(2);
    const double present = call.number(3);
    if (call.failed())
        return call.error();
    return periods == 0 ? Operand(CellError::div0) : checked(present * rate * (period / periods - 1));
}

Operand periodsToGrow(Call& call)
{
    const double rate = call.number(0);
    const double present = call.number(1);
    const double future = call.number(2);
    return inRangeOrNum(call, rate > 0 && present > 0 && future > 0,
                        [&] { return checked((std::log(future) - std::log(present)) / std::log1p(rate)); });
}

Operand growthRate(Call& call)
{
    const double periods = call.number(0);
    const double present = call.number(1);
    const double future = call.number(2);
    return inRangeOrNum(call, periods > 0 && present != 0,
                        [&] { return checked(std::pow(future / present, 1 / periods) - 1); });
}

Operand effectiveRate(Call& call)
{
    const double nominal = plainNumber(call, 0);
    const double periods = std::trunc(plainNumber(call, 1));
    return inRangeOrNum(call, nominal > 0 && periods >= 1,
                        [&] { return checked(std::expm1(periods * std::log1p(nominal / periods))); });
}

Operand nominalRate(Call& call)
{
    const double effective = plainNumber(call, 0);
    const double periods = std::trunc(plainNumber(call, 1));
    return inRangeOrNum(call, effective > 0 && periods >= 1,
                        [&] { return checked(periods * std::expm1(std::log1p(effective) / periods)); });
}

/// Prices in fractions of a dollar: "1.02" is 1 and 2 sixteenths. `toDecimal` or back.
template <bool toDecimal>
Operand fractionalPrice(Call& call)
{
    const double price = plainNumber(call, 0);
    const double given = plainNumber(call, 1);
    const double fraction = std::trunc(given);
    if (call.failed())
        return call.error();
    if (given < 1)
        return given < 0 ? CellError::num : CellError::div0;
    double whole = 0;
    const double rest = std::modf(price, &whole);
    const double digits = std::pow(10, std::ceil(std::log10(fraction)));
    return checked(whole + (toDecimal ? rest * digits / fraction : rest * fraction / digits));
}

constexpr auto annuityFamily = FunctionFamily::financial;

const FunctionDescriptor annuityTable[] = {
    {"PV", 3, 5, "vvvvv", annuityFamily, "利率,期数,每期付款,[终值],[类型]", "返回投资的现值", presentValue},
    {"FV", 3, 5, "vvvvv", annuityFamily, "利率,期数,每期付款,[现值],[类型]",
     "返回固定利率、等额付款投资的终值", futureValue},
    {"PMT", 3, 5, "vvvvv", annuityFamily, "利率,期数,现值,[终值],[类型]", "返回固定利率贷款的每期等额付款",
     payment},
    {"NPER", 3, 5, "vvvvv", annuityFamily, "利率,每期付款,现值,[终值],[类型]", "返回投资的期数", periodCount},
    {"RATE", 3, 6, "vvvvvv", annuityFamily, "期数,每期付款,现值,[终值],[类型],[估计值]", "返回年金的每期利率",
     periodRate},
    {"IPMT", 4, 6, "vvvvvv", annuityFamily, "利率,第几期,期数,现值,[终值],[类型]",
     "返回某一期付款中的利息部分", partOfPayment<true>},
    {"PPMT", 4, 6, "vvvvvv", annuityFamily, "利率,第几期,期数,现值,[终值],[类型]",
     "返回某一期付款中的本金部分", partOfPayment<false>},
    {"CUMIPMT", 6, 6, "vvvvvv", annuityFamily, "利率,期数,现值,首期,末期,类型", "返回两期之间累计支付的利息",
     cumulated<true>},
    {"CUMPRINC", 6, 6, "vvvvvv", annuityFamily, "利率,期数,现值,首期,末期,类型", "返回两期之间累计偿还的本金",
     cumulated<false>},
    {"ISPMT", 4, 4, "vvvv", annuityFamily, "利率,第几期,期数,现值", "返回等额本金还款方式下某一期的利息",
     interestOfEqualParts},
    {"PDURATION", 3, 3, "vvv", annuityFamily, "利率,现值,终值", "返回投资达到指定价值所需的期数",
     periodsToGrow},
    {"RRI", 3, 3, "vvv", annuityFamily, "期数,现值,终值", "返回投资增长的等效利率", growthRate},
    {"EFFECT", 2, 2, "vv", annuityFamily, "名义利率,每年复利期数", "返回有效年利率", effectiveRate},
    {"NOMINAL", 2, 2, "vv", annuityFamily, "有效利率,每年复利期数", "返回名义年利率", nominalRate},
    {"DOLLARDE", 2, 2, "vv", annuityFamily, "分数价格,分母", "将以分数表示的价格转换为小数",
     fractionalPrice<true>},
    {"DOLLARFR", 2, 2, "vv", annuityFamily, "小数价格,分母", "将以小数表示的价格转换为分数",
     fractionalPrice<false>},
};

} // namespace

std::span<const FunctionDescriptor> annuityFunctions()
{
    return annuityTable;
}

} // namespace spreadsheet
