// Functions of two lists of numbers that belong together: correlation and the line through the points.
#include "spreadsheet/functions/function_families.h"
#include "spreadsheet/functions/statistics/samples.h"
#include "spreadsheet/functions/statistics/spread.h"
#include "spreadsheet/values/CompensatedSum.h"

namespace spreadsheet {

namespace {

/// A function of a paired sample of at least `fewest` pairs; #DIV/0! for fewer.
template <auto function, int fewest>
Operand ofPairs(Call& call)
{
    const PairedSample sample = pairedSample(call, 0, 1);
    if (call.failed())
        return call.error();
    return sample.size() < fewest ? Operand(CellError::div0) : function(sample);
}

/// The sum of a term of each pair.
template <auto term>
Operand sumOver(const PairedSample& sample)
{
    CompensatedSum sum;
    for (std::size_t i = 0; i < sample.first.size(); ++i)
        sum.add(term(sample.first[i], sample.second[i]));
    return checked(sum.total());
}

Operand quotient(double above, double below)
{
    return below == 0 ? Operand(CellError::div0) : checked(above / below);
}

Operand correlation(const PairedSample& sample)
{
    return quotient(sample.crossDeviations(),
                    std::sqrt(squaredDeviations(sample.first) * squaredDeviations(sample.second)));
}

Operand determination(const PairedSample& sample)
{
    const Operand r = correlation(sample);
    return r.value().isError() ? r : Operand(r.value().number() * r.value().number());
}

Operand covariance(const PairedSample& sample)
{
    return checked(sample.crossDeviations() / sample.size());
}

Operand sampleCovariance(const PairedSample& sample)
{
    return checked(sample.crossDeviations() / (sample.size() - 1));
}

// The y come first, the x second.

Operand slope(const PairedSample& sample)
{
    return quotient(sample.crossDeviations(), squaredDeviations(sample.second));
}

/// The height of the line at an x.
Operand heightAt(const PairedSample& sample, double x)
{
    const Operand rise = slope(sample);
    if (rise.value().isError())
        return rise;
    return checked(meanOf(sample.first) + rise.value().number() * (x - meanOf(sample.second)));
}

Operand intercept(const PairedSample& sample)
{
    return heightAt(sample, 0);
}

/// Standard error of the heights, from their distances to the line: a difference of sums would lose the
/// digits of points that lie close to it.
Operand standardError(const PairedSample& sample)
{
    const Operand rise = slope(sample);
    if (rise.value().isError())
        return rise;
    const double meanY = meanOf(sample.first), meanX = meanOf(sample.second);
    CompensatedSum rest;
    for (std::size_t i = 0; i < sample.first.size(); ++i) {
        const double distance = sample.first[i] - meanY - rise.value().number() * (sample.second[i] - meanX);
        rest.add(distance * distance);
    }
    return checked(std::sqrt(rest.total() / (sample.size() - 2)));
}

Operand forecast(Call& call)
{
    const double x = call.number(0);
    const PairedSample sample = pairedSample(call, 1, 2);
    if (call.failed())
        return call.error();
    return sample.first.empty() ? Operand(CellError::div0) : heightAt(sample, x);
}

/// The probability that a value lies from one limit to another, or is equal to the only one.
Operand probability(Call& call)
{
    const PairedSample sample = pairedSample(call, 0, 1);
    const double from = call.number(2);
    const double to = call.given(3) ? call.number(3) : from;
    if (call.failed())
        return call.error();
    CompensatedSum within;
    CompensatedSum all;
    for (std::size_t i = 0; i < sample.first.size(); ++i) {
        const double share = sample.second[i];
        if (share < 0 || share > 1)
            return CellError::num;
        all.add(share);
        if (sample.first[i] >= from && sample.first[i] <= to)
            within.add(share);
    }
    if (std::fabs(all.total() - 1) > 1e-7)
        return CellError::num;
    return checked(within.total());
}

constexpr auto correlationFamily = FunctionFamily::statistical;

const FunctionDescriptor correlationTable[] = {
    {"SUMX2MY2", 2, 2, "aa", FunctionFamily::mathematical, "数组x,数组y", "返回两数组中对应数值的平方差之和",
     ofPairs<sumOver<[](double x, double y) { return x * x - y * y; }>, 1>},
    {"SUMX2PY2", 2, 2, "aa", FunctionFamily::mathematical, "数组x,数组y", "返回两数组中对应数值的平方和之和",
     ofPairs<sumOver<[](double x, double y) { return x * x + y * y; }>, 1>},
    {"SUMXMY2", 2, 2, "aa", FunctionFamily::mathematical, "数组x,数组y", "返回两数组中对应数值之差的平方和",
     ofPairs<sumOver<[](double x, double y) { return (x - y) * (x - y); }>, 1>},
    {"CORREL", 2, 2, "aa", correlationFamily, "数组1,数组2", "返回两组数值的相关系数",
     ofPairs<correlation, 1>},
    {"PEARSON", 2, 2, "aa", correlationFamily, "数组1,数组2", "返回皮尔逊积矩相关系数",
     ofPairs<correlation, 1>},
    {"RSQ", 2, 2, "aa", correlationFamily, "y值,x值", "返回皮尔逊积矩相关系数的平方",
     ofPairs<determination, 2>},
    {"COVAR", 2, 2, "aa", correlationFamily, "数组1,数组2", "返回总体协方差", ofPairs<covariance, 1>},
    {"COVARIANCE.P", 2, 2, "aa", correlationFamily, "数组1,数组2", "返回总体协方差", ofPairs<covariance, 1>},
    {"COVARIANCE.S", 2, 2, "aa", correlationFamily, "数组1,数组2", "返回样本协方差",
     ofPairs<sampleCovariance, 2>},
    {"SLOPE", 2, 2, "aa", correlationFamily, "y值,x值", "返回线性回归直线的斜率", ofPairs<slope, 2>},
    {"INTERCEPT", 2, 2, "aa", correlationFamily, "y值,x值", "返回线性回归直线的截距", ofPairs<intercept, 2>},
    {"STEYX", 2, 2, "aa", correlationFamily, "y值,x值", "返回线性回归预测值的标准误差",
     ofPairs<standardError, 3>},
    {"FORECAST", 3, 3, "vaa", correlationFamily, "x,y值,x值", "按线性回归预测 x 处的值", forecast},
    {"FORECAST.LINEAR", 3, 3, "vaa", correlationFamily, "x,y值,x值", "按线性回归预测 x 处的值", forecast},
    {"PROB", 3, 4, "aavv", correlationFamily, "x值,概率,下限,[上限]", "返回数值落在两个界限之间的概率",
     probability},
};

} // namespace

std::span<const FunctionDescriptor> correlationFunctions()
{
    return correlationTable;
}

} // namespace spreadsheet
