// Copies of unsaved designs: whose they are, when they are offered, and when they go.
#include "windows/designer/Recovery.h"

#include "spreadsheet/workbook/UndoJournal.h"
#include "tests/windows/designer/DesignerTest.h"
#include "windows/printing/print_settings.h"
#include "windows/printing/print_sheet.h"

#include <QDir>
#include <QLabel>
#include <QPushButton>
#include <QToolButton>

#include <csignal>
#include <fstream>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>

namespace selfreport {
namespace {

using namespace std::chrono_literals;
using Said = RecordingDialogs::Said;
using Left = RecoveryNote::Left;

class RecoveryTest : public test::DesignerTest {
protected:
    QStringList copies() const { return QDir(folder.path()).entryList({"Recovery_*"}, QDir::Files); }
    std::filesystem::path onlyCopy() const
    {
        EXPECT_EQ(copies().size(), 1);
        return (folder.path() + '/' + copies().value(0)).toStdString();
    }
    void design(const QString& formula)
    {
        moveTo(1, 1);
        typeInBox(formula, Qt::Key_Return);
    }
    /// Leaves a copy of `=6*7` behind.
    std::filesystem::path leave(Left left)
    {
        open();
        design("=6*7");
        window->close();
        window.reset();
        const auto file = onlyCopy();
        if (left == Left::open)
            RecoveryCopy::takeOver(file)->setLeft(left);
        return file;
    }
    bool isOffered() { return control<QWidget>(*window, "lineUnsaved").isVisibleTo(window.get()); }
    void click(const char* button) { control<QToolButton>(*window, button).click(); }
    static void age(const std::filesystem::path& file, std::chrono::hours by)
    {
        std::filesystem::last_write_time(file, std::filesystem::file_time_type::clock::now() - by);
    }
    Said question() const { return {Icon::question, "测试账套", "上次关闭时有未保存的报表设计,是否恢复?"}; }
};

TEST_F(RecoveryTest, AfterACrashABoxAsksAndAfterClosingALineOffers)
{
    for (const bool storedBefore : {false, true}) {
        for (const Left left : {Left::open, Left::closed}) {
            if (storedBefore)
                storeReport();
            const auto file = leave(left);
            EXPECT_EQ(std::filesystem::status(file).permissions(), std::filesystem::perms(0600));
            open();
            EXPECT_EQ(ledger.boxes.said, left == Left::open ? std::vector{question()} : std::vector<Said>{});
            EXPECT_TRUE(isOffered()) << "no answer but a choice of the two ends the offer";
            EXPECT_EQ(control<QWidget>(*window, "lineUnsaved").findChild<QLabel*>()->text(),
                      "有未保存的设计");
            ledger.boxes.said.clear();
            open();
            EXPECT_TRUE(ledger.boxes.said.empty()) << "the question comes once";
            click("cmdRestore");
            EXPECT_EQ(formula(1, 1), "6*7");
            EXPECT_FALSE(isOffered());
            window->close();
            open();
            EXPECT_TRUE(isOffered()) << "still unsaved";
            click("cmdDiscard");
            EXPECT_FALSE(isOffered());
            EXPECT_NE(formula(1, 1), "6*7");
            EXPECT_EQ(copies(), QStringList());
            if (storedBefore)
                ledger.run("delete from tblCWSelfReport");
        }
    }
}

TEST_F(RecoveryTest, YesRestoresNameAndSheetAndSavingRemovesTheCopy)
{
    open();
    edit("txtReportName").setText("新表");
    grid().cells().workbook().sheet(1).changeSettings(
        [](spreadsheet::SheetSettings& settings) { settings.print.marginLeft = 2880; });
    design("=6*7");
    window->close();
    window.reset();
    RecoveryCopy::takeOver(onlyCopy())->setLeft(Left::open);
    ledger.boxes.answer = true;
    open();
    EXPECT_EQ(ledger.boxes.said, std::vector{question()});
    EXPECT_EQ(formula(1, 1), "6*7");
    EXPECT_EQ(edit("txtReportName").text(), "新表");
    EXPECT_EQ(grid().cells().workbook().sheet(1).settings().print.marginLeft, 2880) << "no row has others";
    trigger("MenuFileSave");
    EXPECT_EQ(copies(), QStringList());
    window->close();
    EXPECT_EQ(copies(), QStringList()) << "saved";
}

/// Page set-up is stored at once and changes no design: the copy does not know of it.
TEST_F(RecoveryTest, ARestoredDesignIsPrintedAsTheRowSays)
{
    storeReport();
    leave(Left::open);
    ledger.run("update tblCWSelfReport set fLeft=2,fRight=1,fTop=1,fBottom=1,fDirection=0 where noid=3");
    ledger.boxes.answer = true;
    open();
    ASSERT_EQ(formula(1, 1), "6*7");
    spreadsheet::Workbook& workbook = grid().cells().workbook();
    EXPECT_TRUE(workbook.journal().enabled());
    while (workbook.canUndo())
        workbook.undo();
    EXPECT_EQ(workbook.sheet(1).settings().print.marginLeft, 2880) << "no step of undo";
    EXPECT_TRUE(workbook.sheet(1).settings().print.landscape);
}

TEST_F(RecoveryTest, OnlyAnotherDesignIsKept)
{
    storeReport();
    const struct {
        const char* what;
        bool changes;
        std::function<void()> act;
    } cases[] = {
        {"nothing", false, [] {}},
        {"formulas", false, [this] { trigger("MenuShowFormula"); }},
        {"data", false, [this] { trigger("MenuShowDate"); }},
        {"formulas and back by undo", false, [this] { trigger("MenuShowFormula"), trigger("MenuUndo"); }},
        {"recalculated: a fetch sets its cell's type", false, [this] { trigger("MenuRecalculate"); }},
        {"moving, zooming, copying", false,
         [this] { moveTo(2, 9), grid().setZoom(1.1), trigger("MenuCopy"); }},
        {"an entry given up", false,
         [this] {
             moveTo(3, 3), grid().entry().begin(spreadsheet::EditStart::replace, "x"),
                 grid().entry().cancel();
         }},
        {"an entry that is the same", false,
         [this] {
             moveTo(1, 2), grid().entry().begin(spreadsheet::EditStart::keep);
             EXPECT_TRUE(grid().entry().commit());
         }},
        {"undone", false, [this] { design("=1"), trigger("MenuUndo"); }},
        {"undone after formulas were shown", false,
         [this] { design("=1"), trigger("MenuShowFormula"), trigger("MenuUndo"), trigger("MenuUndo"); }},
        {"page set-up, which stands in the report's row", false,
         [this] {
             changePrintSettings(grid().cells().workbook(),
                                 [](auto& print) { print.marginTop = 1, print.header = "x"; });
         }},
        {"print options, which stand in the sheet", true,
         [this] {
             changeActiveSheetsPrint(grid().cells().workbook(), [](auto& print) { print.fitAcross = 1; });
         }},
        {"redone", true, [this] { design("=1"), trigger("MenuUndo"), trigger("MenuRedo"); }},
        {"a cell, seen as formula", true, [this] { trigger("MenuShowFormula"), design("=1"); }},
        {"a look", true, [this] { trigger("MenuBold"); }},
        {"a size", true, [this] { grid().cells().setColumnWidth(2, 3000); }},
        {"a sheet", true, [this] { grid().commands().addSheet(); }},
        {"the name", true, [this] { edit("txtReportName").setText("改名"); }},
    };
    for (const auto& [what, changes, act] : cases) {
        open();
        act();
        window->close();
        EXPECT_EQ(copies().size(), changes ? 1 : 0) << what;
        window.reset();
        for (const QString& name : copies())
            QFile::remove(folder.filePath(name));
    }
}

TEST_F(RecoveryTest, PrintingFromThePreviewIsNoChange)
{
    storeReport();
    open();
    printerSetup().file = (folder.path() + "/表.pdf").toStdString();
    whenModal("frmPreview", [](QWidget& preview) {
        whenModal("PrintDlg", [](QWidget& dialog) { control<QPushButton>(dialog, "Command2").click(); });
        control<QPushButton>(preview, "cmdHelp").click();
    });
    trigger("MenuPreview");
    printerSetup() = {};
    EXPECT_TRUE(QFile::exists(folder.filePath("表.pdf")));
    EXPECT_TRUE(grid().cells().sheet().settings().print.border) << "as the dialog says";
    EXPECT_FALSE(window->isVisible()) << "printing closes the designer";
    EXPECT_EQ(copies(), QStringList());
}

TEST_F(RecoveryTest, AWindowIsNotOfferedWhatAnotherHolds)
{
    open();
    design("=1");
    frmEditor second(sharedContext);
    second.fps1().cells().sheet().setText({2, 2}, "乙");
    second.reject();
    EXPECT_EQ(copies().size(), 1);
    const frmEditor third(sharedContext);
    EXPECT_FALSE(third.findChild<QWidget*>("lineUnsaved")->isVisibleTo(&third)) << "the second one lives";
    window->close();
    EXPECT_EQ(copies().size(), 2) << "one for each window";
}

TEST_F(RecoveryTest, ALockEndsWithItsProcess)
{
    const std::filesystem::path file = (folder.path() + "/Recovery_x").toStdString();
    int ready[2];
    ASSERT_EQ(pipe(ready), 0);
    const pid_t child = fork();
    if (child == 0) {
        RecoveryCopy copy(file);
        copy.write({}, {});
        copy.write({Left::open, "表", {}}, {}); // the file that stands is another
        [[maybe_unused]] const auto told = write(ready[1], "x", 1);
        for (;;)
            pause();
    }
    char one = 0;
    ASSERT_EQ(read(ready[0], &one, 1), 1);
    EXPECT_FALSE(RecoveryCopy::takeOver(file));
    kill(child, SIGKILL);
    waitpid(child, nullptr, 0);
    const auto copy = RecoveryCopy::takeOver(file);
    ASSERT_TRUE(copy);
    EXPECT_EQ(copy->note().name, "表");
    EXPECT_FALSE(RecoveryCopy::takeOver(file)) << "taken over once";
    close(ready[0]);
    close(ready[1]);
}

TEST_F(RecoveryTest, SavingLeavesWhatOthersLeft)
{
    const auto file = leave(Left::closed);
    open();
    edit("txtReportName").setText("别的");
    design("=1");
    trigger("MenuFileSave");
    window->close();
    EXPECT_EQ(onlyCopy(), file);
}

TEST_F(RecoveryTest, RestoringKeepsThePresentDesign)
{
    leave(Left::closed);
    open();
    design("=1");
    click("cmdRestore");
    EXPECT_EQ(formula(1, 1), "6*7");
    EXPECT_EQ(copies().size(), 2);
    edit("txtReportName").setText("表");
    trigger("MenuFileSave");
    gEditFlag = 0;
    open();
    click("cmdRestore");
    EXPECT_EQ(formula(1, 1), "1");
}

TEST_F(RecoveryTest, OldCopiesAreOfferedOnceMore)
{
    for (const Left left : {Left::open, Left::closed}) {
        const auto file = leave(left);
        age(file, 29 * 24h);
        open();
        open();
        EXPECT_TRUE(isOffered()) << "not old yet";
        age(file, 31 * 24h);
        window.reset();
        open();
        EXPECT_TRUE(isOffered());
        open();
        EXPECT_FALSE(isOffered());
        EXPECT_EQ(copies(), QStringList());
    }
}

TEST_F(RecoveryTest, ACopyThatCannotBeReadIsToldAndStays)
{
    const struct {
        const char* what;
        std::function<void(const std::filesystem::path&)> spoil;
    } cases[] = {
        {"empty", [](const auto& file) { std::filesystem::resize_file(file, 0); }},
        {"cut in its note", [](const auto& file) { std::filesystem::resize_file(file, 30); }},
        {"cut", [](const auto& file) { std::filesystem::resize_file(file, file_size(file) - 9); }},
        {"something else", [](const auto& file) { std::ofstream(file) << "hello"; }},
        {"one byte",
         [](const auto& file) {
             std::fstream(file, std::ios::in | std::ios::out)
                 .seekp(static_cast<std::streamoff>(file_size(file)) - 20)
                 .put('\xAA');
         }},
    };
    for (const auto& [what, spoil] : cases) {
        const auto file = leave(Left::closed);
        spoil(file);
        open();
        design("=1");
        ledger.boxes.said.clear();
        ledger.boxes.answer = false;
        ASSERT_TRUE(isOffered()) << what;
        click("cmdRestore");
        ASSERT_EQ(ledger.boxes.said.size(), 1u) << what;
        EXPECT_EQ(ledger.boxes.said[0].icon, Icon::exclamation);
        EXPECT_TRUE(ledger.boxes.said[0].text.starts_with("未保存的设计不能恢复: ")) << what;
        EXPECT_EQ(formula(1, 1), "1") << what << ": the present design stays";
        EXPECT_TRUE(exists(file)) << what;
        EXPECT_TRUE(isOffered()) << what;
        click("cmdDiscard");
        EXPECT_FALSE(exists(file)) << what;
        window.reset();
        for (const QString& name : copies())
            QFile::remove(folder.filePath(name));
        ledger.boxes.said.clear();
    }
}

TEST_F(RecoveryTest, ThoseOfEarlierProgramsAreTakenUp)
{
    const auto file = leave(Left::closed);
    const std::string name = file.filename().string();
    {
        const auto content = RecoveryCopy::takeOver(file)->content();
        std::ofstream(file.parent_path() / (name.substr(0, name.find("_new") + 4) + ".ss7"))
            .write(reinterpret_cast<const char*>(content.data()), std::ssize(content));
        std::filesystem::remove(file);
    }
    ledger.boxes.answer = true;
    open();
    EXPECT_EQ(ledger.boxes.said, std::vector{question()});
    EXPECT_EQ(formula(1, 1), "6*7");
    edit("txtReportName").setText("表");
    trigger("MenuFileSave");
    EXPECT_EQ(copies(), QStringList());
}

TEST_F(RecoveryTest, AnotherLedgersOrUsersDesignIsNotOffered)
{
    leave(Left::closed);
    const std::string own = gConnString;
    const std::pair<std::string, const char*> others[] = {{own + ";Application Name=x", "wang"}, {own, "li"}};
    for (const auto& [target, user] : others) {
        gConnString = target;
        gLoginUserId = user;
        open();
        EXPECT_FALSE(isOffered()) << user;
    }
    gLoginUserId = "wang";
    gConnString = own + ";Password=changed";
    open();
    EXPECT_TRUE(isOffered());
}

/// No file may grow beyond so many bytes while it lives, as on a full disk.
struct DiskIsFull {
    explicit DiskIsFull(rlim_t bytes)
    {
        signal(SIGXFSZ, SIG_IGN);
        getrlimit(RLIMIT_FSIZE, &former);
        const rlimit small{bytes, former.rlim_max};
        setrlimit(RLIMIT_FSIZE, &small);
    }
    ~DiskIsFull() { setrlimit(RLIMIT_FSIZE, &former); }
    rlimit former{};
};

TEST_F(RecoveryTest, ADesignThatCannotBeKeptHoldsUpClosingOnce)
{
    const struct {
        const char* what;
        const char* folder;
        std::unique_ptr<DiskIsFull> (*begin)();
    } cases[] = {
        {"no folder", "", [] { return std::unique_ptr<DiskIsFull>(); }},
        {"the folder is gone", "/gone", [] { return std::unique_ptr<DiskIsFull>(); }},
        {"the folder is a file", "/file", [] { return std::unique_ptr<DiskIsFull>(); }},
        {"the disk is full", "/full", [] { return std::make_unique<DiskIsFull>(100); }},
    };
    const std::string base = folder.path().toStdString();
    std::ofstream(base + "/file") << "x";
    std::filesystem::create_directory(base + "/full");
    for (const auto& [what, name, begin] : cases) {
        gAppPath = *name == '\0' ? "" : base + name;
        open();
        design("=6*7");
        {
            const auto trouble = begin();
            window->close();
        }
        EXPECT_TRUE(window->isVisible()) << what;
        ASSERT_EQ(ledger.boxes.said.size(), 1u) << what;
        EXPECT_EQ(ledger.boxes.said[0].icon, Icon::exclamation);
        const auto& told = control<QLabel>(*window, "lblStatusTrouble");
        EXPECT_TRUE(told.isVisibleTo(window.get())) << what;
        EXPECT_TRUE(told.text().startsWith("未保存的设计不能备份: ")) << told.text().toStdString();
        EXPECT_EQ(formula(1, 1), "6*7") << what;
        {
            const auto trouble = begin();
            window->close();
        }
        EXPECT_FALSE(window->isVisible()) << what;
        EXPECT_EQ(ledger.boxes.said.size(), 1u) << what << ": told once";
        ledger.boxes.said.clear();
    }
    EXPECT_EQ(QDir(QString::fromStdString(base) + "/full").entryList(QDir::Files | QDir::Hidden),
              QStringList());
}

TEST_F(RecoveryTest, WhatCannotBeKeptLeavesTheFormerCopy)
{
    spreadsheet::Workbook workbook;
    Recovery recovery(sharedContext, workbook, 3, [] { return Recovery::Heading{"表", {}}; });
    std::vector<std::string> told;
    recovery.tell = [&told](const std::string& trouble) { told.push_back(trouble); };
    workbook.sheet(1).setText({1, 1}, "甲");
    EXPECT_TRUE(recovery.keep(false));
    const auto file = onlyCopy();
    const auto size = file_size(file);
    {
        const DiskIsFull full(50);
        for (const char* text : {"乙", "丙"}) {
            workbook.sheet(1).setText({1, 1}, text);
            EXPECT_FALSE(recovery.keep(false));
        }
        EXPECT_EQ(told.size(), 1u) << "told once";
    }
    EXPECT_EQ(file_size(file), size);
    EXPECT_TRUE(recovery.keep(false));
    EXPECT_EQ(told.size(), 2u);
    EXPECT_EQ(told.back(), "") << "it can be kept again";
}

} // namespace
} // namespace selfreport
