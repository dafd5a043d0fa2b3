#include "platform/list_grid/ListGrid.h"
#include "tests/fetch/TestLedger.h"
#include "tests/platform/WindowTest.h"
#include "windows/pickers/frmCurrency.h"
#include "windows/pickers/frmFilelList.h"

#include <QPushButton>
#include <QTabWidget>

namespace selfreport {
namespace {

class CodePickers : public test::WindowTest {
protected:
    template <class Picker>
    void open()
    {
        handedBack.clear();
        window =
            std::make_unique<Picker>(sharedContext, [this](const QString& text) { handedBack.append(text); });
        show(*window);
    }
    ListGrid& list() { return control<ListGrid>(*window, "vsf1"); }
    void press(const char* button) { control<QPushButton>(*window, button).click(); }
    /// Rows below the heading, columns joined by "|", rows by "/".
    QString rows()
    {
        QStringList texts;
        for (int row = 1; row < list().rowCount(); ++row)
            texts.append(list().text(row, 0) + '|' + list().text(row, 1) + '|' + list().text(row, 2));
        return texts.join('/');
    }

    test::TestLedger ledger;
    std::unique_ptr<QDialog> window;
    QStringList handedBack;
};

TEST_F(CodePickers, CurrencyHandsBackTheCode)
{
    ledger.run("insert into tblCurrency values(3,'USD','美元')");
    open<frmCurrency>();
    EXPECT_EQ(window->windowTitle(), "币别");
    EXPECT_EQ(control<QTabWidget>(*window, "SSTab1").tabText(0), "币别");
    EXPECT_EQ(rows(), "1|RMB|人民币/3|USD|美元/0||综合本位币");
    const struct {
        int row;
        QStringList handedBack;
    } picks[] = {{2, {"USD"}}, {3, {""}}, {0, {}}};
    for (const auto& [row, expected] : picks) {
        open<frmCurrency>();
        list().setRow(row);
        press("cmdXPOK");
        EXPECT_EQ(handedBack, expected);
        EXPECT_EQ(window->isVisible(), expected.isEmpty());
    }
    open<frmCurrency>();
    const QPoint place = list().visualRect(list().model()->index(1, 1)).center();
    QTest::mouseClick(list().viewport(), Qt::LeftButton, {}, place);
    QTest::mouseDClick(list().viewport(), Qt::LeftButton, {}, place);
    EXPECT_EQ(handedBack, QStringList("USD"));
    open<frmCurrency>();
    press("cmdXPClose");
    EXPECT_TRUE(handedBack.isEmpty());
    EXPECT_FALSE(window->isVisible());
}

TEST_F(CodePickers, EmptyTables)
{
    ledger.run("delete from tblCurrency");
    ledger.run("delete from tblSelfReportFieldKey");
    open<frmCurrency>();
    EXPECT_EQ(rows(), "0||综合本位币");
    press("cmdXPOK");
    EXPECT_EQ(handedBack, QStringList(""));
    open<frmFilelList>();
    EXPECT_EQ(list().rowCount(), 1);
    press("cmdXPOK");
    EXPECT_TRUE(handedBack.isEmpty());
    EXPECT_TRUE(window->isVisible());
}

TEST_F(CodePickers, FetchTypesHandBackTheKeyInTheirOrder)
{
    ledger.run("delete from tblSelfReportFieldKey");
    ledger.run("insert into tblSelfReportFieldKey(noid,fKey,fKeyName) values(2,'A','期末余额')");
    ledger.run("insert into tblSelfReportFieldKey(noid,fKey,fKeyName) values(1,'B','期初余额')");
    open<frmFilelList>();
    EXPECT_EQ(window->windowTitle(), "取数类型");
    EXPECT_EQ(rows(), "|B|期初余额/|A|期末余额");
    QTest::keyClick(&list(), Qt::Key_Down);
    QTest::keyClick(&list(), Qt::Key_Return);
    EXPECT_EQ(handedBack, QStringList("A"));
    EXPECT_FALSE(window->isVisible());
}

TEST_F(CodePickers, FailuresAreToldAndLeaveNoExtraRow)
{
    ledger.run("alter table tblCurrency rename to gone");
    open<frmCurrency>();
    EXPECT_EQ(list().rowCount(), 1);
    ASSERT_EQ(ledger.boxes.said.size(), 1U);
    EXPECT_EQ(ledger.boxes.said[0].icon, Icon::critical);
    EXPECT_EQ(ledger.boxes.said[0].title, gTitle);
    EXPECT_FALSE(gCnn);
    ledger.boxes.said.clear();
    gConnString = "Provider=SQLite;Data Source=/nowhere/at/all.db";
    open<frmFilelList>();
    ASSERT_EQ(ledger.boxes.said.size(), 1U); // by the opening alone
    EXPECT_EQ(ledger.boxes.said[0].text, "数据库文件不存在或读取错误!");
}

} // namespace
} // namespace selfreport
