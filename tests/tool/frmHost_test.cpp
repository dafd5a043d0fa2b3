#include "tool/frmHost.h"

#include "platform/list_grid/ListGrid.h"
#include "platform/toolkit/QtSettings.h"
#include "tests/fetch/TestLedger.h"
#include "tests/platform/WindowTest.h"

#include <QLineEdit>
#include <QPushButton>
#include <QSettings>
#include <QTemporaryDir>

namespace selfreport {
namespace {

class HostWindow : public test::WindowTest {
protected:
    HostWindow()
    {
        addItem("10", "RSelf12", "521", "利润'表");
        addItem("20", "RSelf3", "521", "资产负债表");
        addItem("30", "RSelf4", "520", "别处的报表");
        addItem("40", "Voucher", "521", "凭证");
        addItem("50", "RSelfx", "521", "坏编号");
    }
    void addItem(const std::string& id, const std::string& number, const std::string& parent,
                 const std::string& name) const
    {
        openConnection(gConnString)
            ->execute("insert into tblsystemprivillenge(fitemid,fnumber,fname,fisdetail,fparentid) "
                      "values(?,?,?,1,?)",
                      {id, number, name, parent});
    }
    void open()
    {
        window = std::make_unique<frmHost>(frmHost::Operations{
            [this] { addItem("60", "RSelf5", "521", "新表"), ++designs; },
            [this](std::int32_t report) { used.push_back(report); },
        });
        show(*window);
    }
    ListGrid& menu() { return control<ListGrid>(*window, "vsf1"); }
    QPoint placeOf(int row) { return menu().visualRect(menu().model()->index(row - 1, 1)).center(); }

    test::TestLedger ledger;
    std::unique_ptr<frmHost> window;
    std::vector<std::int32_t> used;
    int designs = 0;
};

TEST_F(HostWindow, OffersTheMenusReportsAndRunsThem)
{
    open();
    EXPECT_EQ(window->windowTitle(), "财务报表");
    ASSERT_EQ(menu().rowCount(), 3);
    EXPECT_EQ(menu().text(1, 1), "资产负债表");
    EXPECT_EQ(menu().text(2, 1), "利润'表");
    QTest::mouseClick(menu().viewport(), Qt::LeftButton, {}, placeOf(2));
    QTest::mouseDClick(menu().viewport(), Qt::LeftButton, {}, placeOf(2));
    EXPECT_EQ(used, std::vector{12});
    QTest::keyClick(&menu(), Qt::Key_Up);
    QTest::keyClick(&menu(), Qt::Key_Return);
    accessKey(menu(), Qt::Key_O);
    EXPECT_EQ(used, (std::vector{12, 3, 3}));
}

TEST_F(HostWindow, ReadsTheMenuAnewAfterDesigning)
{
    open();
    accessKey(menu(), Qt::Key_D);
    EXPECT_EQ(designs, 1);
    EXPECT_EQ(menu().rowCount(), 4);
    ledger.run("alter table tblsystemprivillenge rename to gone");
    QTest::mouseClick(&control<QPushButton>(*window, "cmdRun"), Qt::LeftButton);
    EXPECT_TRUE(ledger.boxes.said.empty());
    window.reset();
    window = std::make_unique<frmHost>(frmHost::Operations{});
    ASSERT_EQ(ledger.boxes.said.size(), 1U);
    EXPECT_EQ(ledger.boxes.said[0].icon, Icon::exclamation);
    EXPECT_EQ(menu().rowCount(), 1);
}

TEST_F(HostWindow, RunParametersAreKeptForTheUser)
{
    const QTemporaryDir folder;
    QSettings::setPath(QSettings::IniFormat, QSettings::UserScope, folder.path());
    open();
    const auto enter = [this](const QString& company, const char* button) {
        QString before;
        whenModal("frmRunParameters", [&, company, button](QWidget& dialog) {
            before = control<QLineEdit>(dialog, "txt_1").text();
            control<QLineEdit>(dialog, "txt_1").setText(company);
            control<QPushButton>(dialog, button).click();
        });
        control<QPushButton>(*window, "cmdParameters").click();
        return before;
    };
    EXPECT_EQ(enter("甲公司, '分' & \"部\"", "cmdXPOK"), "");
    EXPECT_EQ(enter("不要", "cmdXPClose"), "甲公司, '分' & \"部\"");
    EXPECT_EQ(QtSettings().value("ParamValue", "Value2"), "甲公司, '分' & \"部\"");
}

} // namespace
} // namespace selfreport
