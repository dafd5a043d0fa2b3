// LINEST, LOGEST, TREND and GROWTH.
#include "spreadsheet/calculation/Call.h"
#include "spreadsheet/calculation/operators.h"
#include "spreadsheet/functions/function_families.h"
#include "spreadsheet/functions/statistics/least_squares.h"

namespace spreadsheet {

// The four functions are one fit, told or continued, of a line or of a curve through logarithms. The
// argument's shape decides whether variables stand beside or below each other, so it is read once, into
// points that no longer know how they lay.

namespace {

using SharedArray = std::shared_ptr<const Array>;

/// The points to fit. Several variables stand beside each other if the heights stand in a column, and
/// below each other if they stand in a row.
struct Points {
    std::vector<double> heights;
    std::vector<std::vector<double>> variables;
    bool variablesInColumns = true;
    bool single = true; ///< one variable, whatever the shape
};

/// All elements, row by row; the call fails with #VALUE! if any is no number.
std::vector<double> allNumbers(Call& call, const Array& array)
{
    std::vector<double> numbers;
    call.pay(12.0 * array.rows() * array.columns());
    for (int row = 0; row < array.rows(); ++row) {
        for (int column = 0; column < array.columns(); ++column) {
            const Value& value = array.at(row, column);
            const auto number = countedNumber(value);
            if (!number) {
                call.fail(value.isError() ? value.error() : CellError::value);
                return numbers;
            }
            numbers.push_back(*number);
        }
    }
    return numbers;
}

std::vector<std::vector<double>> lines(const std::vector<double>& numbers, const Array& shape, bool columns)
{
    const auto across = static_cast<std::size_t>(shape.columns());
    std::vector<std::vector<double>> result(
        static_cast<std::size_t>(columns ? shape.columns() : shape.rows()));
    for (std::size_t i = 0; i < numbers.size(); ++i)
        result[columns ? i % across : i / across].push_back(numbers[i]);
    return result;
}

bool sameShape(const Array& a, const Array& b)
{
    return a.rows() == b.rows() && a.columns() == b.columns();
}

std::vector<double> countedUp(std::size_t count)
{
    std::vector<double> numbers(count);
    for (std::size_t i = 0; i < count; ++i)
        numbers[i] = static_cast<double>(i + 1);
    return numbers;
}

void readVariables(Call& call, const Array& heights, Points& points)
{
    if (!call.given(1)) {
        points.variables = {countedUp(points.heights.size())};
        return;
    }
    const SharedArray array = toArray(call[1], call.place());
    const std::vector<double> numbers = allNumbers(call, *array);
    if (sameShape(*array, heights)) {
        points.variables = {numbers};
        return;
    }
    points.single = false;
    points.variablesInColumns = heights.columns() == 1;
    const bool fits = points.variablesInColumns
                          ? array->rows() == heights.rows()
                          : heights.rows() == 1 && array->columns() == heights.columns();
    if (!fits)
        return void(call.fail(CellError::ref));
    points.variables = lines(numbers, *array, points.variablesInColumns);
}

/// `ofLogarithms`: the curve b·m^x is fitted as a line through the logarithms of the heights.
Points readPoints(Call& call, bool ofLogarithms)
{
    Points points;
    const SharedArray heights = toArray(call[0], call.place());
    points.heights = allNumbers(call, *heights);
    readVariables(call, *heights, points);
    if (!ofLogarithms)
        return points;
    for (double& height : points.heights) {
        if (height <= 0)
            call.fail(CellError::num);
        height = std::log(height);
    }
    return points;
}

Value numberOrNum(double number)
{
    return std::isfinite(number) ? Value(number) : Value(CellError::num);
}

/// The slopes stand last variable first, the intercept behind them; four more rows tell how well they fit.
SharedArray described(const LeastSquares& fit, bool withIntercept, bool withStatistics, bool ofLogarithms)
{
    const auto variables = static_cast<int>(fit.slopes.size());
    auto array = std::make_shared<Array>(withStatistics ? 5 : 1, variables + 1);
    const auto shown = [&](double factor) { return numberOrNum(ofLogarithms ? std::exp(factor) : factor); };
    for (int i = 0; i < variables; ++i)
        array->at(0, i) = shown(fit.slopes[static_cast<std::size_t>(variables - 1 - i)]);
    array->at(0, variables) = shown(fit.intercept);
    if (!withStatistics)
        return array;
    for (int row = 2; row < 5; ++row) {
        for (int i = 2; i <= variables; ++i)
            array->at(row, i) = CellError::na;
    }
    for (int i = 0; i < variables; ++i)
        array->at(1, i) = numberOrNum(fit.slopeErrors[static_cast<std::size_t>(variables - 1 - i)]);
    array->at(1, variables) = withIntercept ? numberOrNum(fit.interceptError) : Value(CellError::na);
    array->at(2, 0) = numberOrNum(fit.determination);
    array->at(2, 1) = numberOrNum(fit.heightError);
    array->at(3, 0) = numberOrNum(fit.f);
    array->at(3, 1) = fit.freedom;
    array->at(4, 0) = fit.explainedSquares;
    array->at(4, 1) = fit.residualSquares;
    return array;
}

/// An argument that is true unless it says otherwise; left empty between commas it says nothing.
bool unlessRefused(Call& call, std::size_t argument)
{
    return !call.given(argument) || call.logical(argument);
}

/// LINEST and LOGEST.
template <bool ofLogarithms>
Operand estimated(Call& call)
{
    const Points points = readPoints(call, ofLogarithms);
    const bool withIntercept = unlessRefused(call, 2);
    const bool withStatistics = call.logical(3, false);
    if (call.failed())
        return call.error();
    const LeastSquares fit = fitted(points.variables, points.heights, withIntercept);
    return described(fit, withIntercept, withStatistics, ofLogarithms);
}

/// The places whose heights are wanted: the fourth argument's, else the points' own.
std::vector<std::vector<double>> wantedPlaces(Call& call, const Points& points, const Array& places)
{
    if (!call.given(2) && !call.given(1))
        return points.variables;
    const std::vector<double> numbers = allNumbers(call, places);
    if (points.single)
        return {numbers};
    auto variables = lines(numbers, places, points.variablesInColumns);
    if (variables.size() != points.variables.size())
        call.fail(CellError::ref);
    return variables;
}

/// TREND and GROWTH.
template <bool ofLogarithms>
Operand continued(Call& call)
{
    const Points points = readPoints(call, ofLogarithms);
    const SharedArray shape = toArray(call[call.given(2) ? 2 : call.given(1) ? 1 : 0], call.place());
    const std::vector<std::vector<double>> places = wantedPlaces(call, points, *shape);
    const bool withIntercept = unlessRefused(call, 3);
    if (call.failed())
        return call.error();
    const LeastSquares fit = fitted(points.variables, points.heights, withIntercept);
    const bool across = !points.single && !points.variablesInColumns;
    const int rows = points.single ? shape->rows() : across ? 1 : shape->rows();
    const int columns = points.single ? shape->columns() : across ? shape->columns() : 1;
    auto result = std::make_shared<Array>(rows, columns);
    std::vector<double> x(places.size());
    for (std::size_t i = 0; i < places.front().size(); ++i) {
        for (std::size_t j = 0; j < x.size(); ++j)
            x[j] = places[j][i];
        const double height = fit.at(x);
        result->at(static_cast<int>(i) / columns, static_cast<int>(i) % columns) =
            numberOrNum(ofLogarithms ? std::exp(height) : height);
    }
    return SharedArray(std::move(result));
}

constexpr auto regressionFamily = FunctionFamily::statistical;

const FunctionDescriptor regressionTable[] = {
    {"LINEST", 1, 4, "aavv", regressionFamily, "y值,[x值],[有截距],[附加统计]", "返回线性回归的系数数组",
     estimated<false>},
    {"LOGEST", 1, 4, "aavv", regressionFamily, "y值,[x值],[有系数],[附加统计]", "返回指数回归曲线的系数数组",
     estimated<true>},
    {"TREND", 1, 4, "aaav", regressionFamily, "y值,[x值],[新x值],[有截距]", "返回线性趋势上的各个值",
     continued<false>},
    {"GROWTH", 1, 4, "aaav", regressionFamily, "y值,[x值],[新x值],[有系数]", "返回指数增长趋势上的各个值",
     continued<true>},
};

} // namespace

std::span<const FunctionDescriptor> regressionFunctions()
{
    return regressionTable;
}

} // namespace spreadsheet
