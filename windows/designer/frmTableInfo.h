#pragma once
#include "spreadsheet/values/Refusal.h"

#include <QDialog>

class QLineEdit;

namespace spreadsheet {
class CellOperations;
}

namespace selfreport {

struct ReportContext;

/// Size of the context's active sheet of a grid, number of sheets, name of the sheet.
class frmTableInfo : public QDialog {
    Q_OBJECT

public:
    frmTableInfo(ReportContext& context, spreadsheet::CellOperations& grid, QWidget* parent = nullptr);

private:
    void getEditInfo();
    void cmdOK_Click();
    void cmdClose_Click();
    bool refuse(int box, const QString& why);
    [[nodiscard]] bool readNumber(int box, int most, int& number);
    spreadsheet::Refusal apply(int rows, int columns, int sheets, int& box);

    ReportContext& m_context;
    spreadsheet::CellOperations& m_grid;
    QLineEdit* m_txt[4] = {};
};

} // namespace selfreport
