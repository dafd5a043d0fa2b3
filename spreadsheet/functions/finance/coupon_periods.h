#pragma once
#include "spreadsheet/functions/dates/day_counts.h"

#include <optional>

namespace spreadsheet {

class Call;

/// Counts days of securities by one of the five bases. Days are serial numbers.
class BondDays {
public:
    explicit BondDays(DayCountBasis basis)
        : m_basis(basis)
    {
    }
    /// Days that interest is counted for; negative if the end lies before the start.
    double between(int start, int end) const;
    /// Days of the year beside them.
    double inYear(int start, int end) const;
    /// Days of a coupon period that begins and ends on the given days.
    double inPeriod(int start, int end, int frequency) const;
    /// Days of a whole coupon period as they pass in it, in contrast to inPeriod where the year of 360
    /// or 365 days is cut into equal periods.
    double ofWholePeriod(int start, int end) const;

    bool isActual() const { return m_basis == DayCountBasis::actual; }
    bool is360() const
    {
        return m_basis == DayCountBasis::american360 || m_basis == DayCountBasis::european360;
    }

private:
    DayCountBasis m_basis;
};

/// A coupon day and those before and after it, counted in months from it; an end of month stays one.
/// -1 outside the calendar.
int couponDay(int anchor, int months);

/// The period between coupons that a settlement lies in.
struct CouponPeriod {
    int previous = 0; ///< at or before settlement
    int next = 0;     ///< after it
    int count = 0;    ///< coupons from `next` to maturity, both counted
};

/// Coupons are paid so many times a year, the last one at maturity, which lies after settlement.
/// Nothing if the period begins outside the calendar.
std::optional<CouponPeriod> couponPeriod(int settlement, int maturity, int frequency);

// Arguments of security functions. Each makes the call fail with #NUM! outside its range.

int frequencyArgument(Call& call, std::size_t argument);       ///< 1, 2 or 4 coupons a year
DayCountBasis basisArgument(Call& call, std::size_t argument); ///< 0 to 4, 0 if left out

} // namespace spreadsheet
