#include "platform/list_grid/ListGrid.h"
#include "platform/services/ScriptedDialogs.h"
#include "spreadsheet/files/content/content.h"
#include "spreadsheet/files/FileFormats.h"
#include "spreadsheet/view/SpreadsheetControl.h"
#include "tests/fetch/TestLedger.h"
#include "tests/platform/WindowTest.h"
#include "windows/designer/frmEditor.h"

#include <QAction>
#include <QFile>
#include <QLineEdit>
#include <QStatusBar>
#include <QTemporaryDir>

#include <tuple>

namespace selfreport {
namespace {

using spreadsheet::Workbook;

constexpr const char* closingBalance = R"(Acct("1001" ,"2" , "", "2025","1","2"))"; // 100.25

class Exchange : public test::WindowTest {
protected:
    Exchange()
    {
        gEditFlag = 0;
        gRunMode = false;
        gReportId = 0;
        gFromList = 0;
        gAppPath = folder.path().toStdString();
        window = std::make_unique<frmEditor>(sharedContext);
        show(*window);
    }

    spreadsheet::SpreadsheetControl& grid()
    {
        return control<spreadsheet::SpreadsheetControl>(*window, "fps1");
    }
    std::string file(const char* name) const { return (folder.path() + '/' + name).toStdString(); }
    QByteArray contentOf(const char* name) const
    {
        QFile stream(folder.path() + '/' + name);
        return stream.open(QIODevice::ReadOnly) ? stream.readAll() : QByteArray();
    }
    void put(const char* name, const QByteArray& content) const
    {
        QFile stream(folder.path() + '/' + name);
        ASSERT_TRUE(stream.open(QIODevice::WriteOnly));
        stream.write(content);
    }
    /// Runs a command whose dialog is answered with that file; how the dialog was opened.
    FileDialogSettings run(const char* command, const char* name)
    {
        files.answers = {file(name)};
        control<QAction>(*window, command).trigger();
        EXPECT_EQ(ledger.boxes.said.size(), 0u);
        return files.asked.back().settings;
    }
    QString status() { return control<QStatusBar>(*window, "statusBar").currentMessage(); }
    /// The list below the grid, without its heading; empty while it is hidden.
    QStringList notices()
    {
        const ListGrid& list = control<ListGrid>(*window, "listDiagnostics");
        QStringList rows;
        for (int row = 1; list.isVisible() && row < list.rowCount(); ++row)
            rows << list.text(row, 0);
        return rows;
    }

