// Distributions of whole numbers. Arguments that count something are cut off to whole numbers, but whether
// they are in range is asked before: -0.25 is less than 0.
#include "spreadsheet/functions/function_families.h"
#include "spreadsheet/functions/plain_arguments.h"
#include "spreadsheet/functions/statistics/distributions.h"

namespace spreadsheet {

// Sums over many counts are taken from the library's cumulative forms. Only where it would count too long or
// in vain, draws from very many elements, is the sum our own, over the end with fewer and smaller terms.

namespace {

using Binomial = boost::math::binomial_distribution<double, LibraryPolicy>;
using NegativeBinomial = boost::math::negative_binomial_distribution<double, LibraryPolicy>;
using Poisson = boost::math::poisson_distribution<double, LibraryPolicy>;
using Hypergeometric = boost::math::hypergeometric_distribution<double, LibraryPolicy>;

bool isCount(double count)
{
    return count >= 0 && count <= largestParameter;
}

Operand binomialDistribution(Call& call)
{
    const double successes = parameter(call, 0);
    const double trials = parameter(call, 1);
    const double p = call.number(2);
    const bool cumulative = call.logical(3);
    return inRangeOrNum(call,
                        isCount(trials) && successes >= 0 && std::trunc(successes) <= std::trunc(trials) &&
                            isProbability(p),
                        [&] {
                            const Binomial binomial(std::trunc(trials), p);
                            const double count = std::trunc(successes);
                            return checked(cumulative ? cdf(binomial, count) : pdf(binomial, count));
                        });
}

/// The probability of a count from one number to another.
Operand binomialRange(Call& call)
{
    const double trials = parameter(call, 0);
    const double p = call.number(1);
    const double least = parameter(call, 2);
    const double most = call.given(3) ? parameter(call, 3) : least;
    const bool inRange = isCount(trials) && isProbability(p) && least >= 0 &&
                         std::trunc(least) <= std::trunc(most) && std::trunc(most) <= std::trunc(trials);
    return inRangeOrNum(call, inRange, [&] {
        const Binomial binomial(std::trunc(trials), p);
        const double from = std::trunc(least);
        const double to = std::trunc(most);
        if (from == to)
            return checked(pdf(binomial, from));
        return checked(cdf(binomial, to) - (from > 0 ? cdf(binomial, from - 1) : 0));
    });
}

/// The smallest count whose cumulative probability is not below alpha.
Operand binomialQuantile(Call& call)
{
    const double trials = parameter(call, 0);
    const double p = call.number(1);
    const double alpha = call.number(2);
    return inRangeOrNum(call, isCount(trials) && isProbability(p) && alpha > 0 && alpha < 1, [&] {
        constexpr double noise = 1e-14; // so that a probability that reads the same is not below
        const Binomial binomial(std::trunc(trials), p);
        double below = -1;
        double found = std::trunc(trials);
        while (found - below > 1) {
            const double middle = std::floor((below + found) / 2);
            (cdf(binomial, middle) >= alpha * (1 - noise) ? found : below) = middle;
        }
        return found;
    });
}

/// NEGBINOM.DIST; NEGBINOMDIST gives the single probability.
template <bool saysWhich>
Operand negativeBinomialDistribution(Call& call)
{
    const double failures = parameter(call, 0);
    const double successes = parameter(call, 1);
    const double p = call.number(2);
    const bool cumulative = saysWhich && call.logical(3);
    return inRangeOrNum(call, isCount(failures) && isCount(successes) && successes >= 1 && isProbability(p),
                        [&] {
                            const double count = std::trunc(failures);
                            if (p == 0 || p == 1)
                                return checked(p == 1 && (count == 0 || cumulative) ? 1.0 : 0.0);
                            const NegativeBinomial distribution(std::trunc(successes), p);
                            return checked(cumulative ? cdf(distribution, count) : pdf(distribution, count));
                        });
}

Operand poissonDistribution(Call& call)
{
    const double events = parameter(call, 0);
    const double mean = parameter(call, 1);
    const bool cumulative = call.logical(2);
    const bool isBeyond = mean > 2 * largestParameter; // so far above any count that nothing is left
    return inRangeOrNum(call, isCount(events) && (isCount(mean) || isBeyond), [&] {
        const double count = std::trunc(events);
        if (mean == 0)
            return checked(count == 0 || cumulative ? 1.0 : 0.0);
        if (isBeyond)
            return Operand(0.0);
        const Poisson poisson(mean);
        return checked(cumulative ? cdf(poisson, count) : pdf(poisson, count));
    });
}

/// Draws without return from more elements than the library counts exactly (and in a short time).
class LargeHypergeometric {
public:
    LargeHypergeometric(int sample, int marked, int all)
        : m_sample(sample)
        , m_marked(marked)
        , m_all(all)
    {
    }

