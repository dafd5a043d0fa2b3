#include "spreadsheet/calculation/Call.h"
#include "spreadsheet/cells/Book.h"
#include "spreadsheet/formula/ReferenceSlot.h"
#include "spreadsheet/functions/function_families.h"
#include "spreadsheet/functions/information/cell_format_code.h"
#include "spreadsheet/values/folding.h"

#include <algorithm>

namespace spreadsheet {

// What CELL tells is a table: a name and a function of the described cell. What a sheet has no business to
// know, such as the machine's memory, is answered with #N/A instead of a made-up figure.

namespace {

/// The first cell of a reference, which CELL and its like describe.
struct DescribedCell {
    const Book& book;
    int sheet;
    CellAddress cell;
    int ownSheet; ///< of the formula

    const BookSheet& sheetOf() const { return book.sheet(sheet); }
    Value value() const { return cellValue(book, sheet, cell); }
    const CellStyle& style() const { return book.style(sheetOf(), cell); }
};

Operand address(const DescribedCell& described)
{
    const CellAddress& cell = described.cell;
    std::string text = described.sheet == described.ownSheet ? "" : sheetPrefix(described.sheetOf().name());
    text += "$" + columnName(cell.column) + "$" + std::to_string(cell.row);
    return Value::text(text);
}

Operand contents(const DescribedCell& described)
{
    const Value value = described.value();
    return value.isEmpty() ? Operand(0.0) : Operand(value);
}

/// "b" for an empty cell, "l" for a text, "v" for anything else.
Operand kindLetter(const DescribedCell& described)
{
    const Value value = described.value();
    return Value::text(value.isEmpty() ? "b" : value.isText() ? "l" : "v");
}

/// How a text stands: "'" left, '"' right, "^" centred; nothing for other values.
Operand alignmentSign(const DescribedCell& described)
{
    if (!described.value().isText())
        return Value::text("");
    switch (described.style().horizontal) {
    case HorizontalAlignment::right:
        return Value::text("\"");
    case HorizontalAlignment::centre:
        return Value::text("^");
    default:
        return Value::text("'");
    }
}

/// In digits of the default font, of about 120 twips each.
Operand width(const DescribedCell& described)
{
    constexpr double digitWidth = 120;
    return std::round(described.sheetOf().settings.columns.size(described.cell.column) / digitWidth);
}

/// A workbook does not know its file; the brackets keep formulas right that cut the sheet's name out.
Operand place(const DescribedCell& described)
{
    return Value::text("[]" + described.sheetOf().name());
}

/// One kind of information.
struct CellProperty {
    std::string_view name;
    Operand (*describe)(const DescribedCell& described);
};

constexpr CellProperty properties[] = {
    {"address", address},
    {"col",
     [](const DescribedCell& described) -> Operand { return static_cast<double>(described.cell.column); }},
    {"row",
     [](const DescribedCell& described) -> Operand { return static_cast<double>(described.cell.row); }},
    {"contents", contents},
    {"type", kindLetter},
    {"prefix", alignmentSign},
    {"width", width},
    {"protect",
     [](const DescribedCell& described) -> Operand { return described.style().locked ? 1.0 : 0.0; }},
    {"filename", place},
    {"format",
     [](const DescribedCell& described) -> Operand {
         return Value::text(formatCodeLetters(described.style()));
     }},
    {"color",
     [](const DescribedCell& described) -> Operand {
         return negativesColoured(described.style()) ? 1.0 : 0.0;
     }},
    {"parentheses",
     [](const DescribedCell& described) -> Operand {
         return positivesInBrackets(described.style()) ? 1.0 : 0.0;
     }},
};

Operand cellInformation(Call& call)
{
    const std::string name = foldedText(call.text(0));
    if (call.failed())
        return call.error();
    const EvaluationPlace& place = call.place();
    DescribedCell described{place.book, place.sheet, place.cell, place.sheet};
    if (call.given(1)) {
        if (!call[1].isReference())
            return call[1].isValue() && call[1].value().isError() ? call[1] : Operand(CellError::value);
        const Area area = call[1].areas().front();
        described.sheet = area.sheet;
        described.cell = {area.cells.left, area.cells.top};
    }
    const auto property = std::ranges::find(properties, name, &CellProperty::name);
    return property == std::end(properties) ? Operand(CellError::value) : property->describe(described);
}

/// About the program and the machine; what a sheet has no business to know is #N/A.
Operand programInformation(Call& call)
{
    const std::string name = foldedText(call.text(0));
    if (call.failed())
        return call.error();
    if (name == "numfile")
        return static_cast<double>(call.place().book.sheetCount());
    if (name == "recalc")
        return Value::text("Automatic");
    if (name == "origin")
        return Value::text("$A:$A$1");
    if (name == "system")
#ifdef _WIN32
        return Value::text("pcdos");
#else
        return Value::text("LINUX");
#endif
    if (name == "release" || name == "osversion" || name == "directory" || name == "memavail" ||
        name == "memused" || name == "totmem")
        return CellError::na;
    return CellError::value;
}

Operand isFormula(Call& call)
{
    if (!call[0].isReference())
        return call[0].isValue() && call[0].value().isError() ? call[0] : Operand(CellError::value);
    const Area area = call[0].areas().front();
    return truth(call.place().book.sheet(area.sheet).formula({area.cells.left, area.cells.top}) != 0);
}

Operand sheetNumber(Call& call)
{
    if (!call.given(0))
        return static_cast<double>(call.place().sheet);
    if (call[0].isReference())
        return static_cast<double>(call[0].areas().front().sheet);
    const Value value = call.value(0);
    if (value.isError())
        return value;
    const int index = value.isText() ? call.place().book.sheetIndex(value.textView()) : 0;
    return index > 0 ? Operand(static_cast<double>(index)) : Operand(CellError::na);
}

Operand sheetCount(Call& call)
{
    if (!call.given(0))
        return static_cast<double>(call.place().book.sheetCount());
    if (!call[0].isReference())
        return call[0].isValue() && call[0].value().isError() ? call[0] : Operand(CellError::na);
    std::vector<int> sheets;
    for (const Area& area : call[0].areas())
        sheets.push_back(area.sheet);
    std::ranges::sort(sheets);
    return static_cast<double>(std::unique(sheets.begin(), sheets.end()) - sheets.begin());
}

constexpr auto cellInformationFamily = FunctionFamily::information;

const FunctionDescriptor cellInformationTable[] = {
    {"CELL", 1, 2, "vr", cellInformationFamily, "信息类型,[引用]", "返回单元格的地址、内容、格式等信息",
     cellInformation, isVolatile | dependsOnPlace | asksNoValues},
    {"INFO", 1, 1, "v", cellInformationFamily, "信息类型", "返回当前运行环境的信息", programInformation,
     isVolatile},
    {"ISFORMULA", 1, 1, "r", cellInformationFamily, "引用", "单元格含公式时返回 TRUE", isFormula,
     asksNoValues},
    {"SHEET", 0, 1, "r", cellInformationFamily, "[引用或表名]", "返回工作表的序号", sheetNumber,
     isVolatile | dependsOnPlace | placesOnly},
    {"SHEETS", 0, 1, "r", cellInformationFamily, "[引用]", "返回工作表的个数", sheetCount,
     isVolatile | placesOnly},
};

} // namespace

std::span<const FunctionDescriptor> cellInformationFunctions()
{
    return cellInformationTable;
}

} // namespace spreadsheet
