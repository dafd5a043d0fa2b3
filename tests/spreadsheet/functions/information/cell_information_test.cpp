#include "tests/spreadsheet/functions/FormulaSheet.h"

using namespace spreadsheet;

TEST(CellInformation, AddressContentsAndKind)
{
    FormulaSheet sheet{{"B2", "=1+1"}, {"B3", "文本"}, {"B4", "7"}};
    demand(sheet.workbook().addSheet("二月"));
    sheet.expect({
        {"CELL(\"Address\",B2:C5)", "\"$B$2\""},
        {"CELL(\"address\",二月!C1)", "\"二月!$C$1\""},
        {"CELL(\"row\",B2)&CELL(\"col\",B4)", "\"22\""},
        {"CELL(\"row\")", "99"},
        {"CELL(\"contents\",B2)", "2"},
        {"CELL(\"type\",B3)&CELL(\"type\",B4)&CELL(\"type\",B5)", "\"lvb\""},
        {"CELL(\"prefix\",B3)&CELL(\"prefix\",B4)", "\"'\""},
        {"CELL(\"width\",B4)", "9"},
        {"MID(CELL(\"filename\",B4),FIND(\"]\",CELL(\"filename\",B4))+1,99)", "\"Sheet1\""},
        {"CELL(\"nothing\",B4)", "#VALUE!"},
        {"CELL(\"row\",7)", "#VALUE!"},
        {"INFO(\"numfile\")", "2"},
        {"INFO(\"directory\")", "#N/A"},
        {"INFO(\"nothing\")", "#VALUE!"},
        {"ISFORMULA(B2)&ISFORMULA(B4)", "\"TRUEFALSE\""},
        {"ISFORMULA(7)", "#VALUE!"},
        {"SHEET()&SHEET(\"二月\")&SHEET(二月!A1)&SHEETS()&SHEETS(Sheet1:二月!A1)", "\"12222\""},
        {"SHEET(\"三月\")", "#N/A"},
    });
}

TEST(CellInformation, FormatLetters)
{
    struct Case {
        const char* code; ///< empty: the type decides
        CellType type;
        const char* letters;
    };
    const Case cases[] = {
        {"", CellType::edit, "G"},
        {"", CellType::currency, "C2"},
        {"", CellType::number, "F3"},
        {"General", CellType::edit, "G"},
        {"0", CellType::edit, "F0"},
        {"#,##0.00", CellType::edit, ",2"},
        {"¥#,##0.00;[Red]-¥#,##0.00", CellType::edit, "C2-"},
        {"(0.0);(-0.0)", CellType::edit, "F1()"},
        {"0.00%", CellType::edit, "P2"},
        {"0.00E+00", CellType::edit, "S2"},
        {"d-mmm-yy", CellType::edit, "D1"},
        {"d-mmm", CellType::edit, "D2"},
        {"mmm-yy", CellType::edit, "D3"},
        {"yyyy-mm-dd hh:mm", CellType::edit, "D4"},
        {"mm/dd", CellType::edit, "D5"},
        {"h:mm:ss AM/PM", CellType::edit, "D6"},
        {"h:mm", CellType::edit, "D9"},
    };
    FormulaSheet sheet{{"A1", "1"}};
    for (const Case& c : cases) {
        CellStyle style;
        style.type = c.type;
        style.decimals = 3;
        style.numberFormat = Text(c.code);
        sheet.workbook().sheet(1).setStyle({1, 1}, style);
        EXPECT_EQ(sheet.evaluate("CELL(\"format\",A1)"), '"' + std::string(c.letters) + '"') << c.code;
    }
}
