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

/// An argument left out between two commas.
struct Missing {};

/// A value that is not known yet while custom calls are gathered.
struct Unknown {};

/// What lies on the stack of the formula machine: a value, cells, an array, or nothing.
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

private:
    std::variant<Value, Missing, Area, std::shared_ptr<const Areas>, std::shared_ptr<const Array>, Unknown>
        m_content;
};

inline Areas Operand::areas() const
{
    if (isArea())
        return {area()};
    return isAreas() ? **std::get_if<std::shared_ptr<const Areas>>(&m_content) : Areas{};
}

} // namespace spreadsheet
