// Writes what the scripts beside this one look at: print_samples FOLDER. Made-up reports as PDF/A and .xlsx,
// and a sheet of cells that hold their own names in many set-ups, as PDF and .xlsx; setups.tsv lists the
// set-ups with the last row and column that their pages repeat.
#include "spreadsheet/cells/papers.h"
#include "spreadsheet/files/FileFormats.h"
#include "spreadsheet/print/pdf.h"
#include "spreadsheet/workbook/Workbook.h"

#include <QGuiApplication>

#include <filesystem>
#include <fstream>
#include <functional>
#include <iostream>

using namespace spreadsheet;

namespace {

namespace fs = std::filesystem;

void writePdf(const Workbook& workbook, const std::string& name, bool isArchive, const fs::path& file)
{
    PrintDocument document;
    document.title = QString::fromStdString(name);
    document.author = QStringLiteral("王会计");
    document.subject = QStringLiteral("截止日期 2026-12-31");
    document.isArchive = isArchive;
    document.page.report = name;
    const Pdf pdf = pdfOf(workbook, document);
    std::ofstream(file, std::ios::binary).write(pdf.bytes.constData(), pdf.bytes.size());
}

void writeWorkbook(const Workbook& workbook, const fs::path& file)
{
    for (const std::string& lost : saveWorkbook(workbook, file, fileFormat(".xlsx")))
        std::cerr << file.filename().string() << ": " << lost << '\n';
}

void usePaper(PrintSettings& print, int width, int height)
{
    print.paperWidth = width;
    print.paperHeight = height;
}

// Made-up reports

constexpr const char* customers[] = {
    "华东精密机械制造股份有限公司上海浦东分公司", "北京中关村软件园发展有限责任公司",
    "四川省成都市武侯区人民医院设备采购中心", "广州粤港澳大湾区进出口贸易有限公司"};

void border(Sheet& sheet, const CellRange& range, LineStyle inside, LineStyle outside)
{
    sheet.restyle(range, [&](CellStyle& style) {
        style.left = style.right = style.top = style.bottom = {inside, 0};
    });
    sheet.restyle({range.left, range.top, range.right, range.top}, [&](CellStyle& style) {
        style.top = {outside, 0};
    });
    sheet.restyle({range.left, range.bottom, range.right, range.bottom}, [&](CellStyle& style) {
        style.bottom = {outside, 0};
    });
    sheet.restyle({range.left, range.top, range.left, range.bottom}, [&](CellStyle& style) {
        style.left = {outside, 0};
    });
    sheet.restyle({range.right, range.top, range.right, range.bottom}, [&](CellStyle& style) {
        style.right = {outside, 0};
    });
}

/// A title over headings, names of customers and amounts.
void fillTable(Sheet& sheet, int columns, int rows)
{
    sheet.setText({1, 1}, "往来余额明细表");
    sheet.addSpan({1, 1, columns, 1});
    sheet.restyle({1, 1, columns, 1}, [](CellStyle& style) {
        style.font.points = 16;
        style.font.bold = true;
        style.horizontal = HorizontalAlignment::centre;
    });
    for (int column = 1; column <= columns; ++column)
        sheet.setText({column, 2}, column == 1 ? "单位名称" : "第" + std::to_string(column - 1) + "期");
    for (int row = 3; row <= rows; ++row) {
        sheet.setText({1, row}, customers[row % 4]);
        for (int column = 2; column <= columns; ++column)
            sheet.setNumber({column, row}, row * column * 1234.567 - 50'000);
    }
    sheet.restyle({2, 3, columns, rows}, [](CellStyle& style) {
        style.type = CellType::number;
        style.numberFormat = Text("#,##0.00");
    });
    border(sheet, {1, 2, columns, rows}, LineStyle::fineSolid, LineStyle::solid);
    sheet.changeSettings([&](SheetSettings& settings) {
        settings.columns.sizes[1] = 3600;
        settings.rows.sizes[1] = 500;
        settings.print.header =
            R"(/fn"宋体"/fz"9"/fb0/fi0/fu0/fk0/l编制单位:&报表名/fn"宋体"/fz"9"/fb0/fi0/fu0/fk0/r金额单位:元/n)";
        settings.print.footer = R"(/fn"宋体"/fz"9"/fb0/fi0/fu0/fk0/c第&页数页 共&总页数页/n)";
    });
}

void fillLongNames(Sheet& sheet)
{
    fillTable(sheet, 4, 30);
    sheet.changeSettings([](SheetSettings& settings) { settings.columns.sizes[1] = 1500; });
    for (int row = 3; row <= 30; row += 3)
        sheet.setText({2, row}, "");
}

void fillMerged(Sheet& sheet)
{
    fillTable(sheet, 6, 40);
    for (int row = 3; row < 40; row += 4) {
        sheet.addSpan({1, row, 1, row + 1});
        sheet.addSpan({3, row + 2, 5, row + 3});
    }
}

void fillWrapped(Sheet& sheet)
{
    fillTable(sheet, 3, 25);
    for (int row = 3; row <= 25; ++row)
        sheet.setText({1, row}, std::string(customers[row % 4]) + "——" + customers[(row + 1) % 4] + "\n附注");
    sheet.restyle({1, 3, 1, 25}, [](CellStyle& style) { style.wrap = true; });
}

void fillBigFonts(Sheet& sheet)
{
    fillTable(sheet, 3, 20);
    sheet.restyle({1, 3, 3, 20}, [](CellStyle& style) { style.font.points = 20; });
    sheet.restyle({1, 3, 1, 20}, [](CellStyle& style) { style.font.family = Text("楷体"); });
    sheet.changeSettings([](SheetSettings& settings) {
        settings.columns.sizes = {{1, 6000}, {2, 2600}, {3, 2600}};
    });
}

struct MadeUp {
    const char* name;
    std::function<void(Sheet&)> fill;
    std::function<void(PrintSettings&)> setUp;
};

const MadeUp madeUp[] = {
    {"宽表", [](Sheet& sheet) { fillTable(sheet, 30, 20); }, [](PrintSettings&) {}},
    {"长表重复标题", [](Sheet& sheet) { fillTable(sheet, 5, 400); },
     [](PrintSettings& print) {
         print.titleTop = 1;
         print.titleBottom = 2;
     }},
    {"合并单元格", fillMerged, [](PrintSettings&) {}},
    {"粗边框",
     [](Sheet& sheet) {
         fillTable(sheet, 5, 30);
         border(sheet, {1, 2, 5, 30}, LineStyle::thick, LineStyle::doubled);
     },
     [](PrintSettings&) {}},
    {"换行文字", fillWrapped, [](PrintSettings&) {}},
    {"大字号", fillBigFonts, [](PrintSettings&) {}},
    {"长名称", fillLongNames, [](PrintSettings& print) { print.gridLines = true; }},
    {"两块区域", [](Sheet& sheet) { fillTable(sheet, 12, 60); },
     [](PrintSettings& print) {
         print.area = {{1, 2, 4, 20}, {6, 30, 9, 60}};
     }},
    {"横向A3", [](Sheet& sheet) { fillTable(sheet, 14, 60); },
     [](PrintSettings& print) {
         print.landscape = true;
         usePaper(print, twipsOfMillimetres(297), twipsOfMillimetres(420));
     }},
    {"16K缩小到一页宽", [](Sheet& sheet) { fillTable(sheet, 12, 60); },
     [](PrintSettings& print) {
         print.fitAcross = 1;
         usePaper(print, twipsOfMillimetres(184), twipsOfMillimetres(260));
     }},
    {"连续纸", [](Sheet& sheet) { fillTable(sheet, 8, 80); },
     [](PrintSettings& print) { usePaper(print, twipsOfMillimetres(241), twipsOfMillimetres(139.7)); }},
};

// Set-ups

struct SetUp {
    std::string name;
    std::function<void(PrintSettings&)> change;
};

std::vector<std::vector<SetUp>> dimensions()
{
    const auto none = [](PrintSettings&) {};
    return {
        {{"A4", none},
         {"A3", [](PrintSettings& p) { usePaper(p, twipsOfMillimetres(297), twipsOfMillimetres(420)); }},
         {"Letter", [](PrintSettings& p) { usePaper(p, 12'240, 15'840); }}},
        {{"upright", none}, {"landscape", [](PrintSettings& p) { p.landscape = true; }}},
        {{"100", none},
         {"60", [](PrintSettings& p) { p.scale = 60; }},
         {"fit-1-wide", [](PrintSettings& p) { p.fitAcross = 1; }},
         {"fit-2x1", [](PrintSettings& p) { p.fitAcross = 2, p.fitDown = 1; }}},
        {{"", none},
         {"titles", [](PrintSettings& p) { p.titleTop = p.titleBottom = p.titleLeft = p.titleRight = 1; }}},
        {{"over", none}, {"down", [](PrintSettings& p) { p.downFirst = true; }}},
        {{"", none},
         {"breaks",
          [](PrintSettings& p) {
              p.rowBreaks = {{8, true}, {31, true}}, p.columnBreaks = {{5, true}};
          }}},
        {{"", none},
         {"area",
          [](PrintSettings& p) {
              p.area = {{2, 3, 9, 70}};
          }},
         {"two-areas", [](PrintSettings& p) {
              p.area = {{2, 3, 3, 80}, {5, 40, 7, 41}};
          }}}};
}

/// Sizes of which no paper takes nearly a whole number: programs round them otherwise.
void fillNames(Sheet& sheet)
{
    for (int row = 1; row <= 90; ++row)
        for (int column = 1; column <= 12; ++column)
            sheet.setText({column, row}, cellName({column, row}));
    sheet.changeSettings([](SheetSettings& settings) {
        settings.rowCount = 90;
        settings.columnCount = 12;
        settings.columns.defaultSize = 1400;
        settings.rows.defaultSize = 410;
        for (int row = 1; row <= 90; ++row)
            settings.rows.sizes[row] = 410;
    });
}

/// Every seventh of all combinations: each pair of choices comes up.
void writeSetUps(const fs::path& folder)
{
    constexpr std::size_t step = 7;
    const auto all = dimensions();
    std::size_t count = 1;
    for (const auto& choices : all)
        count *= choices.size();
    std::ofstream list(folder / "setups.tsv");
    for (std::size_t number = 0; number < count; number += step) {
        Workbook workbook;
        Sheet& sheet = workbook.sheet(1);
        fillNames(sheet);
        std::string name = std::to_string(number);
        sheet.changeSettings([&](SheetSettings& settings) {
            std::size_t rest = number;
            for (const auto& choices : all) {
                const SetUp& chosen = choices[rest % choices.size()];
                rest /= choices.size();
                chosen.change(settings.print);
                name += chosen.name.empty() ? "" : "-" + chosen.name;
            }
        });
        writePdf(workbook, name, false, folder / (name + ".pdf"));
        writeWorkbook(workbook, folder / (name + ".xlsx"));
        const PrintSettings& print = sheet.settings().print;
        list << name << '\t' << print.titleBottom << '\t' << print.titleRight << '\n';
    }
}

void writeMadeUp(const fs::path& folder)
{
    for (const MadeUp& report : madeUp) {
        Workbook workbook;
        report.fill(workbook.sheet(1));
        workbook.sheet(1).changeSettings([&](SheetSettings& settings) { report.setUp(settings.print); });
        writePdf(workbook, report.name, true, folder / (std::string(report.name) + ".pdf"));
        writeWorkbook(workbook, folder / (std::string(report.name) + ".xlsx"));
    }
}

} // namespace

int main(int count, char** arguments)
{
    if (count != 2) {
        std::cerr << "print_samples FOLDER\n";
        return 2;
    }
    qputenv("QT_QPA_PLATFORM", "offscreen");
    const QGuiApplication application(count, arguments);
    try {
        const fs::path folder = arguments[1];
        fs::create_directories(folder / "reports");
        fs::create_directories(folder / "setups");
        writeMadeUp(folder / "reports");
        writeSetUps(folder / "setups");
        return 0;
    } catch (const std::exception& failure) {
        std::cerr << failure.what() << '\n';
        return 1;
    }
}
