#pragma once
#include "spreadsheet/calculation/Call.h"

#include <boost/math/policies/policy.hpp>

namespace spreadsheet {

/// How the numeric library answers: what has no value is NaN or infinite, which `checked` turns into
/// #NUM!; a search or a series that does not come to its end throws, and the call of the function becomes
/// #NUM! as well (`FunctionDescriptor::answer`). Either ends within some milliseconds.
using LibraryPolicy = boost::math::policies::policy<
    boost::math::policies::domain_error<boost::math::policies::ignore_error>,
    boost::math::policies::pole_error<boost::math::policies::ignore_error>,
    boost::math::policies::overflow_error<boost::math::policies::ignore_error>,
    boost::math::policies::underflow_error<boost::math::policies::ignore_error>,
    boost::math::policies::denorm_error<boost::math::policies::ignore_error>,
    boost::math::policies::indeterminate_result_error<boost::math::policies::ignore_error>,
    boost::math::policies::rounding_error<boost::math::policies::throw_on_error>,
    boost::math::policies::evaluation_error<boost::math::policies::throw_on_error>,
    boost::math::policies::max_series_iterations<1'000'000>, boost::math::policies::max_root_iterations<200>>;

/// Parameters that count or shape something go up to here. Beyond it the library's continued fractions,
/// which it does not bound, take seconds and longer.
inline constexpr double largestParameter = 1e10;

/// Above 0 and not beyond what the library can work with.
inline bool isShape(double parameter)
{
    return parameter > 0 && parameter <= largestParameter;
}

/// Counts the work behind a large parameter, whose series have some times its root as many terms, against
/// what its cell may spend, so that thousands of such calls in one array end in time.
inline void payForParameter(Call& call, double parameter)
{
    constexpr double cheap = 1e4;
    constexpr double perTerm = 16;
    if (parameter > cheap && parameter <= largestParameter)
        call.pay(perTerm * std::sqrt(parameter));
}

} // namespace spreadsheet