    /// As three binomial probabilities: C. Loader, Fast and Accurate Computation of Binomial Probabilities,
    /// 2000.
    double probability(double found) const
    {
        if (m_sample == m_all)
            return 1;
        const double p = m_sample / m_all;
        return pdf(Binomial(m_marked, p), found) * pdf(Binomial(m_all - m_marked, p), m_sample - found) /
               pdf(Binomial(m_all, p), m_sample);
    }
    /// Of at most so many, summed over the thinner end.
    double cumulative(double found) const
    {
        const bool below = found < m_sample * (m_marked / m_all);
        double sum = 0;
        double at = below ? found : found + 1;
        if (at > std::min(m_sample, m_marked))
            return 1;
        for (double term = probability(at); term > sum * 1e-17; at += below ? -1 : 1) {
            sum += term;
            const double others = m_all - m_marked - m_sample + at;
            term *= below ? at * others / ((m_marked - at + 1) * (m_sample - at + 1))
                          : (m_marked - at) * (m_sample - at) / ((at + 1) * (others + 1));
        }
        return below ? sum : 1 - sum;
    }

private:
    double m_sample;
    double m_marked;
    double m_all;
};

/// HYPGEOM.DIST; HYPGEOMDIST gives the single probability.
template <bool saysWhich>
Operand hypergeometricDistribution(Call& call)
{
    const double given = call.number(0);
    const int successes = call.integer(0);
    const int sample = call.integer(1);
    const int marked = call.integer(2);
    const int all = call.integer(3);
    const bool cumulative = saysWhich && call.logical(4);
    const bool sizes = all > 0 && sample > 0 && sample <= all && marked > 0 && marked <= all;
    const int fewest = sizes ? std::max(0, sample - (all - marked)) : 0;
    const bool inRange = sizes && given >= 0 && successes >= fewest && successes <= std::min(sample, marked);
    constexpr int mostCounted = 100'000;
    call.pay(all > mostCounted ? 16 * std::sqrt(all) : 24.0 * all);
    return inRangeOrNum(call, inRange, [&] {
        if (all > mostCounted) {
            const LargeHypergeometric large(sample, marked, all);
            return checked(cumulative ? large.cumulative(successes) : large.probability(successes));
        }
        const Hypergeometric distribution(static_cast<unsigned>(marked), static_cast<unsigned>(sample),
                                          static_cast<unsigned>(all));
        const auto count = static_cast<unsigned>(successes);
        return checked(cumulative ? cdf(distribution, count) : pdf(distribution, count));
    });
}

constexpr auto discreteDistributionFamily = FunctionFamily::statistical;
constexpr std::string_view binomialArguments = "成功次数,试验次数,成功概率,累积";
constexpr std::string_view quantileArguments = "试验次数,成功概率,临界概率";

const FunctionDescriptor discreteDistributionTable[] = {
    {"BINOMDIST", 4, 4, "vvvv", discreteDistributionFamily, binomialArguments, "返回二项分布的概率或累积概率",
     binomialDistribution},
    {"BINOM.DIST", 4, 4, "vvvv", discreteDistributionFamily, binomialArguments,
     "返回二项分布的概率或累积概率", binomialDistribution},
    {"BINOM.DIST.RANGE", 3, 4, "vvvv", discreteDistributionFamily,
     "试验次数,成功概率,成功次数,[最多成功次数]", "返回二项分布中成功次数在给定范围内的概率", binomialRange},
    {"CRITBINOM", 3, 3, "vvv", discreteDistributionFamily, quantileArguments,
     "返回使累积二项概率不小于临界值的最小次数", binomialQuantile},
    {"BINOM.INV", 3, 3, "vvv", discreteDistributionFamily, quantileArguments,
     "返回使累积二项概率不小于临界值的最小次数", binomialQuantile},
    {"NEGBINOMDIST", 3, 3, "vvv", discreteDistributionFamily, "失败次数,成功次数,成功概率",
     "返回负二项分布的概率", negativeBinomialDistribution<false>},
    {"NEGBINOM.DIST", 4, 4, "vvvv", discreteDistributionFamily, "失败次数,成功次数,成功概率,累积",
     "返回负二项分布的概率或累积概率", negativeBinomialDistribution<true>},
    {"POISSON", 3, 3, "vvv", discreteDistributionFamily, "次数,平均值,累积", "返回泊松分布的概率或累积概率",
     poissonDistribution},
    {"POISSON.DIST", 3, 3, "vvv", discreteDistributionFamily, "次数,平均值,累积",
     "返回泊松分布的概率或累积概率", poissonDistribution},
    {"HYPGEOMDIST", 4, 4, "vvvv", discreteDistributionFamily, "样本成功次数,样本容量,总体成功次数,总体容量",
     "返回超几何分布的概率", hypergeometricDistribution<false>},
    {"HYPGEOM.DIST", 5, 5, "vvvvv", discreteDistributionFamily,
     "样本成功次数,样本容量,总体成功次数,总体容量,累积", "返回超几何分布的概率或累积概率",
     hypergeometricDistribution<true>},
};

} // namespace

std::span<const FunctionDescriptor> discreteDistributionFunctions()
{
    return discreteDistributionTable;
}

} // namespace spreadsheet
