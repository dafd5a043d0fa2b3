#include "platform/basicdata/ChooserWindow.h"
#include "platform/basicdata/clsAccountChooser.h"
#include "platform/basicdata/clsItemChooser.h"
#include "tests/fetch/TestLedger.h"
#include "tests/platform/WindowTest.h"
#include "tests/tdsserver/TdsServer.h"

#include <QLineEdit>
#include <QTreeView>

namespace selfreport {
namespace {

class Choosers : public test::WindowTest {
protected:
    Choosers()
    {
        ledger.run("insert into tblAccount(fitemid,fNumber,fName,fParentId,fLevel,fDirection) "
                   "values(20,'100201','工商银行',2,2,1)");
        ledger.run("insert into tblAccount(fitemid,fNumber,fName,fParentId,fLevel,fDirection) "
                   "values(21,'100202','建设银行',2,2,1)");
        ledger.run("insert into tblAccount(fitemid,fNumber,fName,fParentId,fLevel,fDirection) "
                   "values(22,'2201','孤儿',99,2,-1)");
    }
    /// Opens the account chooser, presses the keys, and tells what was chosen.
    std::string choose(const char* text, std::initializer_list<Qt::Key> keys,
                       const std::function<void(QWidget&)>& look = {})
    {
        clsAccountChooser chooser;
        chooser.initChooser(ledger.connectionString(), gTitle, "wang", "/folder");
        whenModal("clsAccountChooser", [&](QWidget& window) {
            auto& box = control<QLineEdit>(window, "txtSearch");
            EXPECT_EQ(window.focusWidget(), &box);
            box.setText(QString::fromUtf8(text));
            if (look)
                look(window);
            for (const Qt::Key key : keys)
                QTest::keyClick(&box, key);
            window.close();
        });
        EXPECT_TRUE(chooser.chooseAccount("", 1));
        return chooser.chosenNumber();
    }
    /// The tree as it is shown, from top to bottom: code, name and third column of every row that is open.
    static QString shown(QWidget& window)
    {
        auto& tree = control<QTreeView>(window, "tree");
        QStringList rows;
        for (QModelIndex at = tree.model()->index(0, 0); at.isValid(); at = tree.indexBelow(at)) {
            QString row;
            for (int column = 0; column < 3; ++column)
                row += at.siblingAtColumn(column).data().toString() + (column < 2 ? " " : "");
            rows.append(row);
        }
        return rows.join('/');
    }

    test::TestLedger ledger;
};

TEST_F(Choosers, AccountsStandInTheirTreeAndASearchOpensIt)
{
    const struct {
        const char *text, *shown;
    } cases[] = {
        {"", "1001 库存现金 借/1002 银行存款 借/1122 应收账款 借/2001 短期借款 贷/2201 孤儿 贷"},
        {"100202", "1002 银行存款 借/100202 建设银行 借"}, // with what stands above it
        {"yh", "1002 银行存款 借/100201 工商银行 借/100202 建设银行 借"},
        {"JSYH", "1002 银行存款 借/100202 建设银行 借"},
        {"款", "1002 银行存款 借/1122 应收账款 借/2001 短期借款 贷"},
        {"１１２２", "1122 应收账款 借"},
        {"没有", ""},
    };
    for (const auto& [text, expected] : cases)
        choose(text, {}, [&, expectedRows = expected](QWidget& window) {
            EXPECT_EQ(shown(window), expectedRows) << text;
        });
}

TEST_F(Choosers, KeyboardChooses)
{
    const struct {
        const char* text;
        std::initializer_list<Qt::Key> keys;
        const char* chosen;
    } cases[] = {
        {"", {Qt::Key_Return}, "1001"},
        {"", {Qt::Key_Down, Qt::Key_Return}, "1002"},
        {"", {Qt::Key_Down, Qt::Key_Right, Qt::Key_Down, Qt::Key_Return}, "100201"}, // opens the branch
        {"gsyh", {Qt::Key_Return}, "100201"}, // the match, not the account above it
        {"2", {Qt::Key_Return}, "2001"},      // the code that begins so, not 1002
        {"10", {Qt::Key_Down, Qt::Key_Down, Qt::Key_Up, Qt::Key_Return}, "1002"},
        {"没有", {Qt::Key_Return}, ""},
        {"", {Qt::Key_Escape}, ""},
    };
    for (const auto& [text, keys, chosen] : cases)
        EXPECT_EQ(choose(text, keys), chosen) << text;
}

TEST_F(Choosers, EmptyTablesOfferNothing)
{
    ledger.run("delete from tblAccount");
    EXPECT_EQ(choose("1", {Qt::Key_Return, Qt::Key_Down, Qt::Key_Return},
                     [](QWidget& window) { EXPECT_EQ(shown(window), ""); }),
              "");
    EXPECT_TRUE(ledger.boxes.said.empty());
}

TEST_F(Choosers, ItemsOfAClassAndWhatCannotBeShown)
{
    const struct {
        std::int16_t classId;
        const char *field, *chosen, *message;
    } cases[] = {
        {1, "fNumber", "002", ""},
        {1, "fName", "乙公司", ""},
        {2, "fNumber", "01", ""},
        {9, "fNumber", "", "核算项目类别不存在: 9"},
        {3, "fNumber", "", "核算项目类别的表名无效: tbl Customer;"},
        {-1, "fNumber", "", "核算项目类别不存在: -1"},
    };
    for (const auto& [classId, field, chosen, message] : cases) {
        ledger.boxes.said.clear();
        clsItemChooser chooser;
        chooser.initChooser("账套", "wang", "");
        if (*message == '\0')
            whenModal("clsItemChooser", [](QWidget& window) {
                auto& box = control<QLineEdit>(window, "txtSearch");
                QTest::keyClick(&box, Qt::Key_Down); // the last one of one or two
                QTest::keyClick(&box, Qt::Key_Return);
            });
        EXPECT_EQ(chooser.chooseItem(classId, field, "", ledger.connectionString(), 1, "", ""),
                  *message == '\0');
        EXPECT_EQ(chooser.chosenNumber(), chosen);
        ASSERT_EQ(ledger.boxes.said.size(), *message == '\0' ? 0U : 1U);
        if (*message == '\0')
            continue;
        EXPECT_EQ(ledger.boxes.said[0], (RecordingDialogs::Said{Icon::critical, "账套", message}));
    }
}

TEST_F(Choosers, AFailedOpeningIsToldAsEveryOne)
{
    const tds::TdsServer server(ledger.file());
    const std::string target = server.connectionString();
    const std::string stranger = target.substr(0, target.find(";User ID=")) + ";User ID=x;Password=y";
    const std::pair<std::string, const char*> openings[] = {
        {"Provider=SQLite;Data Source=/nowhere/at/all.db", "数据库文件不存在或读取错误!"},
        {stranger, "用户名或密码错误!"}};
    for (const auto& [connectionString, text] : openings) {
        ledger.boxes.said.clear();
        clsAccountChooser accounts;
        accounts.initChooser(connectionString, "账套", "", "");
        EXPECT_FALSE(accounts.chooseAccount("", 1));
        EXPECT_EQ(accounts.chosenNumber(), "");
        clsItemChooser items;
        items.initChooser("账套", "wang", "");
        EXPECT_FALSE(items.chooseItem(1, "fNumber", "", connectionString, 1, "", ""));
        const RecordingDialogs::Said told{Icon::critical, "账套", text};
        EXPECT_EQ(ledger.boxes.said, (std::vector{told, told}));
    }
}

} // namespace
} // namespace selfreport
