// The normal and log-normal distribution and what is made of them.
#include "spreadsheet/functions/function_families.h"
#include "spreadsheet/functions/number_calls.h"
#include "spreadsheet/functions/plain_arguments.h"
#include "spreadsheet/functions/statistics/distributions.h"

#include <numbers>

namespace spreadsheet {

namespace {

const NormalDistribution standardNormal;

double share(double z)
{
    return cdf(standardNormal, z);
}

/// NORMDIST and NORM.DIST.
Operand normalDistribution(Call& call)
{
    const double x = call.number(0);
    const double mean = call.number(1);
    const double deviation = call.number(2);
    const bool cumulative = call.logical(3);
    return inRangeOrNum(call, deviation > 0, [&] {
        const NormalDistribution normal(mean, deviation);
        return checked(cumulative ? cdf(normal, x) : pdf(normal, x));
    });
}

Operand normalQuantile(Call& call)
{
    const double p = call.number(0);
    const double mean = call.number(1);
    const double deviation = call.number(2);
    return inRangeOrNum(call, p > 0 && p < 1 && deviation > 0,
                        [&] { return checked(mean + deviation * quantile(standardNormal, p)); });
}

/// NORM.S.DIST.
Operand standardDistribution(Call& call)
{
    const double z = call.number(0);
    const bool cumulative = call.logical(1);
    return inRangeOrNum(call, true, [&] { return checked(cumulative ? share(z) : pdf(standardNormal, z)); });
}

Operand standardQuantile(Call& call)
{
    const double p = call.number(0);
    return inRangeOrNum(call, p > 0 && p < 1, [&] { return checked(quantile(standardNormal, p)); });
}

/// LOGNORM.DIST; LOGNORMDIST is always cumulative.
template <bool saysWhich>
Operand logNormalDistribution(Call& call)
{
    const double x = call.number(0);
    const double mean = call.number(1);
    const double deviation = call.number(2);
    const bool cumulative = saysWhich ? call.logical(3) : true;
    return inRangeOrNum(call, x > 0 && deviation > 0, [&] {
        const double z = (std::log(x) - mean) / deviation;
        return checked(cumulative ? share(z) : pdf(standardNormal, z) / (x * deviation));
    });
}

Operand logNormalQuantile(Call& call)
{
    const double p = call.number(0);
    const double mean = call.number(1);
    const double deviation = call.number(2);
    return inRangeOrNum(call, p > 0 && p < 1 && deviation > 0,
                        [&] { return checked(std::exp(mean + deviation * quantile(standardNormal, p))); });
}

Operand standardized(Call& call)
{
    const double x = call.number(0);
    const double mean = call.number(1);
    const double deviation = call.number(2);
    return inRangeOrNum(call, deviation > 0, [&] { return checked((x - mean) / deviation); });
}

/// Half the width of a confidence interval of a mean; `student`: the deviation is that of the sample.
template <bool student>
Operand confidence(Call& call)
{
    const double alpha = call.number(0);
    const double deviation = call.number(1);
    const double size = std::trunc(call.number(2));
    return inRangeOrNum(call, alpha > 0 && alpha < 1 && deviation > 0 && size >= 1, [&]() -> Operand {
        if (student && size == 1)
            return CellError::div0;
        const double width = student ? quantile(complement(StudentDistribution(size - 1), alpha / 2))
                                     : quantile(complement(standardNormal, alpha / 2));
        return checked(width * deviation / std::sqrt(size));
    });
}

Operand fisherTransform(Call& call)
{
    const double x = call.number(0);
    return inRangeOrNum(call, x > -1 && x < 1, [&] { return std::atanh(x); });
}

constexpr auto normalDistributionFamily = FunctionFamily::statistical;
constexpr std::string_view normalArguments = "x,平均值,标准偏差,累积";
constexpr std::string_view normalQuantileArguments = "概率,平均值,标准偏差";

const FunctionDescriptor normalDistributionTable[] = {
    {"NORMDIST", 4, 4, "vvvv", normalDistributionFamily, normalArguments, "返回正态分布的累积概率或密度",
     normalDistribution},
    {"NORM.DIST", 4, 4, "vvvv", normalDistributionFamily, normalArguments, "返回正态分布的累积概率或密度",
     normalDistribution},
    {"NORMINV", 3, 3, "vvv", normalDistributionFamily, normalQuantileArguments,
     "返回正态分布累积概率的反函数值", normalQuantile},
    {"NORM.INV", 3, 3, "vvv", normalDistributionFamily, normalQuantileArguments,
     "返回正态分布累积概率的反函数值", normalQuantile},
    {"NORMSDIST", 1, 1, "v", normalDistributionFamily, "z", "返回标准正态分布的累积概率", ofNumber<share>},
    {"NORM.S.DIST", 2, 2, "vv", normalDistributionFamily, "z,累积", "返回标准正态分布的累积概率或密度",
     standardDistribution},
    {"NORMSINV", 1, 1, "v", normalDistributionFamily, "概率", "返回标准正态分布累积概率的反函数值",
     standardQuantile},
    {"NORM.S.INV", 1, 1, "v", normalDistributionFamily, "概率", "返回标准正态分布累积概率的反函数值",
     standardQuantile},
    {"PHI", 1, 1, "v", normalDistributionFamily, "x", "返回标准正态分布的密度",
     ofNumber<[](double x) { return pdf(standardNormal, x); }>},
    {"GAUSS", 1, 1, "v", normalDistributionFamily, "z", "返回标准正态分布在平均值与 z 之间的概率",
     ofNumber<[](double z) { return std::erf(z * std::numbers::sqrt2 / 2) / 2; }>},
    {"LOGNORMDIST", 3, 3, "vvv", normalDistributionFamily, "x,平均值,标准偏差", "返回对数正态分布的累积概率",
     logNormalDistribution<false>},
    {"LOGNORM.DIST", 4, 4, "vvvv", normalDistributionFamily, normalArguments,
     "返回对数正态分布的累积概率或密度", logNormalDistribution<true>},
    {"LOGINV", 3, 3, "vvv", normalDistributionFamily, normalQuantileArguments,
     "返回对数正态分布累积概率的反函数值", logNormalQuantile},
    {"LOGNORM.INV", 3, 3, "vvv", normalDistributionFamily, normalQuantileArguments,
     "返回对数正态分布累积概率的反函数值", logNormalQuantile},
    {"STANDARDIZE", 3, 3, "vvv", normalDistributionFamily, "x,平均值,标准偏差",
     "返回按平均值和标准偏差正态化的数值", standardized},
    {"CONFIDENCE", 3, 3, "vvv", normalDistributionFamily, "显著水平,标准偏差,样本容量",
     "返回总体平均值的置信区间的一半(正态分布)", confidence<false>},
    {"CONFIDENCE.NORM", 3, 3, "vvv", normalDistributionFamily, "显著水平,标准偏差,样本容量",
     "返回总体平均值的置信区间的一半(正态分布)", confidence<false>},
    {"CONFIDENCE.T", 3, 3, "vvv", normalDistributionFamily, "显著水平,标准偏差,样本容量",
     "返回总体平均值的置信区间的一半(t 分布)", confidence<true>},
    {"FISHER", 1, 1, "v", normalDistributionFamily, "x", "返回 x 的 Fisher 变换", fisherTransform},
    {"FISHERINV", 1, 1, "v", normalDistributionFamily, "y", "返回 Fisher 变换的反函数值",
     ofNumber<[](double y) { return std::tanh(y); }>},
};

} // namespace

std::span<const FunctionDescriptor> normalDistributionFunctions()
{
    return normalDistributionTable;
}

} // namespace spreadsheet
