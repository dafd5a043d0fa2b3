#include "spreadsheet/functions/statistics/least_squares.h"

#include "spreadsheet/functions/statistics/spread.h"
#include "spreadsheet/values/CompensatedSum.h"

#include <algorithm>
#include <cmath>

namespace spreadsheet {

namespace {

using Columns = std::vector<std::vector<double>>;

double dotProduct(const std::vector<double>& a, const std::vector<double>& b)
{
    CompensatedSum sum;
    for (std::size_t i = 0; i < a.size(); ++i)
        sum.add(a[i] * b[i]);
    return sum.total();
}

void subtract(std::vector<double>& from, const std::vector<double>& what, double times)
{
    for (std::size_t i = 0; i < from.size(); ++i)
        from[i] -= times * what[i];
}

void centre(std::vector<double>& numbers, double mean)
{
    for (double& number : numbers)
        number -= mean;
}

/// Columns made orthogonal one after the other (Gram and Schmidt, twice over against rounding), and the
/// triangle R of what was taken off, so that X = Q·R with columns of Q of length 1.
class Orthogonal {
public:
    explicit Orthogonal(const Columns& columns)
        : m_triangle(columns.size(), std::vector<double>(columns.size()))
    {
        for (std::size_t j = 0; j < columns.size(); ++j)
            add(columns[j], j);
    }

    std::size_t rank() const { return m_used.size(); }

    /// Takes the part that the columns explain off `heights`; gives the factor of each original column.
    std::vector<double> explain(std::vector<double>& heights) const
    {
        std::vector<double> parts(m_triangle.size());
        for (int pass = 0; pass < 2; ++pass) {
            for (std::size_t k = 0; k < m_used.size(); ++k) {
                const double part = dotProduct(m_columns[k], heights);
                subtract(heights, m_columns[k], part);
                parts[m_used[k]] += part;
            }
        }
        return solved(std::move(parts));
    }

    /// The rows of R⁻¹, whose squares add up to the variances of the factors.
    std::vector<std::vector<double>> inverse() const
    {
        const std::size_t size = m_triangle.size();
        std::vector<std::vector<double>> rows(size, std::vector<double>(size));
        for (const std::size_t j : m_used) {
            std::vector<double> unit(size);
            unit[j] = 1;
            const std::vector<double> column = solved(std::move(unit));
            for (std::size_t i = 0; i < size; ++i)
                rows[i][j] = column[i];
        }
        return rows;
    }

private:
    void add(std::vector<double> column, std::size_t j)
    {
        constexpr double dependent = 1e-12; // so little is left of a column that others determine
        const double length = std::sqrt(dotProduct(column, column));
        for (int pass = 0; pass < 2; ++pass) {
            for (std::size_t k = 0; k < m_used.size(); ++k) {
                const double part = dotProduct(m_columns[k], column);
                subtract(column, m_columns[k], part);
                m_triangle[m_used[k]][j] += part;
            }
        }
        const double left = std::sqrt(dotProduct(column, column));
        if (!(left > length * dependent))
            return;
        m_triangle[j][j] = left;
        for (double& number : column)
            number /= left;
        m_columns.push_back(std::move(column));
        m_used.push_back(j);
    }

    /// R⁻¹ times a vector, by rows from the last; columns that are not used give 0.
    std::vector<double> solved(std::vector<double> right) const
    {
        std::vector<double> result(right.size());
        for (std::size_t k = m_used.size(); k-- > 0;) {
            const std::size_t j = m_used[k];
            result[j] = right[j] / m_triangle[j][j];
            for (std::size_t i = 0; i < k; ++i)
                right[m_used[i]] -= m_triangle[m_used[i]][j] * result[j];
        }
        return result;
    }

    Columns m_columns;               ///< Q
    std::vector<std::size_t> m_used; ///< which original column each stands for
    std::vector<std::vector<double>> m_triangle;
};

} // namespace

double LeastSquares::at(std::span<const double> x) const
{
    CompensatedSum height;
    height.add(intercept);
    for (std::size_t i = 0; i < slopes.size(); ++i)
        height.add(slopes[i] * x[i]);
    return height.total();
}

LeastSquares fitted(const Columns& variables, const std::vector<double>& heights, bool withIntercept)
{
    Columns columns = variables;
    std::vector<double> rest = heights;
    std::vector<double> means(columns.size());
    const double meanHeight = withIntercept ? meanOf(heights) : 0;
    if (withIntercept) {
        for (std::size_t j = 0; j < columns.size(); ++j)
            centre(columns[j], means[j] = meanOf(columns[j]));
        centre(rest, meanHeight);
    }
    const double allSquares = dotProduct(rest, rest);
    const Orthogonal orthogonal(columns);

    LeastSquares fit;
    fit.slopes = orthogonal.explain(rest);
    fit.intercept = meanHeight - dotProduct(fit.slopes, means);
    fit.residualSquares = dotProduct(rest, rest);
    constexpr double noise = 1e-28; // points on the line leave nothing
    if (fit.residualSquares < allSquares * noise)
        fit.residualSquares = 0;
    fit.explainedSquares = allSquares - fit.residualSquares;
    fit.determination = allSquares == 0 ? 1 : fit.explainedSquares / allSquares;
    const auto count = static_cast<double>(heights.size());
    const auto rank = static_cast<double>(orthogonal.rank());
    fit.freedom = count - rank - (withIntercept ? 1 : 0);
    const double residualVariance = fit.freedom > 0 ? fit.residualSquares / fit.freedom : 0;
    fit.heightError = std::sqrt(residualVariance);
    fit.f = fit.explainedSquares / rank / residualVariance;

    double meanVariance = 1 / count;
    std::vector<double> meanParts(columns.size());
    for (std::size_t i = 0; const std::vector<double>& row : orthogonal.inverse()) {
        fit.slopeErrors.push_back(std::sqrt(residualVariance * dotProduct(row, row)));
        for (std::size_t j = 0; j < row.size(); ++j)
            meanParts[j] += means[i] * row[j];
        ++i;
    }
    meanVariance += dotProduct(meanParts, meanParts);
    fit.interceptError = std::sqrt(residualVariance * meanVariance);
    return fit;
}

} // namespace spreadsheet
