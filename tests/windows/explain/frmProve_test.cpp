#include "windows/explain/frmProve.h"

#include "platform/list_grid/ListGrid.h"
#include "tests/windows/designer/DesignerTest.h"

#include <gmock/gmock.h>
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

} // namespace
} // namespace selfreport
