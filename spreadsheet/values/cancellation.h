#pragma once
#include <cmath>

namespace spreadsheet {

/// Differences this small beside their operands are rounding noise of the last binary places and
/// count as zero, so that 0.5 - 0.4 - 0.1 is 0.
inline constexpr double cancellation = 0x1p-50;

inline double cancelled(double result, double operand)
{
    return std::fabs(result) < std::fabs(operand) * cancellation ? 0.0 : result;
}

/// Equal but for noise in the last binary places: 0.1 + 0.2 equals 0.3.
inline bool sameNumber(double a, double b)
{
    return a == b || cancelled(a - b, a) == 0.0;
}

} // namespace spreadsheet
