#pragma once
#include "spreadsheet/values/Array.h"
#include "spreadsheet/values/CellAddress.h"
#include "spreadsheet/values/Value.h"

#include <memory>
#include <variant>
#include <vector>

namespace spreadsheet {

/// Cells of one sheet that a formula works on.
struct Area {
    int sheet = 1; ///< index from 1
    CellRange cells;
    friend bool operator==(const Area&, const Area&) = default;
};

/// Several areas: a union, or one range on several sheets.
using Areas = std::vector<Area>;

class Operand;

/// References in rows and columns: what OFFSET and INDIRECT give for arrays.
class ReferenceArray;

/// An argument left out between two commas.
struct Missing {};

/// A value that is not known yet while custom calls are gathered.
struct Unknown {};

/// What lies on the stack of the formula machine: a value, cells, an array, references in an array, or
/// nothing.
class Operand {
public:
    Operand() = default;
    Operand(Value value)
        : m_content(std::move(value))
    {
    }
    Operand(double number)
        : m_content(Value(number))
    {
    }
    Operand(CellError error)
        : m_content(Value(error))
    {
    }
    Operand(Area area)
        : m_content(area)
    {
    }
    Operand(std::shared_ptr<const Areas> areas)
        : m_content(std::move(areas))
    {
    }
    Operand(std::shared_ptr<const Array> array)
        : m_content(std::move(array))
    {
    }
    Operand(std::shared_ptr<const ReferenceArray> references)
        : m_content(std::move(references))
    {
    }
    static Operand missing()
    {
        Operand operand;
        operand.m_content = Missing{};
        return operand;
    }

    static Operand unknown()
    {
        Operand operand;
        operand.m_content = Unknown{};
        return operand;
    }

    bool isValue() const { return m_content.index() == 0; }
    bool isMissing() const { return m_content.index() == 1; }
    bool isArea() const { return m_content.index() == 2; }
    bool isAreas() const { return m_content.index() == 3; }
    bool isReference() const { return isArea() || isAreas(); }
    bool isArray() const { return m_content.index() == 4; }
    bool isUnknown() const { return m_content.index() == 5; }
    bool isReferenceArray() const { return m_content.index() == 6; }

    const Value& value() const { return *std::get_if<Value>(&m_content); }
    Value& value() { return *std::get_if<Value>(&m_content); }
    const Area& area() const { return *std::get_if<Area>(&m_content); }
    /// All areas of a reference; one for a plain range.
    Areas areas() const;
    const Array& array() const { return *sharedArray(); }
    const std::shared_ptr<const Array>& sharedArray() const
    {
        return *std::get_if<std::shared_ptr<const Array>>(&m_content);
    }
    const ReferenceArray& referenceArray() const
    {
        return **std::get_if<std::shared_ptr<const ReferenceArray>>(&m_content);
    }

private:
    std::variant<Value, Missing, Area, std::shared_ptr<const Areas>, std::shared_ptr<const Array>, Unknown,
                 std::shared_ptr<const ReferenceArray>>
        m_content;
};

inline Areas Operand::areas() const
{
    if (isArea())
        return {area()};
    return isAreas() ? **std::get_if<std::shared_ptr<const Areas>>(&m_content) : Areas{};
}

class ReferenceArray {
public:
    ReferenceArray(int rows, int columns)
        : m_rows(rows)
        , m_columns(columns)
        , m_elements(elementsOf(rows, columns))
    {
    }

    int rows() const { return m_rows; }
    int columns() const { return m_columns; }
    /// A reference, or the error that stands in its place.
    const Operand& at(int row, int column) const { return m_elements[position(row, column)]; }
    Operand& at(int row, int column) { return m_elements[position(row, column)]; }

private:
    std::size_t position(int row, int column) const
    {
        return static_cast<std::size_t>(row) * static_cast<std::size_t>(m_columns) +
               static_cast<std::size_t>(column);
    }
    int m_rows;
    int m_columns;
    std::vector<Operand> m_elements; ///< row by row
};

} // namespace spreadsheet
