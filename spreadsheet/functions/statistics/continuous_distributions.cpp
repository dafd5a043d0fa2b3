// Distributions of x from 0 up, Student's t, and their quantiles.
#include "spreadsheet/functions/function_families.h"
#include "spreadsheet/functions/plain_arguments.h"
#include "spreadsheet/functions/statistics/distributions.h"

namespace spreadsheet {

// The numeric library gives densities, probabilities and quantiles; here stand the ranges in which the
// functions answer, which are narrower than the library's, and the ends of a range, where it gives up. Upper
// tails are asked for as such: one minus the lower tail would lose the digits of small probabilities.

namespace {

using BetaDistribution = boost::math::beta_distribution<double, LibraryPolicy>;
using GammaDistribution = boost::math::gamma_distribution<double, LibraryPolicy>;

enum class Tail { left, right, both };

/// The density at 0 of a distribution that goes like x^(power): `atOne` if the power is 0.
double densityAtZero(double power, double atOne)
{
    if (power == 0)
        return atOne;
    return power > 0 ? 0 : std::numeric_limits<double>::infinity();
}

/// TDIST, whose third argument says how many tails.
Operand studentTails(Call& call)
{
    const double x = call.number(0);
    const double degrees = wholeParameter(call, 1);
    const double tails = std::trunc(call.number(2));
    return inRangeOrNum(call, x >= 0 && isFreedom(degrees) && (tails == 1 || tails == 2),
                        [&] { return checked(tails * cdf(complement(StudentDistribution(degrees), x))); });
}

Operand studentDistribution(Call& call)
{
    const double x = call.number(0);
    const double degrees = wholeParameter(call, 1);
    const bool cumulative = call.logical(2);
    return inRangeOrNum(call, isFreedom(degrees), [&] {
        const StudentDistribution student(degrees);
        return checked(cumulative ? cdf(student, x) : pdf(student, x));
    });
}

/// T.DIST.RT and T.DIST.2T.
template <Tail tail>
Operand studentTail(Call& call)
{
    const double x = call.number(0);
    const double degrees = wholeParameter(call, 1);
    return inRangeOrNum(call, isFreedom(degrees) && (x >= 0 || tail == Tail::right), [&] {
        return checked((tail == Tail::both ? 2 : 1) * cdf(complement(StudentDistribution(degrees), x)));
    });
}

template <Tail tail>
Operand studentQuantile(Call& call)
{
    const double p = call.number(0);
    const double degrees = wholeParameter(call, 1);
    const bool inRange = p > 0 && (p < 1 || (p == 1 && tail == Tail::both)) && isFreedom(degrees);
    return inRangeOrNum(call, inRange, [&] {
        const StudentDistribution student(degrees);
        return checked(tail == Tail::both ? quantile(complement(student, p / 2)) : quantile(student, p));
    });
}

Operand chiSquaredDistribution(Call& call)
{
    const double x = call.number(0);
    const double degrees = wholeParameter(call, 1);
    const bool cumulative = call.logical(2);
    return inRangeOrNum(call, x >= 0 && isFreedom(degrees), [&] {
        const ChiSquaredDistribution chiSquared(degrees);
        if (!cumulative && x == 0)
            return checked(densityAtZero(degrees - 2, 0.5));
        return checked(cumulative ? cdf(chiSquared, x) : pdf(chiSquared, x));
    });
}

Operand chiSquaredTail(Call& call)
{
    const double x = call.number(0);
    const double degrees = wholeParameter(call, 1);
    return inRangeOrNum(call, x >= 0 && isFreedom(degrees),
                        [&] { return checked(cdf(complement(ChiSquaredDistribution(degrees), x))); });
}

template <Tail tail>
Operand chiSquaredQuantile(Call& call)
{
    const double p = call.number(0);
    const double degrees = wholeParameter(call, 1);
    return inRangeOrNum(call, isProbability(p) && isFreedom(degrees), [&] {
        const ChiSquaredDistribution chiSquared(degrees);
        return checked(tail == Tail::right ? quantile(complement(chiSquared, p)) : quantile(chiSquared, p));
    });
}

Operand fisherDistribution(Call& call)
{
    const double x = call.number(0);
    const double above = wholeParameter(call, 1);
    const double below = wholeParameter(call, 2);
    const bool cumulative = call.logical(3);
    return inRangeOrNum(call, x >= 0 && isFreedom(above) && isFreedom(below), [&] {
        const FisherDistribution fisher(above, below);
        if (!cumulative && x == 0)
            return checked(densityAtZero(above - 2, 1));
        return checked(cumulative ? cdf(fisher, x) : pdf(fisher, x));
    });
}

Operand fisherTail(Call& call)
{
    const double x = call.number(0);
    const double above = wholeParameter(call, 1);
    const double below = wholeParameter(call, 2);
    return inRangeOrNum(call, x >= 0 && isFreedom(above) && isFreedom(below),
                        [&] { return checked(cdf(complement(FisherDistribution(above, below), x))); });
}

template <Tail tail>
Operand fisherQuantile(Call& call)
{
    const double p = call.number(0);
    const double above = wholeParameter(call, 1);
    const double below = wholeParameter(call, 2);
    return inRangeOrNum(call, isProbability(p) && isFreedom(above) && isFreedom(below), [&] {
        const FisherDistribution fisher(above, below);
        return checked(tail == Tail::right ? quantile(complement(fisher, p)) : quantile(fisher, p));
    });
}

/// BETA.DIST; BETADIST is always cumulative and has its bounds one argument earlier.
template <bool saysWhich>
Operand betaDistribution(Call& call)
{
    const double x = call.number(0);
    const double alpha = parameter(call, 1);
    const double beta = parameter(call, 2);
    const bool cumulative = saysWhich ? call.logical(3) : true;
    const std::size_t bounds = saysWhich ? 4 : 3;
    const double from = call.number(bounds, 0);
    const double to = call.number(bounds + 1, 1);
    return inRangeOrNum(call, isShape(alpha) && isShape(beta) && from < to && x >= from && x <= to, [&] {
        const BetaDistribution distribution(alpha, beta);
        const double at = (x - from) / (to - from);
        if (cumulative)
            return checked(cdf(distribution, at));
        if (at == 0)
            return checked(densityAtZero(alpha - 1, beta) / (to - from));
        if (at == 1)
            return checked(densityAtZero(beta - 1, alpha) / (to - from));
        return checked(pdf(distribution, at) / (to - from));
    });
}

Operand betaQuantile(Call& call)
{
    const double p = call.number(0);
    const double alpha = parameter(call, 1);
    const double beta = parameter(call, 2);
    const double from = call.number(3, 0);
    const double to = call.number(4, 1);
    return inRangeOrNum(call, p > 0 && p <= 1 && isShape(alpha) && isShape(beta) && from < to, [&] {
        return checked(from + (to - from) * quantile(BetaDistribution(alpha, beta), p));
    });
}

Operand gammaDistribution(Call& call)
{
    const double x = call.number(0);
    const double alpha = parameter(call, 1);
    const double beta = call.number(2);
    const bool cumulative = call.logical(3);
    return inRangeOrNum(call, x >= 0 && isShape(alpha) && beta > 0, [&] {
        const GammaDistribution gamma(alpha, beta);
        if (!cumulative && x == 0)
            return checked(densityAtZero(alpha - 1, 1 / beta));
        return checked(cumulative ? cdf(gamma, x) : pdf(gamma, x));
    });
}

Operand gammaQuantile(Call& call)
{
    const double p = call.number(0);
    const double alpha = parameter(call, 1);
    const double beta = call.number(2);
    return inRangeOrNum(call, isProbability(p) && isShape(alpha) && beta > 0,
                        [&] { return checked(quantile(GammaDistribution(alpha, beta), p)); });
}

Operand gammaLogarithm(Call& call)
{
    const double x = call.number(0);
    return inRangeOrNum(call, x > 0, [&] { return checked(boost::math::lgamma(x, LibraryPolicy())); });
}

Operand gammaFunction(Call& call)
{
    const double x = call.number(0);
    const bool pole = x <= 0 && x == std::trunc(x);
    return inRangeOrNum(call, !pole, [&] { return checked(boost::math::tgamma(x, LibraryPolicy())); });
}

Operand exponentialDistribution(Call& call)
{
    const double x = call.number(0);
    const double rate = call.number(1);
    const bool cumulative = call.logical(2);
    return inRangeOrNum(call, x >= 0 && rate > 0, [&] {
        return checked(cumulative ? -std::expm1(-rate * x) : rate * std::exp(-rate * x));
    });
}

Operand weibullDistribution(Call& call)
{
    const double x = call.number(0);
    const double alpha = call.number(1);
    const double beta = call.number(2);
    const bool cumulative = call.logical(3);
    return inRangeOrNum(call, x >= 0 && alpha > 0 && beta > 0, [&] {
        const double power = std::pow(x / beta, alpha);
        if (cumulative)
            return checked(-std::expm1(-power));
        return checked(alpha / beta * std::pow(x / beta, alpha - 1) * std::exp(-power));
    });
}

constexpr auto continuousDistributionFamily = FunctionFamily::statistical;
constexpr std::string_view studentArguments = "x,自由度";
constexpr std::string_view betaQuantileArguments = "概率,α,β,[下限],[上限]";

const FunctionDescriptor continuousDistributionTable[] = {
    {"TDIST", 3, 3, "vvv", continuousDistributionFamily, "x,自由度,尾数", "返回学生 t 分布的单尾或双尾概率",
     studentTails},
    {"T.DIST", 3, 3, "vvv", continuousDistributionFamily, "x,自由度,累积", "返回学生 t 分布的左尾概率或密度",
     studentDistribution},
    {"T.DIST.RT", 2, 2, "vv", continuousDistributionFamily, studentArguments, "返回学生 t 分布的右尾概率",
     studentTail<Tail::right>},
    {"T.DIST.2T", 2, 2, "vv", continuousDistributionFamily, studentArguments, "返回学生 t 分布的双尾概率",
     studentTail<Tail::both>},
    {"TINV", 2, 2, "vv", continuousDistributionFamily, "概率,自由度", "返回学生 t 分布双尾概率的反函数值",
     studentQuantile<Tail::both>},
    {"T.INV.2T", 2, 2, "vv", continuousDistributionFamily, "概率,自由度", "返回学生 t 分布双尾概率的反函数值",
     studentQuantile<Tail::both>},
    {"T.INV", 2, 2, "vv", continuousDistributionFamily, "概率,自由度", "返回学生 t 分布左尾概率的反函数值",
     studentQuantile<Tail::left>},
    {"CHIDIST", 2, 2, "vv", continuousDistributionFamily, studentArguments, "返回 χ² 分布的右尾概率",
     chiSquaredTail},
    {"CHISQ.DIST.RT", 2, 2, "vv", continuousDistributionFamily, studentArguments, "返回 χ² 分布的右尾概率",
     chiSquaredTail},
    {"CHISQ.DIST", 3, 3, "vvv", continuousDistributionFamily, "x,自由度,累积", "返回 χ² 分布的左尾概率或密度",
     chiSquaredDistribution},
    {"CHIINV", 2, 2, "vv", continuousDistributionFamily, "概率,自由度", "返回 χ² 分布右尾概率的反函数值",
     chiSquaredQuantile<Tail::right>},
    {"CHISQ.INV.RT", 2, 2, "vv", continuousDistributionFamily, "概率,自由度",
     "返回 χ² 分布右尾概率的反函数值", chiSquaredQuantile<Tail::right>},
    {"CHISQ.INV", 2, 2, "vv", continuousDistributionFamily, "概率,自由度", "返回 χ² 分布左尾概率的反函数值",
     chiSquaredQuantile<Tail::left>},
    {"FDIST", 3, 3, "vvv", continuousDistributionFamily, "x,分子自由度,分母自由度", "返回 F 分布的右尾概率",
     fisherTail},
    {"F.DIST.RT", 3, 3, "vvv", continuousDistributionFamily, "x,分子自由度,分母自由度",
     "返回 F 分布的右尾概率", fisherTail},
    {"F.DIST", 4, 4, "vvvv", continuousDistributionFamily, "x,分子自由度,分母自由度,累积",
     "返回 F 分布的左尾概率或密度", fisherDistribution},
    {"FINV", 3, 3, "vvv", continuousDistributionFamily, "概率,分子自由度,分母自由度",
     "返回 F 分布右尾概率的反函数值", fisherQuantile<Tail::right>},
    {"F.INV.RT", 3, 3, "vvv", continuousDistributionFamily, "概率,分子自由度,分母自由度",
     "返回 F 分布右尾概率的反函数值", fisherQuantile<Tail::right>},
    {"F.INV", 3, 3, "vvv", continuousDistributionFamily, "概率,分子自由度,分母自由度",
     "返回 F 分布左尾概率的反函数值", fisherQuantile<Tail::left>},
    {"BETADIST", 3, 5, "vvvvv", continuousDistributionFamily, "x,α,β,[下限],[上限]", "返回 β 分布的累积概率",
     betaDistribution<false>},
    {"BETA.DIST", 4, 6, "vvvvvv", continuousDistributionFamily, "x,α,β,累积,[下限],[上限]",
     "返回 β 分布的累积概率或密度", betaDistribution<true>},
    {"BETAINV", 3, 5, "vvvvv", continuousDistributionFamily, betaQuantileArguments,
     "返回 β 分布累积概率的反函数值", betaQuantile},
    {"BETA.INV", 3, 5, "vvvvv", continuousDistributionFamily, betaQuantileArguments,
     "返回 β 分布累积概率的反函数值", betaQuantile},
    {"GAMMADIST", 4, 4, "vvvv", continuousDistributionFamily, "x,α,β,累积", "返回 γ 分布的累积概率或密度",
     gammaDistribution},
    {"GAMMA.DIST", 4, 4, "vvvv", continuousDistributionFamily, "x,α,β,累积", "返回 γ 分布的累积概率或密度",
     gammaDistribution},
    {"GAMMAINV", 3, 3, "vvv", continuousDistributionFamily, "概率,α,β", "返回 γ 分布累积概率的反函数值",
     gammaQuantile},
    {"GAMMA.INV", 3, 3, "vvv", continuousDistributionFamily, "概率,α,β", "返回 γ 分布累积概率的反函数值",
     gammaQuantile},
    {"GAMMALN", 1, 1, "v", continuousDistributionFamily, "x", "返回 γ 函数的自然对数", gammaLogarithm},
    {"GAMMALN.PRECISE", 1, 1, "v", continuousDistributionFamily, "x", "返回 γ 函数的自然对数",
     gammaLogarithm},
    {"GAMMA", 1, 1, "v", continuousDistributionFamily, "x", "返回 γ 函数值", gammaFunction},
    {"EXPONDIST", 3, 3, "vvv", continuousDistributionFamily, "x,λ,累积", "返回指数分布的累积概率或密度",
     exponentialDistribution},
    {"EXPON.DIST", 3, 3, "vvv", continuousDistributionFamily, "x,λ,累积", "返回指数分布的累积概率或密度",
     exponentialDistribution},
    {"WEIBULL", 4, 4, "vvvv", continuousDistributionFamily, "x,α,β,累积", "返回韦伯分布的累积概率或密度",
     weibullDistribution},
    {"WEIBULL.DIST", 4, 4, "vvvv", continuousDistributionFamily, "x,α,β,累积", "返回韦伯分布的累积概率或密度",
     weibullDistribution},
};

} // namespace

std::span<const FunctionDescriptor> continuousDistributionFunctions()
{
    return continuousDistributionTable;
}

} // namespace spreadsheet
