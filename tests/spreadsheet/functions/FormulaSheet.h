#pragma once
#include "spreadsheet/display/display_text.h"
#include "spreadsheet/values/decimal.h"
#include "spreadsheet/values/decimal_text.h"
#include "spreadsheet/values/number_text.h"
#include "spreadsheet/workbook/Workbook.h"

#include <gtest/gtest.h>
#include <initializer_list>
#include <string>
#include <utility>
#include <vector>

namespace spreadsheet {

/// A formula without "=" and the value that it must yield, as valueText shows it.
struct FormulaCase {
    std::string formula;
    std::string expected;
};

/// Twelve significant digits of a number, a text in quotes, TRUE and FALSE, an error's text.
inline std::string valueText(const Value& value)
{
    switch (value.kind()) {
    case ValueKind::empty:
        return "empty";
    case ValueKind::number: {
        Decimal shown = shownDecimal(value.number());
        shown.roundToSignificant(12);
        return generalNumberText(shown.number());
    }
    case ValueKind::text:
        return '"' + std::string(value.textView()) + '"';
    case ValueKind::boolean:
        return value.boolean() ? "TRUE" : "FALSE";
    case ValueKind::error:
        return std::string(errorText(value.error()));
    }
    return {};
}

/// A workbook whose first sheet is filled from texts: "=…" is a formula, "'…" a text, "TRUE", "#N/A"
/// and numbers are what they say, anything else is a text.
class FormulaSheet {
public:
    FormulaSheet(std::initializer_list<std::pair<std::string, std::string>> cells = {})
    {
        for (const auto& [name, content] : cells)
            put(name, content);
    }

    Workbook& workbook() { return m_workbook; }

    void put(const std::string& name, const std::string& content)
    {
        Sheet& sheet = m_workbook.sheet(1);
        const CellAddress cell = *parseCellName(name);
        if (content.starts_with('='))
            EXPECT_FALSE(sheet.setFormula(cell, content)) << content;
        else if (content.starts_with('\''))
            sheet.setText(cell, content.substr(1));
        else if (const auto number = parseNumber(content))
            sheet.setNumber(cell, *number);
        else if (const auto error = parseErrorText(content))
            sheet.setValue(cell, *error);
        else if (content == "TRUE" || content == "FALSE")
            sheet.setValue(cell, Value::boolean(content == "TRUE"));
        else
            sheet.setText(cell, content);
    }

    /// The value of a formula in a cell, ZZ99 unless told.
    std::string evaluate(const std::string& formula, CellAddress cell = {702, 99})
    {
        Sheet& sheet = m_workbook.sheet(1);
        if (const auto problem = sheet.setFormula(cell, formula))
            return "refused: " + problem.reason();
        m_workbook.recalculate();
        return valueText(sheet.value(cell));
    }

    void expect(const std::vector<FormulaCase>& cases)
    {
        for (const FormulaCase& c : cases)
            EXPECT_EQ(evaluate(c.formula), c.expected) << c.formula;
    }

private:
    Workbook m_workbook;
};

} // namespace spreadsheet
