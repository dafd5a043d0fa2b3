#pragma once
#include "spreadsheet/workbook/Workbook.h"

#include <stdexcept>
#include <string>
#include <vector>

namespace spreadsheet {

inline CellStyle sampleStyle(int number)
{
    static constexpr std::array types{CellType::edit,    CellType::number,  CellType::date,
                                      CellType::time,    CellType::percent, CellType::scientific,
                                      CellType::currency};
    CellStyle style;
    style.type = types[static_cast<std::size_t>(number) % types.size()];
    style.decimals = static_cast<std::uint8_t>(number % 4);
    if (style.type != CellType::number)
        style.decimals = CellStyle().decimals;
    style.horizontal = static_cast<HorizontalAlignment>(number % 4);
    style.vertical = static_cast<VerticalAlignment>(number % 3);
    style.wrap = number % 2;
    style.locked = number % 5 == 1;
    style.foreground = number % 3 == 0 ? automaticColour : 0x102030u * static_cast<unsigned>(number % 7);
    style.background =
        number % 4 == 0 ? automaticColour : 0xFFEE00u - static_cast<unsigned>(number % 9) * 0x111u;
    style.font = {Text(number % 2 ? "宋体" : "Arial"),
                  static_cast<float>(9 + number % 5) + (number % 2 ? 0.5f : 0.0f),
                  number % 2 == 0,
                  number % 3 == 0,
                  number % 5 == 0,
                  number % 7 == 0};
    static constexpr std::array lines{
        LineStyle::none,        LineStyle::solid,          LineStyle::dash,     LineStyle::dashDot,
        LineStyle::dashDotDot,  LineStyle::fineSolid,      LineStyle::fineDash, LineStyle::fineDot,
        LineStyle::fineDashDot, LineStyle::fineDashDotDot, LineStyle::thick,    LineStyle::doubled};
    const auto line = [&](int side) {
        const LineStyle chosen = lines[static_cast<std::size_t>(number + side) % lines.size()];
        return chosen == LineStyle::none ? BorderLine() : BorderLine{chosen, side % 2 ? 0x336699u : 0u};
    };
    style.left = line(0);
    style.right = line(1);
    style.top = line(2);
    style.bottom = line(3);
    if (number % 6 == 5) {
        style.type = CellType::number;
        style.decimals = 2;
        style.numberFormat = Text("#,##0.00_);[Red]\\(#,##0.00\\)");
    }
    return style;
}

/// Formulas of every kind of token, as they are to come back letter by letter.
inline const std::vector<std::string>& sampleFormulas()
{
    static const std::vector<std::string> formulas{
        "A1+B$2-$C3*$D$4/2^3",
        "(A1+1)*-B2%",
        "A1&\"中\"\"文\"&B2",
        "A1<=B1",
        "IF(A1>=1,\"是\",\"否\")",
        "IF(A1<>0,,1)",
        "SUM(A1:C9)",
        "SUM(A:C,2:3)",
        "SUM((A1:A2,C1:C2))",
        "SUM(A1:C3 B2:D4)",
        "SUM(数据!A1:B2)+数据!$C$3",
        "SUM('2月 调整:数据'!B2)",
        "VLOOKUP(A1,数据!A1:C9,2,FALSE)",
        "INDEX(A1:C3,2,COLUMN())",
        "SUMPRODUCT({1,2.5;-3,4}*1)",
        "MATCH(\"x\",{\"a\",\"x\"},0)",
        "#REF!+1",
        "ISERROR(#N/A)",
        "NOT(TRUE)",
        "税率*100",
        "Acct(\"1001\",\"1\", \"RMB\", \"2009\",\"1\",\"3\")",
        "REF_F(\"资产负债表\",\"B12\", \"1\")",
        "EOMONTH(A1,1)",
        "ROUND(1.5E+30,2)",
        "1E-05",
        "TODAY()>NOW()",
        "SUBTOTAL(9,A1:A5)",
        "COUNTIF(A1:A9,\">0\")",
    };
    return formulas;
}

/// Lists of single cells, of neighbours, and of a whole column but for one cell.
inline void fillDropDowns(Sheet& sheet)
{
    CellStyle style;
    style.type = CellType::dropDown;
    style.font.family = Text("宋体");
    CellStyle money = style;
    money.numberFormat = Text("#,##0.00");
    const DropDownEntries units(std::vector<std::string>{"个", "箱", "10\"x"});
    const DropDownEntries currencies(std::vector<std::string>{"RMB", "USD"});
    for (const CellAddress at : {CellAddress{9, 40}, {10, 40}, {9, 41}, {10, 41}, {9, 43}})
        sheet.setStyle(at, at.row == 43 ? money : style);
    sheet.setText({9, 40}, "箱");
    sheet.setNumber({9, 43}, 1234.5);
    sheet.setStyle({14, 3}, style);
    sheet.setText({14, 3}, "USD");
    sheet.changeSettings([&](SheetSettings& settings) {
        settings.columnStyles[14] = sheet.styleNumber({14, 3});
        settings.dropDowns = {{{9, 40}, units},  {{10, 40}, units},     {{9, 41}, units},
                              {{10, 41}, units}, {{9, 43}, currencies}, {{14, 0}, currencies}};
    });
}

/// A workbook with something of everything that travels.
inline void fillSample(Workbook& workbook)
{
    demand(workbook.renameSheet(1, "报表"));
    demand(workbook.addSheet("2月 调整"));
    demand(workbook.addSheet("数据"));
    demand(workbook.defineName("税率", "数据!$B$1"));
    Sheet& sheet = workbook.sheet(1);
    for (int i = 0; i < 40; ++i) {
        sheet.setStyle({1 + i % 6, 1 + i / 6}, sampleStyle(i));
        if (i % 3 != 2)
            sheet.setNumber({1 + i % 6, 1 + i / 6}, i * 1.25 - 3);
    }
    sheet.setText({3, 1}, "文本 & <标签> \"引号\"");
    sheet.setText({6, 1}, "两\n行");
    sheet.setValue({3, 2}, Value::boolean(true));
    sheet.setValue({6, 2}, CellError::div0);
    sheet.setNumber({3, 3}, 1e300);
    for (std::size_t i = 0; i < sampleFormulas().size(); ++i)
        if (sheet.setFormula({9, static_cast<int>(i) + 1}, sampleFormulas()[i]))
            throw std::logic_error(sampleFormulas()[i]);
    demand(sheet.setArrayFormula({11, 1, 12, 2}, "A1:B2*2"));
    sheet.addSpan({2, 12, 4, 13});
    sheet.setText({2, 12}, "合并");
    for (int number = 1; number <= workbook.sheetCount(); ++number)
        workbook.sheet(number).changeSettings([](SheetSettings& settings) {
            settings.print.paperWidth = 11906; // A4, which files name for sheets without a paper of their own
            settings.print.paperHeight = 16838;
        });
    sheet.changeSettings([&](SheetSettings& settings) {
        settings.rows.sizes = {{1, 600}, {5, 300}};
        settings.columns.sizes = {{1, 2400}, {3, 750}};
        settings.rows.hidden = {{20, true}};
        settings.columns.hidden = {{7, true}};
        settings.frozenRows = 2;
        settings.frozenColumns = 1;
        settings.notes = {{{1, 1}, "说明"}, {{3, 5}, "第一行\n第二行"}};
        settings.print.landscape = true;
        settings.print.marginLeft = 720;
        settings.print.titleTop = 1;
        settings.print.titleBottom = 2;
        settings.print.centredAcross = true;
        settings.print.gridLines = true;
        settings.print.fitAcross = 1;
        settings.print.fitDown = 3;
        settings.print.downFirst = true;
        settings.print.firstPage = 7;
        settings.print.rowBreaks = {{8, true}};
        settings.print.columnBreaks = {{4, true}};
        settings.print.header =
            "/fn\"宋体\"/fz\"12\"/fb1/fi0/fu1/fk0/c利润表/n/fn\"宋体\"/fz\"9\"/fb0/fi0/fu0/fk0/r/p/n";
        settings.print.footer = "/fn\"Arial\"/fz\"8\"/fb0/fi1/fu0/fk1/l12 & 3/n";
    });
    fillDropDowns(sheet);
    workbook.sheet(3).setNumber({2, 1}, 0.13);
    workbook.sheet(3).changeSettings([](SheetSettings& settings) { settings.isHidden = true; });
    workbook.setActiveSheet(2);
    workbook.recalculate();
}

} // namespace spreadsheet
