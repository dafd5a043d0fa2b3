// Times page layout and PDF files against their bounds.
#include "bench/bench_table.h"
#include "spreadsheet/print/pdf.h"
#include "spreadsheet/print/PreviewWidget.h"
#include "spreadsheet/workbook/Workbook.h"

#include <QApplication>
#include <QFile>

#include <cmath>

using namespace spreadsheet;

namespace {

/// A journal of eight columns as companies print it: a title, headings in grey, dates, texts and amounts
/// with borders around every cell.
void fillJournal(Workbook& workbook, int rows)
{
    Sheet& sheet = workbook.sheet(1);
    sheet.changeSettings([&](SheetSettings& settings) {
        settings.rowCount = rows;
        settings.columns.sizes = {{1, 900},  {2, 700},  {3, 1900}, {4, 2300},
                                  {5, 1200}, {6, 1200}, {7, 1200}, {8, 700}};
        settings.print.header = "/fn\"黑体\"/fz\"14\"/fb1/fi0/fu0/fk0/c明细账/n";
        settings.print.footer = "/fn\"宋体\"/fz\"9\"/fb0/fi0/fu0/fk0/r/p/n";
        settings.print.titleTop = settings.print.titleBottom = 1;
    });
    const char* headings[] = {"日期", "凭证", "科目", "摘要", "借方", "贷方", "余额", "方向"};
    for (int column = 1; column <= 8; ++column)
        sheet.setText({column, 1}, headings[column - 1]);
    const char* accounts[] = {"1002 银行存款", "1122 应收账款", "5001 主营业务收入", "6602 管理费用"};
    const char* texts[] = {"收回甲公司货款", "报销差旅费", "结转本月销售成本", "计提固定资产折旧"};
    for (int row = 2; row <= rows; ++row) {
        sheet.setNumber({1, row}, 45658 + row % 365);
        sheet.setText({2, row}, "记-" + std::to_string(row % 400 + 1));
        sheet.setText({3, row}, accounts[row % 4]);
        sheet.setText({4, row}, texts[row / 3 % 4]);
        for (int column = 5; column <= 7; ++column)
            sheet.setNumber({column, row}, std::fmod(row * 137.31 * column, 99999));
        sheet.setText({8, row}, row % 2 ? "借" : "贷");
    }
    const CellRange all{1, 1, 8, rows};
    sheet.restyle(all, [](CellStyle& style) {
        style.font.family = Text("宋体");
        style.left = style.right = style.top = style.bottom = {LineStyle::solid, 0};
    });
    sheet.restyle({5, 2, 7, rows}, [](CellStyle& style) { style.type = CellType::number; });
    sheet.restyle({1, 2, 1, rows}, [](CellStyle& style) { style.type = CellType::date; });
    sheet.restyle({1, 1, 8, 1}, [](CellStyle& style) {
        style.font.bold = true;
        style.background = 0xD0D0D0;
        style.horizontal = HorizontalAlignment::centre;
    });
}

} // namespace

int main(int argc, char** argv)
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    const QApplication application(argc, argv);
    BenchTable table("printing");
    Workbook longSheet;
    fillJournal(longSheet, 100'000);
    int pages = 0;
    const double counting = bestSeconds(
        5, [] {}, [&] { pages = PageLayout(longSheet.sheet(1), PageRequest()).pageCount(); });
    table.row("page count of 100,000 rows", counting * 1000, 50, "ms");
    std::printf("   (%d pages)\n", pages);

    const double showing = bestSeconds(
        40, [] {},
        [&] {
            PreviewWidget preview;
            preview.resize(1280, 800);
            preview.attach(longSheet, 1);
            preview.grab();
        });
    table.row("first page of its preview", showing * 1000, 5, "ms");

    Workbook journal;
    fillJournal(journal, 10'000);
    Pdf pdf;
    const double writing = bestSeconds(
        3, [] {}, [&] { pdf = pdfOf(journal, {}); });
    pages = pdf.pages;
    table.row("a page of a PDF of 10,000 rows and 8 columns, formatted", writing * 1000 / pages, 1.2, "ms");
    table.row("its size", static_cast<double>(pdf.bytes.size()) / 1e6, 3, "MB");
    std::printf("   (%d pages)\n", pages);
    if (QFile kept(argc > 1 ? QString::fromLocal8Bit(argv[1]) : QString());
        argc > 1 && kept.open(QIODevice::WriteOnly))
        kept.write(pdf.bytes);
    return table.finish();
}
