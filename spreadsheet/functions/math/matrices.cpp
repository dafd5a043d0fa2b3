#include "spreadsheet/functions/function_families.h"
#include "spreadsheet/functions/number_calls.h"
#include "spreadsheet/values/coercion.h"

#include <limits>
#include <utility>

namespace spreadsheet {

// Elimination takes the largest number of a column as pivot, since a small one would magnify the rounding
// errors of all rows below. An inverse whose pivot all but vanishes is refused rather than given with digits
// that mean nothing.

namespace {

/// Numbers in rows and columns.
class Matrix {
public:
    Matrix(std::size_t rows, std::size_t columns)
        : m_rows(rows)
        , m_columns(columns)
        , m_numbers(rows * columns)
    {
    }
    std::size_t rows() const { return m_rows; }
    std::size_t columns() const { return m_columns; }
    double& at(std::size_t row, std::size_t column) { return m_numbers[row * m_columns + column]; }
    double at(std::size_t row, std::size_t column) const { return m_numbers[row * m_columns + column]; }

    void swapRows(std::size_t a, std::size_t b)
    {
        for (std::size_t column = 0; column < m_columns; ++column)
            std::swap(at(a, column), at(b, column));
    }
    /// Takes a multiple of one row off another, from a column on.
    void subtractRow(std::size_t from, std::size_t row, double factor, std::size_t firstColumn = 0)
    {
        for (std::size_t column = firstColumn; column < m_columns; ++column)
            at(from, column) -= factor * at(row, column);
    }

private:
    std::size_t m_rows;
    std::size_t m_columns;
    std::vector<double> m_numbers;
};

constexpr double mostMultiplications = 2e9; ///< a few seconds; larger matrices are #VALUE!

/// The call fails with #VALUE! if an element is no number.
Matrix matrixArgument(Call& call, std::size_t argument)
{
    const int rows = call.rows(argument);
    const int columns = call.columns(argument);
    if (!isArraySize(rows, columns)) {
        call.fail(CellError::value);
        return {0, 0};
    }
    Matrix matrix(static_cast<std::size_t>(rows), static_cast<std::size_t>(columns));
    for (int row = 0; row < rows && !call.failed(); ++row) {
        for (int column = 0; column < columns; ++column) {
            const Value value = call.element(argument, row, column);
            const auto number = countedNumber(value);
            if (number)
                matrix.at(static_cast<std::size_t>(row), static_cast<std::size_t>(column)) = *number;
            else
                call.fail(value.isError() ? value.error() : CellError::value);
        }
    }
    return matrix;
}

Matrix squareArgument(Call& call)
{
    Matrix matrix = matrixArgument(call, 0);
    const auto size = static_cast<double>(matrix.rows());
    if (!call.failed() && (matrix.rows() != matrix.columns() || size * size * size > mostMultiplications))
        call.fail(CellError::value);
    return matrix;
}

/// The row from `column` down whose number in that column is largest.
std::size_t pivotRow(const Matrix& matrix, std::size_t column)
{
    std::size_t best = column;
    for (std::size_t row = column + 1; row < matrix.rows(); ++row) {
        if (std::fabs(matrix.at(row, column)) > std::fabs(matrix.at(best, column)))
            best = row;
    }
    return best;
}

Operand arrayResult(const Matrix& matrix)
{
    auto array = std::make_shared<Array>(static_cast<int>(matrix.rows()), static_cast<int>(matrix.columns()));
    for (std::size_t row = 0; row < matrix.rows(); ++row) {
        for (std::size_t column = 0; column < matrix.columns(); ++column) {
            const double number = matrix.at(row, column);
            array->at(static_cast<int>(row), static_cast<int>(column)) =
                std::isfinite(number) ? Value(number) : Value(CellError::num);
        }
    }
    return std::shared_ptr<const Array>(std::move(array));
}

Operand determinant(Call& call)
{
    Matrix matrix = squareArgument(call);
    if (call.failed())
        return call.error();
    double product = 1;
    for (std::size_t column = 0; column < matrix.columns(); ++column) {
        const std::size_t pivot = pivotRow(matrix, column);
        if (matrix.at(pivot, column) == 0)
            return 0.0;
        if (pivot != column) {
            matrix.swapRows(pivot, column);
            product = -product;
        }
        product *= matrix.at(column, column);
        for (std::size_t row = column + 1; row < matrix.rows(); ++row)
            matrix.subtractRow(row, column, matrix.at(row, column) / matrix.at(column, column), column);
    }
    return checked(product);
}

/// Gauss and Jordan: what turns the matrix into the unit matrix turns the unit matrix into its inverse.
Operand inverse(Call& call)
{
    Matrix matrix = squareArgument(call);
    if (call.failed())
        return call.error();
    const std::size_t size = matrix.rows();
    Matrix result(size, size);
    for (std::size_t i = 0; i < size; ++i)
        result.at(i, i) = 1;
    for (std::size_t column = 0; column < size; ++column) {
        const std::size_t pivot = pivotRow(matrix, column);
        const double head = matrix.at(pivot, column);
        if (std::fabs(head) < std::numeric_limits<double>::min())
            return CellError::num;
        matrix.swapRows(pivot, column);
        result.swapRows(pivot, column);
        for (std::size_t i = 0; i < size; ++i) {
            matrix.at(column, i) /= head;
            result.at(column, i) /= head;
        }
        for (std::size_t row = 0; row < size; ++row) {
            const double factor = matrix.at(row, column);
            if (row == column || factor == 0)
                continue;
            matrix.subtractRow(row, column, factor, column);
            result.subtractRow(row, column, factor);
        }
    }
    return arrayResult(result);
}

Operand product(Call& call)
{
    const Matrix left = matrixArgument(call, 0);
    const Matrix right = matrixArgument(call, 1);
    if (call.failed())
        return call.error();
    const double elements = static_cast<double>(left.rows()) * static_cast<double>(right.columns());
    if (left.columns() != right.rows() || elements > static_cast<double>(maxArrayElements) ||
        elements * static_cast<double>(right.rows()) > mostMultiplications)
        return CellError::value;
    Matrix result(left.rows(), right.columns());
    for (std::size_t row = 0; row < left.rows(); ++row) {
        for (std::size_t inner = 0; inner < right.rows(); ++inner) {
            const double factor = left.at(row, inner);
            for (std::size_t column = 0; column < right.columns(); ++column)
                result.at(row, column) += factor * right.at(inner, column);
        }
    }
    return arrayResult(result);
}

Operand unitMatrix(Call& call)
{
    const int size = call.integer(0);
    if (call.failed())
        return call.error();
    if (size < 1 || static_cast<double>(size) * size > static_cast<double>(maxArrayElements))
        return CellError::value;
    call.pay(4.0 * size * size); // made twice, as numbers and as values
    if (call.failed())
        return call.error();
    Matrix result(static_cast<std::size_t>(size), static_cast<std::size_t>(size));
    for (std::size_t i = 0; i < result.rows(); ++i)
        result.at(i, i) = 1;
    return arrayResult(result);
}

constexpr auto matrixFamily = FunctionFamily::mathematical;

const FunctionDescriptor matrixTable[] = {
    {"MDETERM", 1, 1, "a", matrixFamily, "数组", "返回方阵的行列式", determinant},
    {"MINVERSE", 1, 1, "a", matrixFamily, "数组", "返回方阵的逆矩阵", inverse},
    {"MMULT", 2, 2, "aa", matrixFamily, "数组1,数组2", "返回两个矩阵的乘积", product},
    {"MUNIT", 1, 1, "v", matrixFamily, "维数", "返回指定维数的单位矩阵", unitMatrix},
};

} // namespace

std::span<const FunctionDescriptor> matrixFunctions()
{
    return matrixTable;
}

} // namespace spreadsheet
