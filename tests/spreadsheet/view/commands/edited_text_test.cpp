#include "spreadsheet/view/commands/edited_text.h"

#include "spreadsheet/workbook/typed_text.h"
#include "spreadsheet/workbook/Workbook.h"

#include <gtest/gtest.h>

namespace spreadsheet {

TEST(EditedText, EnteredAgainGivesTheCellWhatItHad)
{
    struct Case {
        Value value;
        CellType type;
        const char* text;
        const char* format = "";
    };
    const Case cases[] = {
        {Value(0.1), CellType::edit, "0.1"},
        {Value(1.0 / 3), CellType::number, "0.3333333333333333"},
        {Value(1e21), CellType::edit, "1e+21"},
        {Value(0.07), CellType::percent, "7%"},
        {Value(1.0 / 3), CellType::percent, "0.3333333333333333"},
        {Value(46387), CellType::date, "2026-12-31"},
        {Value(46387.5), CellType::date, "46387.5"},
        {Value(0.5), CellType::time, "12:00:00"},
        {Value(-1234.5), CellType::currency, "-1234.5"},
        {Value(1.0625), CellType::time, "1.0625"}, // the type shows the time of a day
        {Value::text("应收"), CellType::edit, "应收"},
        {Value::text("007"), CellType::edit, "'007"},
        {Value::text("=A1"), CellType::edit, "'=A1"},
        {Value::text("'x"), CellType::edit, "''x"},
        {Value::text("SUM(1)"), CellType::edit, "'SUM(1)"},
        {Value::text("TRUE"), CellType::edit, "'TRUE"},
        {Value::text("="), CellType::edit, "="},
        {Value::text("2026年12月"), CellType::edit, "2026年12月"},
        {Value::boolean(true), CellType::edit, "TRUE"},
        {Value(), CellType::edit, ""},
        {Value::text("001"), CellType::edit, "001", "@"},
        {Value::text("12%"), CellType::edit, "12%", "@"},
        {Value::text("=A1"), CellType::edit, "=A1", "@"},
        {Value::text("'x"), CellType::edit, "'x", "@"},
    };
    for (const Case& c : cases) {
        Workbook workbook;
        Sheet& sheet = workbook.sheet(1);
        sheet.restyle({1, 1, 1, 1}, [&](CellStyle& style) {
            style.type = c.type;
            style.numberFormat = Text(c.format);
        });
        sheet.setValue({1, 1}, c.value);
        const std::string text = editedText(workbook, sheet, {1, 1});
        EXPECT_EQ(text, c.text);
        ASSERT_FALSE(enterText(workbook, sheet, {1, 1}, text, TypedInto::cell)) << c.text;
        EXPECT_EQ(sheet.value({1, 1}), c.value) << c.text;
        EXPECT_EQ(sheet.style({1, 1}).type, c.type) << c.text;
    }
}

} // namespace spreadsheet
