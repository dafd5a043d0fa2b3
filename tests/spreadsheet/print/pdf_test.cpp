#include "spreadsheet/print/PageText.h"
#include "spreadsheet/print/pdf.h"
#include "spreadsheet/workbook/Workbook.h"
#include "tests/CommaLocale.h"
#include "tests/spreadsheet/print/pdf_pictures.h"

#include <gtest/gtest.h>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QFontDatabase>
#include <QImage>
#include <QPdfWriter>
#include <QPrinter>
#include <QProcess>
#include <QRawFont>
#include <QRegularExpression>
#include <QStringDecoder>
#include <QTemporaryDir>

#include <algorithm>

namespace spreadsheet {
namespace {

/// What a reader's text search would meet on the pages from..to.
QString textOf(const QString& path, int from = 1, int to = 9999)
{
    return run("pdftotext", {"-layout", "-enc", "UTF-8", "-f", QString::number(from), "-l",
                             QString::number(to), path, "-"})
        .second;
}

QString withoutBlanks(QString text)
{
    text.removeIf([](QChar c) { return c.isSpace(); });
    return text;
}

struct PdfTest : testing::Test {
    QString path(const QString& name = "report.pdf") const { return folder.filePath(name); }
    int write(const QString& title = "测试")
    {
        PrintDocument document;
        document.title = title;
        return write(document, path());
    }
    int write(const PrintDocument& document, const QString& file) const
    {
        const Pdf pdf = pdfOf(workbook, document);
        QFile(file).remove();
        QFile written(file);
        EXPECT_TRUE(written.open(QIODevice::WriteOnly));
        written.write(pdf.bytes);
        return pdf.pages;
    }

