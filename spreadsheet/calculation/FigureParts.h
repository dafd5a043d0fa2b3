#pragma once
#include "spreadsheet/formula/Operand.h"

#include <memory>
#include <string_view>
#include <vector>

namespace spreadsheet {

/// What one formula adds up: cells, calls of its own, and what its rounding changed.
struct FigurePart {
    enum class Kind : std::uint8_t { cells, call, rounding };
    Kind kind = Kind::cells;
    bool isByCondition = false;
    bool isSummed = false;  ///< cells as sums take them: texts that are no figure count as nothing
    int call = 0;           ///< which of the formula's calls
    double coefficient = 1; ///< of a rounding what it changed
    double step = 0;        ///< of a rounding
    Area cells{0, {}};
};

/// A value as a sum of parts, as one formula makes it. Without parts it depends on no call.
struct FigureParts {
    double constant = 0;
    std::vector<FigurePart> parts;
    std::string_view nonlinear; ///< the function or operator after which it is no such sum; "" if it is one

    bool dependsOnCalls() const { return !parts.empty(); }
    void multiply(double factor);
    void divide(double divisor);
    /// Adds `factor` times another value.
    void add(const FigureParts& other, double factor);
    void setByCondition();
    void setNonlinear(std::string_view function);
};

/// Elements row by row. A single one, as nearly all are, asks for no memory beside.
class FigurePartsList {
public:
    explicit FigurePartsList(std::size_t count)
        : m_several(count == 1 ? 0 : count)
    {
    }
    std::size_t size() const { return m_several.empty() ? 1 : m_several.size(); }
    FigureParts* begin() { return m_several.empty() ? &m_single : m_several.data(); }
    FigureParts* end() { return begin() + size(); }
    const FigureParts* begin() const { return m_several.empty() ? &m_single : m_several.data(); }
    const FigureParts* end() const { return begin() + size(); }
    FigureParts& front() { return *begin(); }
    const FigureParts& front() const { return *begin(); }
    FigureParts& operator[](std::size_t at) { return begin()[at]; }
    const FigureParts& operator[](std::size_t at) const { return begin()[at]; }

private:
    FigureParts m_single;
    std::vector<FigureParts> m_several;
};

/// … for each element of an array.
struct FigureElements {
    FigureElements(int rowCount, int columnCount)
        : rows(rowCount)
        , columns(columnCount)
        , parts(elementsOf(rowCount, columnCount))
    {
    }
    explicit FigureElements(FigureParts single)
        : FigureElements(1, 1)
    {
        parts.front() = std::move(single);
    }
    /// A single row or column repeats; null beyond the edge.
    const FigureParts* spread(int row, int column) const;
    FigureParts& at(int row, int column)
    {
        return parts[static_cast<std::size_t>(row) * static_cast<std::size_t>(columns) +
                     static_cast<std::size_t>(column)];
    }

    int rows;
    int columns;
    FigurePartsList parts;
};

/// What is known of an operand beside its value. Null: a reference, whose cells know, or a value that depends
/// on no call.
using FigureTrace = std::shared_ptr<const FigureElements>;

} // namespace spreadsheet
