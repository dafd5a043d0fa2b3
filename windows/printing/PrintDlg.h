#pragma once
#include "windows/printing/print_sheet.h"

#include <array>
#include <optional>
#include <QDialog>

class QCheckBox;
class QGroupBox;
class QLineEdit;
class QRadioButton;

namespace selfreport {

class PrintedGrid;

/// Options and range of a printing. Printing closes the designer, the preview and the dialog; going to a cell
/// whose fetch failed closes preview and dialog; what fails or is cancelled closes nothing.
/// While it is open the preview behind it shows the pages that it would print; the sheet gets its options
/// once they are printed.
class PrintDlg : public QDialog {
    Q_OBJECT

public:
    explicit PrintDlg(PrintedGrid& grid, QWidget* parent = nullptr);

    /// Moves the dialog's choices to the designer's grid and prints it.
    PrintOutcome PrintSpread();

    /// The preview shows again what the sheet holds.
    void done(int result) override;

protected:
    /// A page field whose text is no number after a key was released holds 1.
    bool eventFilter(QObject* object, QEvent* event) override;

private:
    QGroupBox* optionFrame();
    QGroupBox* rangeFrame();
    void buildButtons();
    void Option1_Click(int index);
    void Command1_Click();
    void Command2_Click();
    void Command4_Click();
    /// Nothing after telling that a page number is too large.
    std::optional<spreadsheet::PrintRange> range();
    spreadsheet::PrintSettings settings() const;
    void showChoice();

    PrintedGrid& m_grid;
    int m_page = 1; ///< that the preview shows
    bool m_isPrinted = false;
    std::array<QCheckBox*, 7> Check1{};
    std::array<QRadioButton*, 4> Option1{};
    std::array<QLineEdit*, 2> Text1{};
};

} // namespace selfreport
