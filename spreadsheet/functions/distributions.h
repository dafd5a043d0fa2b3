#pragma once
#include "spreadsheet/functions/Call.h"

#include <boost/math/distributions.hpp>

#include <vector>

namespace spreadsheet {

/// Nothing is thrown: what has no value is NaN or infinite, which `checked` turns into #NUM!.
using QuietPolicy = boost::math::policies::policy<
    boost::math::policies::domain_error<boost::math::policies::ignore_error>,
    boost::math::policies::pole_error<boost::math::policies::ignore_error>,
    boost::math::policies::overflow_error<boost::math::policies::ignore_error>,
    boost::math::policies::underflow_error<boost::math::policies::ignore_error>,
    boost::math::policies::denorm_error<boost::math::policies::ignore_error>,
    boost::math::policies::rounding_error<boost::math::policies::ignore_error>,
    boost::math::policies::evaluation_error<boost::math::policies::ignore_error>,
    boost::math::policies::indeterminate_result_error<boost::math::policies::ignore_error>>;

using NormalDistribution = boost::math::normal_distribution<double, QuietPolicy>;
using StudentDistribution = boost::math::students_t_distribution<double, QuietPolicy>;
using ChiSquaredDistribution = boost::math::chi_squared_distribution<double, QuietPolicy>;
using FisherDistribution = boost::math::fisher_f_distribution<double, QuietPolicy>;

/// Up to so many degrees of freedom.
inline constexpr double mostFreedom = 1e10;

/// Degrees of freedom, cut off to a whole number; not checked.
inline double freedom(Call& call, std::size_t argument)
{
    return std::trunc(call.number(argument));
}

inline bool isFreedom(double degrees)
{
    return degrees >= 1 && degrees <= mostFreedom;
}

inline bool isProbability(double p)
{
    return p >= 0 && p <= 1;
}

} // namespace spreadsheet
