#include "spreadsheet/functions/rounding.h"

#include "spreadsheet/engine/number_text.h"

#include <algorithm>
#include <cmath>

namespace spreadsheet {

namespace {

double cut(double number, int places, bool away)
{
    if (!std::isfinite(number) || number == 0)
        return number;
    DecimalDigits digits = decimalDigits(number);
    const long long kept = static_cast<long long>(digits.exponent) + places;
    if (kept >= static_cast<long long>(digits.digits.size()))
        return number; // nothing to cut
    digits.digits.resize(static_cast<std::size_t>(std::max(kept, 0LL)));
    double result = numberOf(digits);
    if (away) {
        const double unit = numberOf({"1", 1 - places, digits.negative});
        result = roundDecimal(result + unit, places);
    }
    return result;
}

/// A quotient without the noise beyond its 15 digits: 0.3 / 0.1 is 3.
double cleanQuotient(double number, double step)
{
    return numberOf(decimalDigits(number / step));
}

} // namespace

double roundAway(double number, int places)
{
    return cut(number, places, true);
}

double roundToward(double number, int places)
{
    return cut(number, places, false);
}

double multipleAbove(double number, double step)
{
    return std::ceil(cleanQuotient(number, step)) * step;
}

double multipleBelow(double number, double step)
{
    return std::floor(cleanQuotient(number, step)) * step;
}

double nearestMultiple(double number, double step)
{
    return std::round(cleanQuotient(number, step)) * step;
}

} // namespace spreadsheet
