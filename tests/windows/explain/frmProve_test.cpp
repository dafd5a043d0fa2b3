#include "windows/explain/frmProve.h"

#include "platform/list_grid/ListGrid.h"
#include "tests/platform/commit_text.h"
#include "tests/windows/designer/DesignerTest.h"

#include <gmock/gmock.h>
#include <QLabel>
#include <QPlainTextEdit>
#include <QPushButton>

namespace selfreport {
namespace {

using ::testing::HasSubstr;

class Proof : public test::DesignerTest {};

TEST_F(Proof, TheLedgerProvesItselfAndPlacesWhatIsWrong)
{
    ledger.run("update tblAccountBal set fEndBal=fEndBal+0.01 where faccountid=1 and fPeriod=2");
    open();
    whenModal("frmProve", [&](QWidget& dialog) {
        control<QPushButton>(dialog, "cmdXPOK").click();
        auto& list = control<ListGrid>(dialog, "vsf1");
        EXPECT_GT(list.rowCount(), 20);
        EXPECT_EQ(list.text(list.row(), 0), "不符");
        EXPECT_EQ(list.text(list.row(), 1), "期初 + 借方 − 贷方 = 期末");
        EXPECT_EQ(list.text(list.row(), 2), "0.01");
        EXPECT_THAT(control<QPlainTextEdit>(dialog, "txtRows").toPlainText().toStdString(),
                    ::testing::AllOf(HasSubstr("2025\t2\t1001\t库存现金"), HasSubstr("查询: select")));
        dialog.close();
    });
    trigger("MenuProve");
}

/// What an earlier check found must not pass for the year that is asked for now.
TEST_F(Proof, ACheckThatFailsSaysWhichOneIsListed)
{
    open();
    whenModal("frmProve", [&](QWidget& dialog) {
        const auto check = [&](const char* year) {
            test::commitText(control<QLineEdit>(dialog, "txtYear"), year);
            control<QPushButton>(dialog, "cmdXPOK").click();
            return control<QLabel>(dialog, "lblSummary").text().toStdString();
        };
        EXPECT_THAT(check(""), ::testing::StartsWith("全部年度："));
        EXPECT_THAT(check("2025"), ::testing::StartsWith("2025 年："));
        EXPECT_THAT(check("２０２4"), ::testing::StartsWith("2024 年：")) << "as input methods write it";
        EXPECT_THAT(check("2025"), ::testing::StartsWith("2025 年："));
        ledger.run("alter table tblAccountBal rename to gone");
        EXPECT_THAT(check("2024"), ::testing::StartsWith("没有查完，列的还是上一次的。2025 年："));
        EXPECT_EQ(ledger.boxes.said.size(), 1U);
        ledger.run("alter table gone rename to tblAccountBal");
        EXPECT_THAT(check("2024"), ::testing::StartsWith("2024 年："));
        dialog.close();
    });
    trigger("MenuProve");
}

} // namespace
} // namespace selfreport
