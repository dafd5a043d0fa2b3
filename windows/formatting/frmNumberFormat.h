#pragma once
#include "spreadsheet/display/CellStyle.h"
#include "spreadsheet/values/Value.h"
#include "windows/formatting/number_format_choice.h"

#include <QDialog>

class QCheckBox;
class QComboBox;
class QFormLayout;
class QLabel;
class QLineEdit;
class QListWidget;
class QSpinBox;

namespace spreadsheet {
class SpreadsheetControl;
}

namespace selfreport {

/// Chooses how the figures of the selected cells are shown: by their data type, as numbers, percentages,
/// dates or amounts in words, or by a code typed here. Each choice is shown on the active cell's own value.
/// Values, types and what other reports get of the cells stay.
class frmNumberFormat : public QDialog {
    Q_OBJECT

public:
    explicit frmNumberFormat(spreadsheet::SpreadsheetControl& grid, QWidget* parent = nullptr);

private:
    void buildKinds();
    void buildChoices(QFormLayout& form);
    void fillFrom(const NumberFormatChoice& choice);
    NumberFormatChoice chosen() const;
    void choiceChanged();
    void showPreviews(const NumberFormatChoice& choice);
    void codeTyped();
    QString shownBy(const std::string& code, const spreadsheet::Value& value) const;
    void cmdXPOK_Click();

    spreadsheet::SpreadsheetControl& m_grid;
    spreadsheet::CellStyle m_style; ///< of the active cell
    spreadsheet::Value m_value;     ///< that is shown as an example
    bool m_isFilling = false;
    QListWidget* m_kinds;
    QCheckBox *m_grouped, *m_apart;
    QSpinBox* m_decimals;
    QComboBox *m_negative, *m_zero, *m_unit, *m_date;
    QLineEdit* m_code;
    QLabel *m_preview, *m_note;
};

} // namespace selfreport
