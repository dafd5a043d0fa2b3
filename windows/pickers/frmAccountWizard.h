#pragma once
#include <functional>
#include <QDialog>
#include <string>

class QGridLayout;
class QKeyEvent;
class QLabel;

namespace spreadsheet {
class SpreadsheetControl;
}

namespace selfreport {

struct ReportContext;
class ArgumentBoxes;

/// Puts the account argument of an `Acct` call together: accounts from and to, and for each item class of
/// the account the codes that narrow it.
class frmAccountWizard : public QDialog {
    Q_OBJECT

public:
    /// @param context   whose database is asked
    /// @param handBack  takes the argument on OK
    frmAccountWizard(ReportContext& context, std::function<void(const QString&)> handBack,
                     QWidget* parent = nullptr);

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void buildGrid();
    void setRowCount(int count);
    void buildLayout(QGridLayout* accountRows);
    void getBasicInfo(int index);
    void getBasicInfoHSXM(int column);
    void getHSXMDetail(const QString& account);
    void txt_LostFocus(int index);
    void fps1_KeyDown(QKeyEvent* event);
    void fps1_ComboDropDown(int column);
    void fps1_ComboCloseUp(int column, int row, int index);
    void fps1_Change(int column, int row);
    void MenuInsertRow_Click();
    void cmdXPOK_Click();
    void cmdXPClose_Click();
    std::string argument();
    void showWords();

    ReportContext& m_context;
    std::function<void(const QString&)> m_handBack;
    ArgumentBoxes* m_txt;
    spreadsheet::SpreadsheetControl* m_fps1;
    QLabel* m_words;
};

} // namespace selfreport
