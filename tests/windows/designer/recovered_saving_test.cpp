// Saving a design that was taken up from a copy, after the stored report changed.
#include "tests/windows/designer/DesignerTest.h"

#include <QToolButton>

namespace selfreport {
namespace {

class RecoveredSaving : public test::DesignerTest {
protected:
    RecoveredSaving() { storeReport(); }
    /// Leaves a copy of the design `=6*7`, made from the report as it is stored.
    void leave()
    {
        open();
        moveTo(1, 1);
        typeInBox("=6*7", Qt::Key_Return);
        window->close();
        window.reset();
    }
    void takeUp()
    {
        open();
        control<QToolButton>(*window, "cmdRestore").click();
        ASSERT_EQ(formula(1, 1), "6*7");
        ledger.boxes.said.clear();
        ledger.boxes.offered.clear();
    }
    std::string storedFormula()
    {
        spreadsheet::Workbook stored;
        spreadsheet::loadContent(
            stored,
            ledger.query("select fFileContent from tblCWSelfReport where noid=3").binary(0, "fFileContent"));
        return stored.sheet(1).formula({1, 1});
    }
    using Offered = std::vector<std::vector<std::string>>;
};

TEST_F(RecoveredSaving, AsksIfTheReportWasSavedMeanwhile)
{
    const struct {
        const char* what;
        const char* meanwhile; ///< null: nothing
        std::deque<std::string> chosen;
        Offered offered;
        bool isSaved;
    } cases[] = {
        {"nothing happened", nullptr, {}, {}, true},
        {"saved by another",
         "update tblCWSelfReport set fbillerid='li',fdate='2031-05-06 07:08:09' where noid=3",
         {},
         {{"覆盖", "另存为新报表"}},
         false},
        {"and replaced",
         "update tblCWSelfReport set fbillerid='zhao',fdate='2032-05-06 07:08:09' where noid=3",
         {"覆盖"},
         {{"覆盖", "另存为新报表"}},
         true},
    };
    for (const auto& [what, meanwhile, chosen, offered, isSaved] : cases) {
        const std::string before = storedFormula();
        leave();
        if (meanwhile)
            ledger.run(meanwhile);
        takeUp(); // the window has loaded the newer version, its design is of the older one
        ledger.boxes.chosen = chosen;
        trigger("MenuFileSave");
        EXPECT_EQ(ledger.boxes.offered, offered) << what;
        EXPECT_EQ(storedFormula(), isSaved ? "6*7" : before) << what;
        window->close();
        if (isSaved) { // the next one begins with another formula
            open();
            moveTo(1, 1);
            typeInBox("=1+1", Qt::Key_Return);
            trigger("MenuFileSave");
        } else {
            open();
            control<QToolButton>(*window, "cmdDiscard").click();
        }
        window.reset();
    }
}

TEST_F(RecoveredSaving, AsksIfTheReportWasDeletedMeanwhile)
{
    leave();
    ledger.run("delete from tblCWSelfReport");
    takeUp();
    trigger("MenuFileSave");
    EXPECT_FALSE(ledger.boxes.offered.empty()) << "nothing is written without a question";
    EXPECT_EQ(ledger.query("select noid from tblCWSelfReport").rowCount(), 0u);
}

} // namespace
} // namespace selfreport
