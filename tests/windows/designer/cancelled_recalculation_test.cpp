#include "tests/windows/designer/DesignerTest.h"

#include <QElapsedTimer>
#include <QLabel>
#include <QPushButton>
#include <QStatusBar>

namespace selfreport {
namespace {

using test::closingBalance;

class CancelledRecalculation : public test::DesignerTest {
protected:
    CancelledRecalculation()
    {
        QObject::connect(&looking, &QTimer::timeout, &looking, [this] { look(); });
    }
    /// From now on a fetch goes on for minutes.
    void makeLedgerSlow() { ledger.database().makeEndless("tblAccount"); }
    void makeLedgerFast() { ledger.database().makeQuick("tblAccount"); }
    /// Clicks "取消" once the dialog has been open for a moment.
    void cancelWhenAsked()
    {
        ticks = 0;
        looking.start(10);
    }
    void look()
    {
        QWidget* const dialog = waitingDialog();
        if (!dialog || ++ticks < 10)
            return;
        looking.stop();
        sinceCancelled.start();
        control<QPushButton>(*dialog, "cmdCancel").click();
    }
    QString mode() { return control<QLabel>(*window, "lblStatusMode").text(); }
    QString message() { return control<QStatusBar>(*window, "statusBar").currentMessage(); }
    void expectToldAndKept(const char* what)
    {
        EXPECT_LT(sinceCancelled.elapsed(), 500) << what;
        EXPECT_EQ(message(), "重算已取消,各单元格保留原来的数值") << what;
        EXPECT_TRUE(mode().endsWith("数值未更新")) << what;
        EXPECT_EQ(grid().cells().text(1, 1), "100.25") << what;
        EXPECT_EQ(grid().cells().text(1, 2), "200.5") << what;
        EXPECT_TRUE(ledger.boxes.said.empty()) << what;
    }

    QTimer looking;
    int ticks = 0; ///< of the event loop while the dialog was open
    QElapsedTimer sinceCancelled;
};

TEST_F(CancelledRecalculation, KeepsAllValuesAndSaysSo)
{
    storeReport();
    open();
    moveTo(3, 1);
    typeInCell("=RAND()");
    trigger("MenuRecalculate");
    const QString drawn = grid().cells().text(3, 1);
    ledger.run("update tblAccountBal set fEndBal=999 where faccountid=1");
    makeLedgerSlow();
    for (const char* command : {"MenuRecalculate", "MenuShowDate"}) {
        cancelWhenAsked();
        trigger(command);
        expectToldAndKept(command);
        EXPECT_EQ(grid().cells().text(3, 1), drawn) << command;
    }
    makeLedgerFast();
    trigger("MenuRecalculate");
    EXPECT_EQ(grid().cells().text(1, 1), "999.00");
    EXPECT_NE(grid().cells().text(3, 1), drawn);
    EXPECT_EQ(mode(), "设计");
    EXPECT_EQ(message(), "");
}

TEST_F(CancelledRecalculation, AnEnteredFormulaIsComputedLater)
{
    open();
    moveTo(2, 2);
    typeInBox("12.5", Qt::Key_Return);
    makeLedgerSlow();
    cancelWhenAsked();
    typeInBox(QString("=") + closingBalance, Qt::Key_Return);
    EXPECT_EQ(formula(2, 2), closingBalance);
    EXPECT_EQ(grid().cells().text(2, 2), "12.5"); // neither empty nor 0.00
    EXPECT_EQ(mode(), "设计 数值未更新");
    makeLedgerFast();
    moveTo(2, 3);
    typeInBox("7", Qt::Key_Return);
    EXPECT_EQ(grid().cells().text(2, 2), "100.25");
    EXPECT_EQ(mode(), "设计");
}

/// One cell is given up before it takes so long, many together are not.
TEST_F(CancelledRecalculation, LongFormulasCanBeCancelled)
{
    open();
    moveTo(2, 2);
    typeInBox("12.5", Qt::Key_Return);
    constexpr int cells = 500; // many seconds
    const std::string pairs = "SUMPRODUCT((ROW(1:3000)+B2>TRANSPOSE(ROW(1:300)))*1)";
    for (int row = 1; row <= cells; ++row)
        spreadsheet::demand(grid().cells().sheet().setFormula({4, row}, pairs));
    cancelWhenAsked();
    typeInBox("=1+1", Qt::Key_Return);
    EXPECT_EQ(grid().cells().text(2, 2), "12.5");
    EXPECT_EQ(grid().cells().text(4, 1), "");
    EXPECT_EQ(mode(), "设计 数值未更新");
    for (int row = 2; row <= cells; ++row)
        grid().cells().sheet().setText({4, row}, "");
    typeInBox("=1+2", Qt::Key_Return);
    EXPECT_EQ(grid().cells().text(2, 2), "3");
    const int pairsOfTheFirstThree = 3 * 3000, pairsOfTheOthers = 297 * 3003 - (300 * 301 / 2 - 6);
    EXPECT_EQ(grid().cells().text(4, 1), QString::number(pairsOfTheFirstThree + pairsOfTheOthers));
    EXPECT_EQ(mode(), "设计");
}

TEST_F(CancelledRecalculation, OpeningForUseShowsWhatWasStored)
{
    storeReport();
    open();
    trigger("MenuRecalculate");
    trigger("MenuFileSave");
    ledger.boxes.said.clear();
    window.reset();
    gRunMode = true;
    makeLedgerSlow();
    window = std::make_unique<frmEditor>(sharedContext);
    cancelWhenAsked();
    show(*window);
    EXPECT_EQ(grid().cells().text(1, 1), "100.25"); // the first frame does not wait
    EXPECT_TRUE(QTest::qWaitFor([this] { return mode() == "使用 数值未更新"; }));
    expectToldAndKept("opening");
}

} // namespace
} // namespace selfreport