    test::TestLedger ledger;
    QTemporaryDir folder;
    ScriptedFileDialog files;
    const FileDialogInUse inUse{files};
    std::unique_ptr<frmEditor> window;
};

TEST_F(Exchange, FurtherKindsGoOutUnderTheReportsNameAndComeBack)
{
    control<QLineEdit>(*window, "txtReportName").setText("一/二月");
    demand(grid().cells().sheet().setFormula({1, 1}, closingBalance));
    grid().cells().sheet().setText({2, 1}, "现金 & 银行");
    const struct {
        const char *command, *name, *preset, *filter;
        QByteArray start;
    } exports[] = {
        {"MenuExportXlsx", "a.xlsx", "一_二月.xlsx", "Excel工作簿(*.xlsx)|*.xlsx", "PK"},
        {"MenuExportCsv", "a.csv", "一_二月.csv", "文本文件(*.csv)|*.csv", "\xEF\xBB\xBF"},
        {"MenuExportHtml", "a.html", "一_二月.html", "网页(*.html)|*.html", "<!DOCTYPE html>"},
    };
    for (const auto& c : exports) {
        const FileDialogSettings settings = run(c.command, c.name);
        EXPECT_EQ(settings.fileName, c.preset);
        EXPECT_EQ(settings.filter, c.filter);
        EXPECT_EQ(settings.flags, 32770);
        EXPECT_TRUE(contentOf(c.name).startsWith(c.start)) << c.name;
        EXPECT_TRUE(status().startsWith("完成")) << status().toStdString();
    }
    EXPECT_TRUE(contentOf("a.html").contains("现金 &amp; 银行"));
    EXPECT_TRUE(contentOf("a.csv").contains("现金 & 银行"));

    demand(grid().cells().sheet().setFormula({1, 1}, "1+1"));
    grid().cells().sheet().setText({3, 1}, "不在文件中");
    const FileDialogSettings settings = run("MenuImportXlsx", "a.xlsx");
    EXPECT_EQ(settings.fileName, "*.xlsx");
    EXPECT_EQ(settings.flags, 4);
    EXPECT_EQ(grid().cells().sheet().formula({1, 1}), closingBalance);
    EXPECT_EQ(grid().cells().text(3, 1), "");
    EXPECT_FALSE(grid().cells().sheet().style({1, 1}).locked);
    control<QAction>(*window, "MenuRecalculate").trigger(); // the report functions are known as before
    EXPECT_EQ(grid().cells().text(1, 1), "100.25");
}

TEST_F(Exchange, ATypedNameIsReadByItsContentAndWrittenByItsEnding)
{
    grid().cells().sheet().setText({1, 1}, "合计");
    const struct {
        const char *command, *name;
        QByteArray start;
    } exports[] = {
        {"MenuExportExcel", "b.xlsx", "PK"},          {"MenuExportExcel", "b.xls", "\xD0\xCF"},
        {"MenuExportExcel", "b.dat", "\xD0\xCF"},     {"MenuExportXlsx", "c.xls", "\xD0\xCF"},
        {"MenuEmportSpreadFile", "d.xls", "\x89SS7"},
    };
    for (const auto& c : exports) {
        run(c.command, c.name);
        EXPECT_TRUE(contentOf(c.name).startsWith(c.start)) << c.name;
        EXPECT_EQ(status(), "完成: " + QString::fromStdString(file(c.name)));
        grid().cells().sheet().setText({1, 1}, "别的");
        run("MenuImportExcelFile", c.name);
        EXPECT_EQ(grid().cells().text(1, 1), "合计") << c.name;
    }
    put("e.txt", "科目;金额\n1001;12.5\n");
    run("MenuImportExcelFile", "e.txt");
    EXPECT_EQ(grid().cells().text(2, 2), "12.5");
}

TEST_F(Exchange, TheSharedDialogKeepsTitleFolderAndName)
{
    put("f.xls", "没有工作簿");
    const FileDialogSettings imported = run("MenuImportExcelFile", "f.xls");
    EXPECT_EQ(imported.fileName, "*.xls");
    EXPECT_EQ(imported.filter, "Excel files|(*.xls)");
    run("MenuExportXlsx", "g.xlsx"); // has a dialog of its own
    files.answers = {std::nullopt};
    control<QAction>(*window, "MenuImpoertSpreadFile").trigger(); // given up, it leaves no name
    const FileDialogSettings exported = run("MenuExportExcel", "g.xls");
    EXPECT_EQ(exported.title, "选择报表文件");
    EXPECT_EQ(exported.folder, imported.folder);
    EXPECT_EQ(exported.filter, "Excel文件(*.xls)|*.xls");
    const struct {
        const char *before, *command, *preset;
    } cases[] = {
        {"f.xls", "MenuExportExcel", "f.xls"},
        {"g.xls", "MenuEmportSpreadFile", "g.ss7"}, // a workbook is not replaced by another format
        {"h.ss7", "MenuExportExcel", "h.xls"},
        {"i.xlsx", "MenuExportExcel", "i.xlsx"}, // which is written as its name says
        {"j", "MenuEmportSpreadFile", "j"},
    };
    put("j", "a,b");
    for (const auto& c : cases) {
        files.answers = {file(c.before)};
        control<QAction>(*window, "MenuImportExcelFile").trigger();
        EXPECT_EQ(run(c.command, "k.ss7").fileName, file(c.preset)) << c.before;
    }
}

TEST_F(Exchange, AnImportIsOneUndoStep)
{
    spreadsheet::Workbook& workbook = grid().cells().workbook();
    const auto now = [&] { return spreadsheet::saveContent(workbook); };
    const auto press = [this](Qt::KeyboardModifiers modifiers) {
        QTest::keyClick(&grid(), Qt::Key_Z, modifiers);
    };
    Workbook other;
    other.sheet(1).setText({1, 1}, "别的");
    demand(other.sheet(1).setFormula({1, 2}, "1+1"));
    demand(other.addSheet("另一张"));
    for (const char* name : {"o.ss7", "o.xls", "o.xlsx", "o.csv"})
        std::ignore = spreadsheet::saveWorkbook(other, file(name), *spreadsheet::fileFormatOfName(name));

    grid().cells().sheet().setText({3, 3}, "第一步");
    demand(grid().cells().sheet().setFormula({1, 1}, R"(Acct("9999","2","","2025","1","2"))"));
    grid().cells().changeStyle([](spreadsheet::CellStyle& style) { style.locked = true; });
    demand(workbook.addSheet("二月"));
    control<QAction>(*window, "MenuRecalculate").trigger();
    const QStringList reasons = notices();
    EXPECT_EQ(reasons.size(), 1);
    const auto before = now();
    for (const bool formulasShown : {false, true})
        for (const char* name : {"o.ss7", "o.xls", "o.xlsx", "o.csv"}) {
            if (formulasShown)
                control<QAction>(*window, "MenuShowFormula").trigger();
            const auto asShown = now();
            run("MenuImportXlsx", name);
            EXPECT_EQ(grid().cells().text(1, 1), "别的") << name;
            EXPECT_EQ(notices(), QStringList()) << name;
            const auto imported = now();
            press(Qt::ControlModifier);
            EXPECT_TRUE(now() == asShown) << name << formulasShown;
            EXPECT_EQ(notices(), reasons) << name;
            press(Qt::ControlModifier | Qt::ShiftModifier);
            EXPECT_TRUE(now() == imported) << name << formulasShown;
            EXPECT_EQ(notices(), QStringList()) << name;
            press(Qt::ControlModifier);
            EXPECT_EQ(grid().cells().sheet().formula({1, 1}), R"(Acct("9999","2","","2025","1","2"))");
            if (formulasShown)
                press(Qt::ControlModifier);
            EXPECT_TRUE(now() == before) << name << formulasShown;
        }
    demand(grid().cells().sheet().setFormula({1, 1}, closingBalance));
    control<QAction>(*window, "MenuRecalculate").trigger();
    EXPECT_EQ(grid().cells().text(1, 1), "100.25") << "the content that came back is the one that works";
}

TEST_F(Exchange, ReasonsAndWarningsAreListedBelowTheGrid)
{
    grid().cells().sheet().setText({1, 1}, "原来的");
    grid().cells().changeStyle([](spreadsheet::CellStyle& style) { style.locked = true; });
    put("page.xls", "<html>请登录</html>");
    run("MenuImportExcelFile", "page.xls");
    EXPECT_TRUE(status().contains("网页")) << status().toStdString();
    EXPECT_EQ(notices(), QStringList(status()));
    EXPECT_EQ(grid().cells().text(1, 1), "原来的");
    EXPECT_TRUE(grid().cells().sheet().style({1, 1}).locked); // as before, since nothing was imported

    demand(grid().cells().sheet().setFormula({1, 2}, "SUM(B1:B70000)"));
    run("MenuExportExcel", "warned.xls");
    ASSERT_EQ(notices().size(), 1);
    EXPECT_TRUE(notices()[0].contains("A2")) << notices()[0].toStdString();
    run("MenuExportXlsx", "fine.xlsx");
    EXPECT_EQ(notices(), QStringList());

    put("kept.xls", "从前");
    grid().cells().sheet().setNumber({300, 1}, 1); // more columns than .xls has
    run("MenuExportExcel", "kept.xls");
    EXPECT_TRUE(status().contains("256")) << status().toStdString();
    EXPECT_EQ(contentOf("kept.xls"), "从前");
}

} // namespace
} // namespace selfreport
