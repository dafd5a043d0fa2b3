#include "spreadsheet/functions/finance/coupon_periods.h"

#include "spreadsheet/functions/plain_arguments.h"

namespace spreadsheet {

double BondDays::between(int start, int end) const
{
    if (m_basis == DayCountBasis::american360)
        return bondDays360(*dayOfSerial(start), *dayOfSerial(end));
    if (m_basis == DayCountBasis::european360)
        return days360(*dayOfSerial(start), *dayOfSerial(end), true);
    return end - start;
}

double BondDays::inYear(int start, int end) const
{
    if (isActual())
        return yearLength(*dayOfSerial(start), *dayOfSerial(end));
    return m_basis == DayCountBasis::actual365 ? 365 : 360;
}

double BondDays::inPeriod(int start, int end, int frequency) const
{
    if (isActual())
        return end - start;
    return (m_basis == DayCountBasis::actual365 ? 365.0 : 360.0) / frequency;
}

double BondDays::ofWholePeriod(int start, int end) const
{
    if (m_basis == DayCountBasis::american360)
        return bondDays360(*dayOfSerial(start), *dayOfSerial(end), true);
    return between(start, end);
}

int couponDay(int anchor, int months)
{
    CalendarDay day = *dayOfSerial(anchor);
    if (day.day == daysOfMonth(day.year, day.month))
        day.day = 31; // cut down to each month's last day
    return addMonths(day, months);
}

std::optional<CouponPeriod> couponPeriod(int settlement, int maturity, int frequency)
{
    const int step = 12 / frequency;
    const CalendarDay from = *dayOfSerial(settlement);
    const CalendarDay to = *dayOfSerial(maturity);
    const int months = (to.year - from.year) * 12 + to.month - from.month;
    CouponPeriod period;
    period.count = months / step; // at most one too few
    do {
        ++period.count;
        period.previous = couponDay(maturity, -period.count * step);
    } while (period.previous > settlement);
    if (period.previous < 0)
        return std::nullopt;
    period.next = couponDay(maturity, (1 - period.count) * step);
    if (period.next <= settlement) {
        --period.count;
        period.previous = period.next;
        period.next = couponDay(maturity, (1 - period.count) * step);
    }
    return period;
}

int frequencyArgument(Call& call, std::size_t argument)
{
    const int frequency = plainInteger(call, argument);
    if (!call.failed() && frequency != 1 && frequency != 2 && frequency != 4)
        call.fail(CellError::num);
    return frequency;
}

DayCountBasis basisArgument(Call& call, std::size_t argument)
{
    const int basis = plainInteger(call, argument, 0);
    if (!call.failed() && (basis < 0 || basis > 4))
        call.fail(CellError::num);
    return static_cast<DayCountBasis>(call.failed() ? 0 : basis);
}

} // namespace spreadsheet
