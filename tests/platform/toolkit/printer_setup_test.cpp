#include "platform/services/ScriptedDialogs.h"
#include "platform/services/ScriptedPrintService.h"
#include "platform/toolkit/QtPrinterSetupDialog.h"
#include "tests/platform/WindowTest.h"

#include <QCheckBox>
#include <QComboBox>
#include <QLabel>
#include <QPushButton>
#include <QSpinBox>
#include <thread>

namespace selfreport {
namespace {

struct PrinterSetupWindow : test::WindowTest {
    PrinterSetupWindow() { service.known = {{"甲", "三楼", false, true}, {"乙", "", true, true}}; }

    ScriptedPrintService service;
    PrintServiceInUse serviceInUse{service};
    ScriptedFileDialog files;
    FileDialogInUse filesInUse{files};
    QtPrinterSetupDialog dialog;
};

TEST_F(PrinterSetupWindow, GivesBackWhatWasChosen)
{
    whenModal("printerSetupDialog", [&](QWidget& window) {
        auto& printers = control<QComboBox>(window, "cboPrinter");
        EXPECT_EQ(printers.count(), 3);
        EXPECT_EQ(printers.currentText(), "乙") << "the default";
        EXPECT_TRUE(control<QLabel>(window, "lblProblem").isHidden());
        printers.setCurrentIndex(0);
        control<QComboBox>(window, "cboPaper").setCurrentText("A5");
        control<QSpinBox>(window, "txtCopies").setValue(3);
        for (const char* box : {"chkCollated", "chkBothSides", "chkColour"})
            control<QCheckBox>(window, box).click();
        control<QPushButton>(window, "cmdOK").click();
    });
    const PrinterSetup chosen{"甲", "A5", "", 3, false, false, false, true};
    EXPECT_EQ(dialog.choose({}), chosen);

    whenModal("printerSetupDialog", [&](QWidget& window) { control<QPushButton>(window, "cmdOK").click(); });
    EXPECT_EQ(dialog.choose(chosen), chosen) << "it opens on what was chosen before";
    whenModal("printerSetupDialog",
              [&](QWidget& window) { control<QPushButton>(window, "cmdClose").click(); });
    EXPECT_EQ(dialog.choose(chosen), std::nullopt);
}

TEST_F(PrinterSetupWindow, OffersAFileWhenNoPrinterAnswers)
{
    service.before = [] { throw PrintServiceError("打印服务没有回答。"); };
    files.answers = {std::nullopt, "/tmp/a.pdf"};
    whenModal("printerSetupDialog", [&](QWidget& window) {
        EXPECT_EQ(control<QLabel>(window, "lblProblem").text(), "打印服务没有回答。");
        EXPECT_EQ(control<QComboBox>(window, "cboPrinter").count(), 1);
        control<QPushButton>(window, "cmdOK").click();
        EXPECT_TRUE(window.isVisible()) << "no file was chosen";
        control<QPushButton>(window, "cmdOK").click();
    });
    const auto chosen = dialog.choose({});
    ASSERT_TRUE(chosen);
    EXPECT_EQ(chosen->file, "/tmp/a.pdf");
}

TEST_F(PrinterSetupWindow, AServiceThatHangsCanBeLeft)
{
    const auto user = std::this_thread::get_id();
    service.before = [user] {
        EXPECT_NE(std::this_thread::get_id(), user) << "the window would freeze";
        std::this_thread::sleep_for(std::chrono::seconds(3));
    };
    QTimer::singleShot(500, qApp, [&] {
        control<QPushButton>(*QApplication::activeModalWidget(), "cmdCancel").click();
        QTimer::singleShot(2200, qApp, [&] {
            QWidget& window = *QApplication::activeModalWidget();
            EXPECT_EQ(control<QLabel>(window, "lblProblem").text(), "打印服务没有回答。");
            control<QPushButton>(window, "cmdClose").click();
        });
    });
    EXPECT_EQ(dialog.choose({}), std::nullopt);
    std::this_thread::sleep_for(std::chrono::seconds(1)); // the service outlives the one that left it
}

} // namespace
} // namespace selfreport
