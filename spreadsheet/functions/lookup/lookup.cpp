#include "spreadsheet/calculation/Call.h"
#include "spreadsheet/calculation/operators.h"
#include "spreadsheet/functions/function_families.h"
#include "spreadsheet/functions/lookup/line_search.h"
#include "spreadsheet/functions/lookup/references.h"

namespace spreadsheet {

// Lookups hand back the cell that they found as a reference, not its value: only so can it stand in a range
// (A1:INDEX(…)) or be asked for its row. How a line is searched, cell by cell or by an index, is the matter
// of `Line`.

namespace {

/// Sticks where the second argument is an error or nothing to search in.
void checkCells(Call& call)
{
    const Operand& cells = call[1];
    if (cells.isValue() && cells.value().isError())
        call.fail(cells.value().error());
    if (cells.isAreas() || cells.isMissing())
        call.fail(CellError::value);
}

/// The value to look for: an argument left out counts as 0, an empty cell is nothing that could be found.
/// Sticks at errors, also of the range.
Value wantedValue(Call& call)
{
    const Value wanted = call.value(0);
    if (wanted.isError())
        call.fail(wanted.error());
    checkCells(call);
    if (wanted.isEmpty() && !call[0].isMissing())
        call.fail(CellError::na);
    return wanted.isEmpty() ? Value(0.0) : wanted;
}

/// One cell as a reference, so that it can be told what a figure is made of; an empty one as a value, which
/// counts as 0 in MIN. An element of an array is a value.
Operand elementOf(const Call& call, std::size_t argument, int row, int column)
{
    if (!call[argument].isArea())
        return call.element(argument, row, column);
    const Area& area = call[argument].area();
    const CellAddress cell{area.cells.left + column, area.cells.top + row};
    // Cells below the result vector of LOOKUP are read by whoever takes the reference.
    if (area.cells.contains(cell) && cellValue(call.place().book, area.sheet, cell).isEmpty())
        return Value();
    return Area{area.sheet, {cell.column, cell.row, cell.column, cell.row}};
}

/// VLOOKUP and HLOOKUP. Where several arguments are wrong, the number of the column or row tells first.
template <bool down>
Operand lookUpInTable(Call& call)
{
    const int line = call.integer(2);
    checkCells(call);
    if (!call.failed() && line < 1)
        return CellError::value;
    if (!call.failed() && line > (down ? call.columns(1) : call.rows(1)))
        return CellError::ref;
    const Value wanted = wantedValue(call);
    const bool approximate = call.logical(3, true);
    if (call.failed())
        return call.error();
    const Line keys = down ? Line::firstColumn(call, 1) : Line::firstRow(call, 1);
    const auto place = approximate ? keys.lastNotGreater(wanted) : keys.equal(wanted);
    if (!place || call.failed())
        return call.failed() ? call.error() : CellError::na;
    return down ? elementOf(call, 1, *place, line - 1) : elementOf(call, 1, line - 1, *place);
}

/// The result stands at the same place of the result vector, or in the last row or column of the array.
Operand lookUp(Call& call)
{
    const Value wanted = wantedValue(call);
    if (call.failed())
        return call.error();
    const auto place = Line::longerSide(call, 1).lastNotGreater(wanted);
    if (!place || call.failed())
        return call.failed() ? call.error() : CellError::na;
    const bool alongRow = call.columns(1) > call.rows(1);
    if (call.count() < 3)
        return alongRow ? elementOf(call, 1, call.rows(1) - 1, *place)
                        : elementOf(call, 1, *place, call.columns(1) - 1);
    if (!call[2].isArea() && !call[2].isArray())
        return *place == 0 ? passedOn(call, 2) : Operand(CellError::na);
    const bool resultAlongRow = call.columns(2) > call.rows(2);
    if (call[2].isArray() && *place >= std::max(call.columns(2), call.rows(2)))
        return CellError::na;
    return resultAlongRow ? elementOf(call, 2, 0, *place) : elementOf(call, 2, *place, 0);
}

Operand match(Call& call)
{
    const Value wanted = wantedValue(call);
    const int kind = call.integer(2, 1);
    if (call.failed())
        return call.error();
    if (call.rows(1) > 1 && call.columns(1) > 1)
        return CellError::na;
    const Line line = Line::longerSide(call, 1);
    const auto place = kind == 0  ? line.equal(wanted)
                       : kind > 0 ? line.lastNotGreater(wanted)
                                  : line.lastNotLess(wanted);
    if (!place || call.failed())
        return call.failed() ? call.error() : CellError::na;
    return *place + 1.0;
}

Operand chooseByNumber(Call& call)
{
    const int number = call.integer(0);
    if (call.failed())
        return call.error();
    if (number < 1 || number >= static_cast<int>(call.count()))
        return CellError::value;
    return passedOn(call, static_cast<std::size_t>(number));
}

/// ROW and COLUMN: a single number, or one for each row or column of a range; without one, of the cells
/// that the formula stands in.
template <bool rows>
Operand positions(Call& call)
{
    const EvaluationPlace& place = call.place();
    CellRange cells{place.cell.column, place.cell.row, place.cell.column + place.columns - 1,
                    place.cell.row + place.rows - 1};
    if (call.given(0)) {
        if (!call[0].isArea())
            return call[0].isValue() && call[0].value().isError() ? call[0] : Operand(CellError::value);
        cells = call[0].area().cells;
    }
    const int first = rows ? cells.top : cells.left;
    const int count = rows ? cells.rows() : cells.columns();
    if (count == 1 || !call.wantsArray())
        return static_cast<double>(first);
    auto numbers = std::make_shared<Array>(rows ? count : 1, rows ? 1 : count);
    for (int i = 0; i < count; ++i)
        numbers->at(rows ? i : 0, rows ? 0 : i) = static_cast<double>(first + i);
    return std::shared_ptr<const Array>(std::move(numbers));
}

template <bool rows>
Operand size(Call& call)
{
    if (call[0].isValue() && call[0].value().isError())
        return call[0];
    if (call[0].isAreas())
        return CellError::ref;
    return static_cast<double>(rows ? call.rows(0) : call.columns(0));
}

Operand areaCount(Call& call)
{
    if (!call[0].isReference())
        return call[0].isValue() && call[0].value().isError() ? call[0] : Operand(CellError::value);
    return static_cast<double>(call[0].areas().size());
}

Operand transposed(Call& call)
{
    const auto array = toArray(call[0], call.place());
    auto result = std::make_shared<Array>(array->columns(), array->rows());
    for (int row = 0; row < array->rows(); ++row) {
        for (int column = 0; column < array->columns(); ++column)
            result->at(column, row) = array->at(row, column);
    }
    return std::shared_ptr<const Array>(std::move(result));
}

/// A link shows its text, or its address if it has none.
Operand hyperlink(Call& call)
{
    if (call.value(0).isError())
        return call.value(0);
    return passedOn(call, call.count() > 1 ? 1 : 0);
}

/// The formula of a cell with its "="; #N/A if it holds none.
Operand formulaText(Call& call)
{
    if (!call[0].isArea())
        return call[0].isValue() && call[0].value().isError() ? call[0] : Operand(CellError::value);
    const Area& area = call[0].area();
    const Book& book = call.place().book;
    const BookSheet& sheet = book.sheet(area.sheet);
    const CellAddress cell{area.cells.left, area.cells.top};
    const std::uint32_t formula = sheet.formula(cell);
    if (formula == 0)
        return CellError::na;
    const bool isArray = book.formulas[formula].isArrayFormula;
    const std::string text = "=" + book.formulas.text(formula, sheet.formulaBase(cell, isArray));
    return Value::text(isArray ? "{" + text + "}" : text);
}

/// Functions whose sources, pivot tables and real-time servers, do not exist here.
template <CellError error>
Operand withoutSource(Call&)
{
    return error;
}

constexpr auto lookupFamily = FunctionFamily::lookup;
constexpr auto unlistedVolatile = static_cast<std::uint8_t>(readsUnlisted | isVolatile);

const FunctionDescriptor lookupTable[] = {
    {"VLOOKUP", 3, 4, "vrvv", lookupFamily, "查找值,数据表,列序号,[近似匹配]",
     "在数据表的首列查找，返回同一行中指定列的值", lookUpInTable<true>},
    {"HLOOKUP", 3, 4, "vrvv", lookupFamily, "查找值,数据表,行序号,[近似匹配]",
     "在数据表的首行查找，返回同一列中指定行的值", lookUpInTable<false>},
    {"LOOKUP", 2, 3, "vaa", lookupFamily, "查找值,查找向量,[结果向量]",
     "在升序的一行或一列中查找，返回结果向量中相同位置的值", lookUp},
    {"INDEX", 2, 4, "avvv", lookupFamily, "区域,行序号,[列序号],[区域序号]",
     "返回区域中指定行列的单元格或整行整列", indexed, placesAsCorner},
    {"MATCH", 2, 3, "vrv", lookupFamily, "查找值,查找区域,[匹配类型]", "返回查找值在一行或一列中的位置",
     match},
    {"CHOOSE", 2, manyArguments, "vv", lookupFamily, "序号,值1,[值2,…]", "按序号从各参数中选取一个值",
     chooseByNumber, branches},
    {"ROW", 0, 1, "c", lookupFamily, "[引用]", "返回引用的行号", positions<true>,
     dependsOnPlace | placesOnly},
    {"COLUMN", 0, 1, "c", lookupFamily, "[引用]", "返回引用的列号", positions<false>,
     dependsOnPlace | placesOnly},
    {"ROWS", 1, 1, "a", lookupFamily, "区域", "返回区域或数组的行数", size<true>, placesOnly},
    {"COLUMNS", 1, 1, "a", lookupFamily, "区域", "返回区域或数组的列数", size<false>, placesOnly},
    {"AREAS", 1, 1, "r", lookupFamily, "引用", "返回引用中包含的区域个数", areaCount, placesOnly},
    {"OFFSET", 3, 5, "rvvvv", lookupFamily, "引用,行偏移,[列偏移],[行数],[列数]",
     "返回从给定引用偏移若干行列的区域", moved, unlistedVolatile | placesOnly},
    {"INDIRECT", 1, 2, "vv", lookupFamily, "引用文本,[A1样式]", "返回文本所指的单元格或区域", referenceOfText,
     unlistedVolatile},
    {"ADDRESS", 2, 5, "vvvvv", lookupFamily, "行号,列号,[引用类型],[A1样式],[工作表名]",
     "按行号和列号返回单元格地址文本", addressText},
    {"HYPERLINK", 1, 2, "vr", lookupFamily, "链接地址,[显示文本]", "返回链接的显示文本", hyperlink},
    {"FORMULATEXT", 1, 1, "r", lookupFamily, "引用", "返回单元格中公式的文本", formulaText,
     isVolatile | asksNoValues},
    {"GETPIVOTDATA", 2, manyArguments, "rr", lookupFamily, "数据字段,数据透视表,[字段和项,…]",
     "返回数据透视表中的数据；本系统没有数据透视表，返回 #REF!", withoutSource<CellError::ref>},
    {"RTD", 3, manyArguments, "v", lookupFamily, "程序标识,服务器,主题,[…]",
     "返回实时数据；本系统没有实时数据源，返回 #N/A", withoutSource<CellError::na>},
    {"TRANSPOSE", 1, 1, "a", lookupFamily, "数组", "返回行列互换的数组", transposed},
};

} // namespace

std::span<const FunctionDescriptor> lookupFunctions()
{
    return lookupTable;
}

} // namespace spreadsheet
