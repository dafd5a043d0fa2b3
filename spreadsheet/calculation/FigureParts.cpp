#include "spreadsheet/calculation/FigureParts.h"

namespace spreadsheet {

void FigureParts::multiply(double factor)
{
    constant *= factor;
    for (FigurePart& part : parts)
        part.coefficient *= factor;
}

/// Not the same as multiplying by 1 / divisor, which is another number in the last place.
void FigureParts::divide(double divisor)
{
    constant /= divisor;
    for (FigurePart& part : parts)
        part.coefficient /= divisor;
}

void FigureParts::add(const FigureParts& other, double factor)
{
    constant += factor * other.constant;
    for (FigurePart part : other.parts) {
        part.coefficient *= factor;
        parts.push_back(part);
    }
    setNonlinear(other.nonlinear);
}

void FigureParts::setByCondition()
{
    for (FigurePart& part : parts)
        part.isByCondition = true;
}

void FigureParts::setNonlinear(std::string_view function)
{
    if (nonlinear.empty())
        nonlinear = function;
}

const FigureParts* FigureElements::spread(int row, int column) const
{
    row = rows == 1 ? 0 : row;
    column = columns == 1 ? 0 : column;
    if (row >= rows || column >= columns)
        return nullptr;
    return &parts[static_cast<std::size_t>(row) * static_cast<std::size_t>(columns) +
                  static_cast<std::size_t>(column)];
}

} // namespace spreadsheet
