// Tests of hypotheses about samples.
#include "spreadsheet/functions/function_families.h"
#include "spreadsheet/functions/statistics/distributions.h"
#include "spreadsheet/functions/statistics/samples.h"
#include "spreadsheet/functions/statistics/spread.h"
#include "spreadsheet/values/CompensatedSum.h"

namespace spreadsheet {

namespace {

std::vector<double> sampleOf(Call& call, std::size_t argument)
{
    std::vector<double> numbers;
    call.eachNumber(argument, [&](double number) { numbers.push_back(number); });
    return numbers;
}

/// The probability of such a χ² of observed and expected frequencies, were they the same.
Operand chiSquaredTest(Call& call)
{
    const int rows = call.rows(0);
    const int columns = call.columns(0);
    const PairedSample sample = pairedSample(call, 0, 1);
    if (call.failed())
        return call.error();
    if (rows * columns < 2 || sample.first.empty())
        return CellError::na;
    CompensatedSum chiSquared;
    for (std::size_t i = 0; i < sample.first.size(); ++i) {
        const double expected = sample.second[i];
        if (expected == 0)
            return CellError::div0;
        if (expected < 0)
            return CellError::num;
        const double distance = sample.first[i] - expected;
        chiSquared.add(distance * distance / expected);
    }
    const double degrees = rows == 1 || columns == 1 ? std::max(rows, columns) - 1
                                                     : static_cast<double>(rows - 1) * (columns - 1);
    return checked(cdf(complement(ChiSquaredDistribution(degrees), chiSquared.total())));
}

/// The probability, at both ends, of such a quotient of two variances.
Operand fisherTest(Call& call)
{
    const std::vector<double> first = sampleOf(call, 0);
    const std::vector<double> second = sampleOf(call, 1);
    if (call.failed())
        return call.error();
    const Operand above = variance(first, true);
    const Operand below = variance(second, true);
    for (const Operand& spread : {above, below}) {
        if (spread.value().isError() || spread.value().number() == 0)
            return CellError::div0;
    }
    const FisherDistribution fisher(static_cast<double>(first.size()) - 1,
                                    static_cast<double>(second.size()) - 1);
    const double ratio = above.value().number() / below.value().number();
    return checked(2 * std::min(cdf(fisher, ratio), cdf(complement(fisher, ratio))));
}

/// A distance of means in standard errors, and its degrees of freedom.
struct StudentRatio {
    double t = 0;
    double degrees = 0;
};

Operand studentProbability(const StudentRatio& ratio, double tails)
{
    if (!std::isfinite(ratio.t))
        return CellError::div0;
    return checked(tails * cdf(complement(StudentDistribution(ratio.degrees), std::fabs(ratio.t))));
}

StudentRatio pairedRatio(const PairedSample& sample)
{
    std::vector<double> differences;
    for (std::size_t i = 0; i < sample.first.size(); ++i)
        differences.push_back(sample.first[i] - sample.second[i]);
    const double n = sample.size();
    const double error = std::sqrt(squaredDeviations(differences) / (n - 1) / n);
    return {meanOf(differences) / error, n - 1};
}

/// `sameSpread`: the variances are taken as equal and pooled; else degrees of freedom after Welch.
StudentRatio independentRatio(const std::vector<double>& first, const std::vector<double>& second,
                              bool sameSpread)
{
    const auto n = static_cast<double>(first.size());
    const auto m = static_cast<double>(second.size());
    const double distance = meanOf(first) - meanOf(second);
    const double squares = squaredDeviations(first);
    const double otherSquares = squaredDeviations(second);
    if (sameSpread) {
        const double pooled = (squares + otherSquares) / (n + m - 2);
        return {distance / std::sqrt(pooled * (1 / n + 1 / m)), n + m - 2};
    }
    const double error = squares / (n - 1) / n;
    const double otherError = otherSquares / (m - 1) / m;
    const double both = error + otherError;
    return {distance / std::sqrt(both),
            both * both / (error * error / (n - 1) + otherError * otherError / (m - 1))};
}

/// Kinds: 1 pairs, 2 independent samples of the same variance, 3 of different variances.
Operand studentTest(Call& call)
{
    for (const std::size_t sample : {0, 1}) {
        if (call[sample].isValue() && call[sample].value().isError())
            return call[sample];
    }
    const double tails = std::trunc(call.number(2));
    const double kind = std::trunc(call.number(3));
    const bool known = (tails == 1 || tails == 2) && kind >= 1 && kind <= 3;
    if (!call.failed() && !known)
        return CellError::num;
    if (kind == 1) {
        const PairedSample sample = pairedSample(call, 0, 1);
        if (call.failed())
            return call.error();
        return sample.size() < 2 ? Operand(CellError::div0) : studentProbability(pairedRatio(sample), tails);
    }
    const std::vector<double> first = sampleOf(call, 0);
    const std::vector<double> second = sampleOf(call, 1);
    if (call.failed())
        return call.error();
    if (first.size() < 2 || second.size() < 2)
        return CellError::div0;
    return studentProbability(independentRatio(first, second, kind == 2), tails);
}

/// The probability that the mean of another such sample is greater than this one's, if x is the mean of
/// all.
Operand normalTest(Call& call)
{
    const std::vector<double> numbers = sampleOf(call, 0);
    const double x = call.number(1);
    if (call.failed())
        return call.error();
    if (numbers.empty())
        return CellError::na;
    const Operand width = call.given(2) ? Operand(call.number(2)) : deviation(numbers, true);
    if (call.failed())
        return call.error();
    if (width.value().isError() || (width.value().number() == 0 && !call.given(2)))
        return CellError::div0;
    if (width.value().number() <= 0)
        return CellError::num;
    const double z = (meanOf(numbers) - x) / (width.value().number() / std::sqrt(numbers.size()));
    return checked(cdf(complement(NormalDistribution(), z)));
}

constexpr auto sampleTestFamily = FunctionFamily::statistical;

const FunctionDescriptor sampleTestTable[] = {
    {"CHITEST", 2, 2, "aa", sampleTestFamily, "实际值,期望值", "返回 χ² 独立性检验的概率", chiSquaredTest},
    {"CHISQ.TEST", 2, 2, "aa", sampleTestFamily, "实际值,期望值", "返回 χ² 独立性检验的概率", chiSquaredTest},
    {"FTEST", 2, 2, "aa", sampleTestFamily, "数组1,数组2", "返回两组数值方差无明显差异的双尾概率",
     fisherTest},
    {"F.TEST", 2, 2, "aa", sampleTestFamily, "数组1,数组2", "返回两组数值方差无明显差异的双尾概率",
     fisherTest},
    {"TTEST", 4, 4, "aavv", sampleTestFamily, "数组1,数组2,尾数,类型", "返回学生 t 检验的概率", studentTest},
    {"T.TEST", 4, 4, "aavv", sampleTestFamily, "数组1,数组2,尾数,类型", "返回学生 t 检验的概率", studentTest},
    {"ZTEST", 2, 3, "rvv", sampleTestFamily, "数组,x,[总体标准偏差]", "返回 z 检验的单尾概率", normalTest},
    {"Z.TEST", 2, 3, "rvv", sampleTestFamily, "数组,x,[总体标准偏差]", "返回 z 检验的单尾概率", normalTest},
};

} // namespace

std::span<const FunctionDescriptor> sampleTestFunctions()
{
    return sampleTestTable;
}

} // namespace spreadsheet
