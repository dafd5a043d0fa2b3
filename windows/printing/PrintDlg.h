#pragma once
#include "windows/printing/print_sheet.h"

#include <array>
#include <QDialog>

class QCheckBox;
class QGroupBox;
class QLineEdit;
class QRadioButton;

namespace selfreport {

class PrintedGrid;

/// Options and range of a printing. Printing closes the designer, the preview and the dialog; going to a cell
/// whose fetch failed closes preview and dialog; what fails or is cancelled closes nothing.
class PrintDlg : public QDialog {
    Q_OBJECT

public:
    explicit PrintDlg(PrintedGrid& grid, QWidget* parent = nullptr);

    /// Moves the dialog's choices to the designer's grid and prints it.
    PrintOutcome PrintSpread();

protected:
    /// A page field whose text is no number after a key was released holds 1.
    bool eventFilter(QObject* object, QEvent* event) override;

private:
    QGroupBox* optionFrame();
    QGroupBox* rangeFrame();
    void buildButtons();
    void Option1_Click(int index);
    void Command2_Click();
    void Command4_Click();
    /// False after telling that a page number is too large.
    [[nodiscard]] bool takeRange();

    PrintedGrid& m_grid;
    std::array<QCheckBox*, 7> Check1{};
    std::array<QRadioButton*, 4> Option1{};
    std::array<QLineEdit*, 2> Text1{};
};

} // namespace selfreport
