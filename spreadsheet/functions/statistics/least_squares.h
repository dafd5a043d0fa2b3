#pragma once
#include <span>
#include <vector>

namespace spreadsheet {

/// y = b + m1·x1 + m2·x2 + …, so that the squares of what is left are least.
struct LeastSquares {
    std::vector<double> slopes; ///< one per variable; 0 for one that others already determine
    std::vector<double> slopeErrors;
    double intercept = 0;
    double interceptError = 0;
    double determination = 0; ///< r²
    double heightError = 0;   ///< standard error of y
    double f = 0;             ///< quotient of the variances; infinite for points on the line
    double freedom = 0;
    double explainedSquares = 0;
    double residualSquares = 0;

    double at(std::span<const double> x) const;
};

/// Fits through points given as columns: `variables` holds one list per variable, each as long as
/// `heights`. Without an intercept the line goes through 0 and the squares are taken about 0.
LeastSquares fitted(const std::vector<std::vector<double>>& variables, const std::vector<double>& heights,
                    bool withIntercept);

} // namespace spreadsheet
