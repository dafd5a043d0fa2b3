#pragma once
#include "spreadsheet/formula/Formula.h"
#include "spreadsheet/values/CellAddress.h"

#include <array>
#include <memory>
#include <vector>

namespace spreadsheet {

class Column;
struct Book;

/// Runs formulas made of numbers, references to single cells and arithmetic over many rows at once,
/// straight on the dense arrays. Whatever it cannot do exactly as the stack machine does (texts, truth
/// values, errors, divisions by zero, overflow) it leaves to that machine, block by block.
class BlockEvaluator {
public:
    static constexpr int blockRows = 512;

    explicit BlockEvaluator(const Book& book)
        : m_book(book)
    {
    }

    /// Makes ready for the cells of one column that hold `formula`.
    void begin(const Formula& formula, int sheet, int column);
    /// Computes `count` (at most blockRows) rows from `firstRow` on. Null if the stack machine must.
    const double* rows(int firstRow, int count);
    /// One row whose references may have changed since the last call. False if the stack machine must.
    bool single(int row, double& result);

private:
    struct Input {
        const Column* column = nullptr; ///< null: every cell is empty
        AxisPoint row;
        bool broken = false;
        std::size_t slot = 0; ///< slot of the column met last
    };
    struct Lane {
        const double* data = nullptr; ///< null: `constant` in every row
        double constant = 0;
    };

    bool load(Input& input, int firstRow, int count, double* buffer, Lane& lane);
    bool loadOne(Input& input, int row, double& value);
    bool operate(Op op, Lane& left, const Lane& right, double* result, int count);
    double* buffer(std::size_t depth) { return m_buffers[depth]->data(); }

    const Book& m_book;
    const Formula* m_formula = nullptr;
    std::vector<Input> m_inputs;
    std::vector<std::unique_ptr<std::array<double, blockRows>>> m_buffers;
    std::vector<Lane> m_lanes;
    std::vector<double> m_scalars;
};

} // namespace spreadsheet
