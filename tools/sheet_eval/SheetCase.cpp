#include "tools/sheet_eval/SheetCase.h"

#include "spreadsheet/formula/ReferenceSlot.h"
#include "spreadsheet/values/Array.h"

#include <nlohmann/json.hpp>

#include <ostream>

namespace spreadsheet {

namespace {

using Json = nlohmann::json;

/// A member that must be there or may be left out (`fallback`), of one kind.
const Json& member(const Json& object, const char* name, Json::value_t kind, const Json* fallback = nullptr)
{
    const auto found = object.find(name);
    if (found == object.end()) {
        if (fallback)
            return *fallback;
        throw CaseError(std::string("\"") + name + "\" is missing");
    }
    if (found->type() != kind)
        throw CaseError(std::string("\"") + name + "\" is no " + Json(kind).type_name());
    return *found;
}

const std::string& textOf(const Json& value, const std::string& what)
{
    if (!value.is_string())
        throw CaseError(what + " is no text");
    return value.get_ref<const std::string&>();
}

} // namespace

SheetCase::SheetCase(const Json& request, std::ostream& notes)
    : m_notes(notes)
{
    using Kind = Json::value_t;
    static const Json none = Json::object();
    static const Json no = false;
    if (!request.is_object())
        throw CaseError("the line is no object");
    const Json& sheets = member(request, "sheets", Kind::array);
    m_workbook.setCountsFrom1904(member(request, "date1904", Kind::boolean, &no).get<bool>());
    addSheets(sheets);
    defineNames(member(request, "names", Kind::object, &none));
    for (std::size_t i = 0; i < sheets.size(); ++i)
        fillCells(static_cast<int>(i) + 1, member(sheets[i], "cells", Kind::object, &none));
    for (const auto& [reference, formula] : member(request, "arrays", Kind::object, &none).items())
        fillArray(reference, formula);
    for (const Json& wanted : member(request, "want", Kind::array)) {
        const std::string& name = textOf(wanted, "an element of \"want\"");
        std::string_view reference = name;
        const int sheet = takeSheet(name, reference);
        const auto cell = parseCellName(reference);
        if (!cell)
            throw CaseError("no cell: " + name);
        m_wanted.push_back({name, sheet, *cell});
    }
}

void SheetCase::addSheets(const Json& sheets)
{
    if (sheets.empty())
        throw CaseError("\"sheets\" is empty");
    for (std::size_t i = 0; i < sheets.size(); ++i) {
        if (!sheets[i].is_object())
            throw CaseError("an element of \"sheets\" is no object");
        const std::string& name = textOf(member(sheets[i], "name", Json::value_t::string), "\"name\"");
        const auto refused = i == 0 ? m_workbook.renameSheet(1, name) : m_workbook.addSheet(name);
        if (refused)
            throw CaseError(name + ": " + refused.reason());
    }
}

void SheetCase::defineNames(const Json& names)
{
    for (const auto& [name, formula] : names.items()) {
        if (const auto problem = m_workbook.defineName(name, textOf(formula, name)))
            throw CaseError(name + ": " + problem.reason());
    }
}

void SheetCase::fillCells(int sheet, const Json& cells)
{
    for (const auto& [name, content] : cells.items()) {
        const auto cell = parseCellName(name);
        if (!cell)
            throw CaseError("no cell: " + name);
        fillCell(m_workbook.sheet(sheet), *cell, content);
    }
}

void SheetCase::fillCell(Sheet& sheet, CellAddress cell, const Json& content)
{
    if (content.is_number())
        return sheet.setNumber(cell, content.get<double>());
    if (content.is_boolean())
        return sheet.setValue(cell, Value::boolean(content.get<bool>()));
    const std::string& text = textOf(content, cellName(cell));
    if (text.starts_with('=')) {
        if (const auto problem = sheet.setFormula(cell, text)) {
            noteRefused(sheetPrefix(sheet.name()) + cellName(cell), problem);
            sheet.setValue(cell, CellError::name);
        }
    } else if (const auto error = parseErrorText(text)) {
        sheet.setValue(cell, *error);
    } else {
        sheet.setText(cell, std::string_view(text).substr(text.starts_with('\'') ? 1 : 0));
    }
}

void SheetCase::fillArray(const std::string& reference, const Json& formula)
{
    std::string_view cells = reference;
    Sheet& sheet = m_workbook.sheet(takeSheet(reference, cells));
    const auto range = parseRangeName(cells);
    if (!range)
        throw CaseError("no range: " + reference);
    if (static_cast<std::size_t>(range->rows()) * static_cast<std::size_t>(range->columns()) >
        maxArrayElements)
        throw CaseError("an array formula over too many cells: " + reference);
    if (const auto problem = sheet.setArrayFormula(*range, textOf(formula, reference))) {
        noteRefused(reference, problem);
        for (int row = range->top; row <= range->bottom; ++row) {
            for (int column = range->left; column <= range->right; ++column)
                sheet.setValue({column, row}, CellError::name);
        }
    }
}

void SheetCase::noteRefused(const std::string& place, const Refusal& problem)
{
    m_notes << place << ": " << problem.reason() << " (" << problem.position() << ")\n";
}

int SheetCase::takeSheet(const std::string& whole, std::string_view& reference) const
{
    const auto name = takeSheetName(reference);
    const int sheet = name ? m_workbook.sheetIndex(*name) : 0;
    if (sheet == 0)
        throw CaseError("no sheet: " + whole);
    return sheet;
}

} // namespace spreadsheet
