#pragma once
#include "spreadsheet/calculation/Call.h"

#include <functional>
#include <optional>

namespace spreadsheet {

/// A rate above -1 at which a smooth function is zero: by secants from a first guess, and if these run
/// away, by halving the nearest interval over which the function changes its sign. Nothing if no zero
/// is found; at most some 500 evaluations, each of which the call pays with `work`.
std::optional<double> findRate(Call& call, double work, const std::function<double(double)>& function,
                               double guess);

/// A rate that was searched as a result: #NUM! if none was found.
inline Operand rateResult(const Call& call, const std::optional<double>& rate)
{
    if (call.failed())
        return call.error();
    return rate ? checked(*rate) : Operand(CellError::num);
}

} // namespace spreadsheet
