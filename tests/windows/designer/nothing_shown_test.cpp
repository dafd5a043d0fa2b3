// What a sheet shows in place of nothing, and whether it is printed without it, as a user says so.
#include "fetch/CallState.h"
#include "platform/toolkit/QtDialogs.h"
#include "tests/windows/designer/DesignerTest.h"

#include <gmock/gmock.h>
#include <QComboBox>
#include <QMessageBox>
#include <QPushButton>

namespace selfreport {
namespace {

using ::testing::HasSubstr;

class NothingShown : public test::DesignerTest {
protected:
    /// A3 asks for an account that there is not, A4 adds to it.
    void openWithoutAccount()
    {
        storeReport();
        open();
        moveTo(1, 3);
        typeInCell(R"(=Acct("9999","2","","2025","1","2"))");
        typeInCell("=A3+7");
        trigger("MenuRecalculate");
    }
    void chooseForMissing(const QString& text)
    {
        constexpr int missing = 4; // the fifth row
        whenModal("frmNothing", [&](QWidget& shown) {
            shown.findChildren<QComboBox*>().at(missing)->setCurrentText(text);
            control<QPushButton>(shown, "cmdXPOK").click();
        });
        trigger("MenuNothing");
    }
    std::string shown(int row) { return grid().cells().sheet().displayText({1, row}); }
};

TEST_F(NothingShown, ShowsTheTextThatWasChosenUntilItIsTakenBack)
{
    openWithoutAccount();
    const std::string figure = shown(3);
    chooseForMissing("无此科目");
    EXPECT_EQ(shown(3), "无此科目");
    EXPECT_EQ(shown(4), "7") << "the cell's value stays 0";
    chooseForMissing("(空白)");
    const auto& texts = grid().cells().sheet().settings().nothingTexts;
    ASSERT_EQ(texts.size(), 1U);
    EXPECT_EQ(texts.begin()->first, static_cast<int>(CallState::missing));
    chooseForMissing("0.00");
    EXPECT_EQ(shown(3), figure);
    EXPECT_TRUE(grid().cells().sheet().settings().nothingTexts.empty());
}

TEST_F(NothingShown, AStrictSheetGoesToTheCellInsteadOfPrinting)
{
    QtDialogs real;
    const DialogsInUse inUse(real);
    openWithoutAccount();
    grid().cells().sheet().changeSettings(
        [](spreadsheet::SheetSettings& settings) { settings.print.strict = true; });
    moveTo(2, 7);
    bool isAsked = false;
    whenModal("messageBox", [&](QWidget& asked) {
        auto& box = dynamic_cast<QMessageBox&>(asked);
        isAsked = true;
        EXPECT_THAT(box.text().toStdString(), HasSubstr("※ 未取到数据 1 处"));
        EXPECT_THAT(box.text().toStdString(), HasSubstr("!A3  科目“9999”不存在"));
        for (QAbstractButton* const button : box.buttons())
            if (button->text().startsWith("转到"))
                button->click();
    });
    trigger("MenuExportPdf");
    EXPECT_TRUE(isAsked);
    EXPECT_EQ(grid().cursor().activeCell(), (spreadsheet::CellAddress{1, 3}));
}

} // namespace
} // namespace selfreport
