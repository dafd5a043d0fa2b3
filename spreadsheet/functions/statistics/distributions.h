#pragma once
#include "spreadsheet/calculation/Call.h"
#include "spreadsheet/functions/numeric_library.h"

#include <boost/math/distributions.hpp>

#include <vector>

namespace spreadsheet {

using NormalDistribution = boost::math::normal_distribution<double, LibraryPolicy>;
using StudentDistribution = boost::math::students_t_distribution<double, LibraryPolicy>;
using ChiSquaredDistribution = boost::math::chi_squared_distribution<double, LibraryPolicy>;
using FisherDistribution = boost::math::fisher_f_distribution<double, LibraryPolicy>;

/// A parameter of the library's distributions; not checked.
inline double parameter(Call& call, std::size_t argument)
{
    const double number = call.number(argument);
    payForParameter(call, number);
    return number;
}

/// One that counts something, such as degrees of freedom, cut off to a whole number.
inline double wholeParameter(Call& call, std::size_t argument)
{
    return std::trunc(parameter(call, argument));
}

inline bool isFreedom(double degrees)
{
    return degrees >= 1 && degrees <= largestParameter;
}

inline bool isProbability(double p)
{
    return p >= 0 && p <= 1;
}

} // namespace spreadsheet