    QTemporaryDir folder;
    Workbook workbook;
    Sheet& sheet = workbook.sheet(1);
};

/// All characters of GB2312 in the order of the code table: 682 symbols and 6,763 hanzi.
QString gb2312()
{
    QByteArray bytes;
    for (int row = 0xA1; row <= 0xF7; ++row)
        for (int column = 0xA1; column <= 0xFE; ++column)
            bytes += QByteArray(1, static_cast<char>(row)) + QByteArray(1, static_cast<char>(column));
    QProcess iconv;
    iconv.start("iconv", {"-c", "-f", "GB2312", "-t", "UTF-8"});
    iconv.write(bytes);
    iconv.closeWriteChannel();
    iconv.waitForFinished();
    return QString::fromUtf8(iconv.readAllStandardOutput());
}

/// The text's characters that a font has; others come from fonts that vary.
QString shownBy(const QString& family, const QString& text)
{
    QFont font(family);
    const QRawFont raw = QRawFont::fromFont(font);
    QString shown;
    for (const QChar c : text)
        if (raw.supportsCharacter(c) && !c.isSpace())
            shown += c;
    return shown;
}

struct EveryCharacter : PdfTest, testing::WithParamInterface<const char*> {};

TEST_P(EveryCharacter, OfGb2312IsFoundAgain)
{
    const QString family = QString::fromUtf8(GetParam());
    if (!QFontDatabase::hasFamily(family))
        GTEST_SKIP() << "font not installed";
    ASSERT_EQ(gb2312().size(), 7445);
    const QString text = shownBy(family, gb2312());
    ASSERT_GT(text.size(), 7000);

    // Four looks of one face: plain, bold, slanted, both. They share a font in the PDF.
    constexpr int perRow = 40;
    sheet.changeSettings([](SheetSettings& settings) { settings.columns.sizes[1] = 10'000; });
    for (int row = 0; row * perRow < text.size(); ++row) {
        const CellAddress cell{1, row + 1};
        sheet.setText(cell, text.mid(row * perRow, perRow).toStdString());
        sheet.restyle({1, cell.row, 1, cell.row}, [&](CellStyle& style) {
            style.font.family = Text(family.toStdString());
            style.font.bold = row & 1;
            style.font.italic = row & 2;
        });
    }
    const int pages = write();
    EXPECT_GT(pages, 3);

    const QString found = withoutBlanks(textOf(path()));
    ASSERT_EQ(found.size(), text.size());
    QString wrong;
    for (qsizetype i = 0; i < text.size(); ++i)
        if (found[i] != text[i])
            wrong += text[i] + QString("→") + found[i] + ' ';
    EXPECT_EQ(wrong.toStdString(), "");
    EXPECT_EQ(run("qpdf", {"--check", path()}).first, 0)
        << run("qpdf", {"--check", path()}).second.toStdString();
}

INSTANTIATE_TEST_SUITE_P(Fonts, EveryCharacter,
                         testing::Values("Noto Sans CJK SC", "Noto Serif CJK SC", "WenQuanYi Zen Hei",
                                         "AR PL UMing CN", "Noto Sans Mono CJK SC"));

TEST_F(PdfTest, KnowsNoLocale)
{
    sheet.setNumber({1, 1}, 1234.5);
    demand(sheet.setFormula({1, 2}, "TEXT(A1/7,\"#,##0.000\")"));
    sheet.restyle({1, 1, 2, 2}, [](CellStyle& style) {
        style.font.points = 10.5;
        style.bottom = {LineStyle::fineDash, 0x336699};
    });
    workbook.recalculate();
    const auto made = [&] { // but for when it was made
        static const QRegularExpression moments(
            R"(\(D:[^)]*\)|\d{4}-\d\d-\d\dT[-+:\dZ]*|[0-9a-f]{8}(-[0-9a-f]{4}){3}-[0-9a-f]{12}|/ID \[[^]]*\])");
        return QString::fromLatin1(pdfOf(workbook, {}).bytes).remove(moments);
    };
    const QString expected = made();
    for (const CommaLocale::Reach reach : {CommaLocale::Reach::process, CommaLocale::Reach::thread}) {
        const CommaLocale locale(reach);
        EXPECT_TRUE(made() == expected);
    }
}

TEST_F(PdfTest, EveryFamilyInEveryLookIsSearchable)
{
    const QString text = "科目月日金门1,234.50";
    QStringList families = QFontDatabase::families();
    families.removeIf(
        [](const QString& family) { // they show signs for letters and take none from other fonts
            return QFontDatabase::writingSystems(family).contains(QFontDatabase::Symbol);
        });
    int row = 0;
    for (const QString& family : families)
        for (int look = 0; look < 4; ++look) {
            sheet.setText({1, ++row}, text.toStdString());
            sheet.restyle({1, row, 1, row}, [&](CellStyle& style) {
                style.font.family = Text(family.toStdString());
                style.font.bold = look & 1;
                style.font.italic = look & 2;
            });
        }
    sheet.changeSettings([](SheetSettings& settings) { settings.columns.sizes[1] = 5000; });
    write();
    const QStringList found = textOf(path()).split('\n', Qt::SkipEmptyParts);
    QStringList wrong;
    for (qsizetype i = 0; i < found.size(); ++i)
        if (withoutBlanks(found[i]) != text && !withoutBlanks(found[i]).isEmpty())
            wrong += families.value(i / 4) + ": " + found[i];
    EXPECT_EQ(wrong.join('\n').toStdString(), "");
    EXPECT_EQ(withoutBlanks(found.join(QString())).size(), text.size() * row);
    EXPECT_GT(row, 40);
}

TEST_F(PdfTest, ScriptsThatAreShapedKeepTheirText)
{
    const char* texts[] = {"Société Générale", "Zu\u0308rich", "Налоги", "가격", "価格カ", "①㈱℃㎡"};
    int row = 0;
    for (const char* text : texts)
        sheet.setText({1, ++row}, text);
    sheet.changeSettings([](SheetSettings& settings) { settings.columns.sizes[1] = 5000; });
    write();
    const QString found = textOf(path());
    for (const char* text : texts)
        EXPECT_TRUE(found.contains(text)) << text << " in " << found.toStdString();
}

TEST_F(PdfTest, FontsThatAreNotInstalledLoseNoText)
{
    sheet.restyle({1, 1, 2, 1}, [](CellStyle& style) { style.font.family = Text("没有这种字体"); });
    sheet.setText({1, 1}, "科目");
    sheet.setNumber({2, 1}, -1234.5);
    sheet.changeSettings([](SheetSettings& settings) { settings.print.header = R"(/fn"也没有"/c日报/n)"; });
    write();
    EXPECT_EQ(withoutBlanks(textOf(path())), "日报科目-1234.5");
}

TEST_F(PdfTest, CharactersThatNoFontHasHarmNoOthers)
{
    sheet.setText({1, 1}, "科ร目ค日"); // Thai letters are in none of the usual CJK fonts
    write();
    QString found = withoutBlanks(textOf(path()));
    found.removeIf([](QChar c) { return c.script() == QChar::Script_Thai; });
    EXPECT_EQ(found, "科目日");
}

TEST_F(PdfTest, HeaderFooterHeadingsAndRareCharactersAreSearchable)
{
    sheet.setText({1, 1}, "科目 日月金 𠮷野 office");
    sheet.setText({1, 100}, "末行");
    sheet.changeSettings([](SheetSettings& settings) {
        settings.columns.sizes[1] = 5000;
        settings.print.header = "/c资产负债表 2026/12/31/n/r第/p页/n";
        settings.print.footer = "/l编制单位：目/n";
        settings.print.rowHeadings = true;
    });
    ASSERT_EQ(write(), 3);
    for (int page = 1; page <= 3; ++page) {
        const QString text = textOf(path(), page, page);
        for (const QString& expected :
             {QString("资产负债表 2026/12/31"), QString("第%1页").arg(page), QString("编制单位：目")})
            EXPECT_TRUE(text.contains(expected)) << expected.toStdString() << " in " << text.toStdString();
    }
    EXPECT_TRUE(textOf(path(), 1, 1).contains("科目 日月金 𠮷野 office"))
        << textOf(path(), 1, 1).toStdString();
    EXPECT_TRUE(textOf(path(), 3, 3).contains("100")) << "row heading";
}

TEST_F(PdfTest, SeveralSheetsCountTheirPagesApart)
{
    sheet.setText({1, 1}, "甲");
    sheet.setText({1, 90}, "乙");
    demand(workbook.renameSheet(1, "资产负债表"));
    demand(workbook.addSheet("利润表"));
    workbook.sheet(2).setText({1, 1}, "丙");
    for (int index = 1; index <= 2; ++index)
        workbook.sheet(index).changeSettings([&](SheetSettings& settings) {
            settings.print.footer = "/c-/p-/n";
            settings.print.landscape = index == 2;
        });
    ASSERT_EQ(write("季度财务报告"), 3);
    EXPECT_TRUE(textOf(path(), 3, 3).contains("-1-"));

    const QString info = run("pdfinfo", {"-f", "1", "-l", "3", path()}).second;
    EXPECT_TRUE(info.contains("季度财务报告")) << info.toStdString();
    EXPECT_TRUE(info.contains("Page    1 size:  595 x 842")) << info.toStdString();
    EXPECT_TRUE(info.contains("Page    3 size:  842 x 595"));
    const QString labels = run("qpdf", {"--json", "--json-key=pagelabels", path()}).second;
    EXPECT_TRUE(labels.contains("资产负债表-") && labels.contains("利润表-")) << labels.toStdString();
    EXPECT_TRUE(labels.contains(QRegularExpression("\"index\": *2"))) << "the second sheet's first page";

    PrintDocument one;
    one.sheet = 2;
    EXPECT_EQ(write(one, path("one.pdf")), 1);
    EXPECT_EQ(withoutBlanks(textOf(path("one.pdf"))), "丙-1-");
}

TEST_F(PdfTest, FontsAreEmbeddedOnceAndOnlyInPart)
{
    sheet.setText({1, 1}, "短");
    write();
    EXPECT_LT(QFileInfo(path()).size(), 20'000);
    const QString fonts = run("pdffonts", {path()}).second;
    EXPECT_EQ(fonts.trimmed().count('\n'), 2) << fonts.toStdString();
}

TEST_F(PdfTest, ASheetThatIsNotThereIsRefused)
{
    sheet.setText({1, 1}, "A");
    PrintDocument document;
    document.sheet = 2;
    EXPECT_THROW(pdfOf(workbook, document), PdfError);
}

TEST_F(PdfTest, OfSeveralSheetsTheOneWithoutRoomIsNamed)
{
    demand(workbook.addSheet("附注"));
    workbook.sheet(2).changeSettings([](SheetSettings& settings) { settings.print.marginTop = 1'000'000; });
    const auto refusal = [this](std::optional<int> only) -> std::string {
        PrintDocument document;
        document.sheet = only;
        try {
            pdfOf(workbook, document);
        } catch (const PdfError& error) {
            return error.what();
        }
        return "";
    };
    const std::string noRoom = "页边距、页眉和页脚占满了纸张，没有打印表格的地方。";
    EXPECT_EQ(refusal(std::nullopt), "表“附注”：" + noRoom);
    EXPECT_EQ(refusal(2), noRoom);
}

/// Above the sheet's own header, whether or not the sheet asks for a stamp.
TEST_F(PdfTest, ANoticeHeadsEveryPage)
{
    sheet.setText({1, 1}, "甲");
    sheet.setText({1, 200}, "乙");
    sheet.changeSettings([](SheetSettings& settings) { settings.print.header = "/c利润表"; });
    PrintDocument document;
    document.page.notice = "3 处取数失败，数字不可用";
    const int pages = write(document, path());
    ASSERT_GT(pages, 1);
    for (int page = 1; page <= pages; ++page) {
        const QString text = textOf(path(), page, page);
        const auto notice = text.indexOf("3 处取数失败，数字不可用");
        EXPECT_GE(notice, 0) << page;
        EXPECT_GT(text.indexOf("利润表"), notice) << page;
    }
    document.page.notice.clear();
    write(document, path());
    EXPECT_FALSE(textOf(path()).contains("取数失败"));
}

TEST_F(PdfTest, CancellingDrawsNoFurther)
{
    sheet.setText({1, 200}, "A");
    PrintDocument document;
    int asked = 0;
    document.goesOn = [&](int done, int pages) {
        EXPECT_EQ(pages, 4);
        return ++asked, done < 2;
    };
    EXPECT_THROW(pdfOf(workbook, document), PrintCancelled);
    EXPECT_EQ(asked, 3);
}

TEST_F(PdfTest, APrinterDrawsTheSamePages)
{
    sheet.setText({2, 3}, "Total 1,234.50");
    sheet.setText({1, 90}, "End");
    sheet.changeSettings([](SheetSettings& settings) {
        settings.print.landscape = settings.print.border = settings.print.columnHeadings = true;
        settings.print.footer = "/r/p/n";
        settings.columns.sizes[2] = 3000;
    });
    write();
    QPrinter printer(QPrinter::HighResolution);
    printer.setOutputFormat(QPrinter::PdfFormat);
    printer.setOutputFileName(path("printer.pdf"));
    printer.setFullPage(true);
    const PrintDocument document;
    PageText text;
    EXPECT_TRUE(drawPages(printer, layOut(workbook, document), document, text));
    EXPECT_EQ(textOf(path("printer.pdf")), textOf(path()));
    const auto sizes = [&](const QString& name) {
        return run("pdfinfo", {"-l", "9", path(name)}).second.split('\n').filter("size:").filter("Page ");
    };
    EXPECT_EQ(sizes("printer.pdf"), sizes("report.pdf"));
}

/// A turned text stands in its cell: it runs over no page's edge, though the cell beside it is blank.
TEST_F(PdfTest, TurnedTextsStandOnOnePageOnly)
{
    constexpr int texts = 16;
    for (int i = 0; i < texts; ++i) {
        sheet.setText({1 + 3 * i, 1}, std::string(180, 'x') + "Q");
        sheet.restyle({1 + 3 * i, 1, 1 + 3 * i, 1}, [](CellStyle& style) { style.carried.rotation = 90; });
    }
    EXPECT_GT(write(), 4);
    EXPECT_EQ(textOf(path()).count('Q'), texts);
}

/// A second way: the toolkit's own writer draws every page by itself.
TEST_F(PdfTest, LooksAsTheToolkitsWriterDrawsIt)
{
    const LineStyle lines[] = {LineStyle::solid, LineStyle::thick,   LineStyle::doubled,
                               LineStyle::dash,  LineStyle::fineDot, LineStyle::dashDot};
    const char* const families[] = {"宋体", "黑体", "楷体", "DejaVu Sans", "WenQuanYi Zen Hei"};
    for (int row = 1; row <= 40; ++row) {
        sheet.setText({1, row}, "应收账款 Total 科目日月，长得放不进这一格的文字");
        sheet.setNumber({2, row}, row * 1234.5);
        sheet.setNumber({3, row}, 123456789.0 * row);
        sheet.setText({4, row}, row % 3 == 0 ? "" : "短");
        const CellRange cells{1, row, 5, row};
        sheet.restyle(cells, [&](CellStyle& style) {
            style.font.family = Text(families[row % 5]);
            style.font.bold = (row & 1) && row % 5 != 4; // made-up bold letters are drawn otherwise
            style.font.italic = row & 2;
            style.font.underline = row & 4;
            style.font.strikeThrough = row % 7 == 0;
            style.foreground = row % 4 == 0 ? 0x0000C0 : 0;
            style.wrap = row % 6 == 0;
            style.bottom = style.right = {lines[row % 6], row % 2 ? 0U : 0x00A000U};
        });
    }
    constexpr std::uint8_t turns[] = {45, 90, 120, 180, CarriedAlignment::stackedLetters};
    for (int row = 8; row <= 40; ++row) {
        sheet.setText({5, row}, "转 Turn");
        sheet.restyle({5, row, 5, row}, [&](CellStyle& style) { style.carried.rotation = turns[row % 5]; });
    }
    sheet.restyle({2, 3, 4, 5}, [](CellStyle& style) { style.background = 0xC0F0F0; });
    sheet.setValue({5, 7}, Value::boolean(true));
    sheet.restyle({5, 7, 5, 7}, [](CellStyle& style) { style.type = CellType::checkBox; });
    sheet.addSpan({1, 10, 3, 11});
    sheet.changeSettings([](SheetSettings& settings) {
        settings.print.header = R"(/fn"黑体"/fz"14"/fb1/fi0/fu1/fk0/c资产负债表/n)";
        settings.print.rowHeadings = settings.print.columnHeadings = settings.print.shadows = true;
        settings.print.gridLines = settings.print.border = true;
        settings.columns.sizes[3] = 700;
    });
    for (const int scale : {100, 45}) {
        sheet.changeSettings([&](SheetSettings& settings) { settings.print.scale = scale; });
        const PrintDocument document;
        write(document, path("ours.pdf"));
        {
            QPdfWriter writer(path("theirs.pdf"));
            writer.setResolution(1440);
            PageText text;
            ASSERT_TRUE(drawPages(writer, layOut(workbook, document), document, text));
        }
        SCOPED_TRACE(scale);
        expectAlike(picturesOf(folder, "ours.pdf"), picturesOf(folder, "theirs.pdf"), 1000);
        QDir(folder.path()).removeRecursively();
        QDir().mkpath(folder.path());
    }
}

/// … and takes less room, however long the texts are.
TEST_F(PdfTest, ALongTextEndsWhereItsFontLetsIt)
{
    const QString text = QString("货币资金 Cash 12,345.67 ").repeated(6) + "末";
    sheet.setText({1, 1}, text.toStdString());
    sheet.changeSettings([](SheetSettings& settings) {
        settings.columns.sizes[1] = 15'000;
        settings.print.landscape = true;
    });
    write();
    PageText measure;
    const double width = measure.lines(text.left(text.size() - 1), measure.font({})).front().width;
    const QString words = run("pdftotext", {"-bbox", path(), "-"}).second;
    static const QRegularExpression last(R"re(<word xMin="([\d.]+)"[^>]*>末<)re");
    const QRegularExpressionMatch found = last.match(words);
    ASSERT_TRUE(found.hasMatch()) << words.toStdString();
    EXPECT_NEAR(found.captured(1).toDouble(), (864 + 40 + width) / 20, 0.5) << "points";
}

TEST_F(PdfTest, TextsKeepTheirDistanceFromTheRules)
{
    sheet.setText({1, 1}, "甲");
    sheet.setText({2, 1}, "乙");
    sheet.restyle({2, 1, 2, 1}, [](CellStyle& style) { style.horizontal = HorizontalAlignment::right; });
    for (const int distance : {0, 40, 300}) { // twips; columns of 1,080 from 864 on
        sheet.changeSettings([&](SheetSettings& settings) { settings.print.textDistance = distance; });
        write();
        const QString words = run("pdftotext", {"-bbox", path(), "-"}).second;
        static const QRegularExpression first(R"re(xMin="([\d.]+)"[^>]*>甲<)re"),
            second(R"re(xMax="([\d.]+)"[^>]*>乙<)re");
        EXPECT_NEAR(first.match(words).captured(1).toDouble(), (864 + distance) / 20.0, 0.1) << distance;
        EXPECT_NEAR(second.match(words).captured(1).toDouble(), (864 + 2160 - distance) / 20.0, 0.1)
            << distance;
    }
}

TEST_F(PdfTest, TellsItsOperatorAndLeadsToItsSheets)
{
    sheet.setText({1, 1}, "甲");
    sheet.changeSettings([](SheetSettings& settings) { settings.print.rowBreaks[2] = true; });
    sheet.setText({1, 2}, "乙");
    demand(workbook.addSheet("附表"));
    workbook.sheet(2).setText({1, 1}, "丙");
    PrintDocument document;
    document.title = "利润表";
    document.author = "王会计";
    document.subject = "截止日期 2026-12-31";
    document.isArchive = true;
    write(document, path("archive.pdf"));
    EXPECT_EQ(run("qpdf", {"--check", path("archive.pdf")}).first, 0);
    const QString metadata = run("pdfinfo", {"-meta", path("archive.pdf")}).second;
    for (const char* said : {"利润表", "王会计", "截止日期 2026-12-31", "pdfaid:conformance=\"B\""})
        EXPECT_TRUE(metadata.contains(QString::fromUtf8(said))) << said << metadata.toStdString();
    document.isArchive = false;
    write(document, path());
    EXPECT_EQ(run("qpdf", {"--check", path()}).first, 0);
    const QString info = run("pdfinfo", {path()}).second;
    for (const char* said : {"利润表", "王会计", "截止日期 2026-12-31"})
        EXPECT_TRUE(info.contains(QString::fromUtf8(said))) << said << info.toStdString();
    const QString outline = run("qpdf", {"--json", "--json-key=outlines", path()}).second;
    static const QRegularExpression target(R"re("destpageposfrom1": (\d+))re");
    QStringList targets;
    for (auto found = target.globalMatch(outline); found.hasNext();)
        targets += found.next().captured(1);
    EXPECT_EQ(targets.join(' ').toStdString(), "1 3") << outline.toStdString();
    EXPECT_TRUE(outline.contains("附表"));
}

TEST_F(PdfTest, AFileThatCannotBeRedoneStays)
{
    sheet.setText({1, 1}, "A");
    write();
    const qint64 size = QFileInfo(path()).size();
    sheet.changeSettings([](SheetSettings& settings) { settings.print.marginLeft = 20'000; });
    EXPECT_THROW(write(), PdfError);
    EXPECT_EQ(QFileInfo(path()).size(), size);
}

} // namespace
} // namespace spreadsheet
