#pragma once
#include "windows/printing/header_codes.h"

#include <array>
#include <QDialog>

class QPushButton;
class QRadioButton;

namespace spreadsheet {
class SpreadsheetControl;
}

namespace selfreport {

class PrintedGrid;

/// Edits header and footer of the report in the designer: nine lines with a left, a centre and a right part,
/// each in its own font.
class headerfooter : public QDialog {
    Q_OBJECT

public:
    explicit headerfooter(PrintedGrid& grid, QWidget* parent = nullptr);

    /// Shows nothing but the reason while header and footer may not be changed.
    int exec() override;

    /// Lays the editor's grid out.
    void InitSpread();
    /// The code string of a cell that is not empty.
    std::string GetCellData(std::int16_t column, std::int16_t row) const;
    /// Clears the grid and fills it from a code string, as far as that can be read.
    void GetHeaderDetail(const std::string& codes);
    /// Stores the grid as the report's header or footer: in its row, its grid and its context.
    [[nodiscard]] bool SaveConfiguration(); ///< false: an entry was refused and stays open

protected:
    bool eventFilter(QObject* object, QEvent* event) override;

private:
    bool isFooter() const;
    void buildHints();
    void buildApplyFrame();
    void buildButtons();
    void Option3_Click();
    void fitLines();
    void Command3_Click();
    void Command4_Click();
    void cmdXPOK_Click();
    void fpSpread1_RightButton();
    void cmdField_Click(std::string_view field);
    void fpSpread1_ButtonClicked(int column, int row);

    PrintedGrid& m_grid;
    spreadsheet::SpreadsheetControl* fpSpread1;
    std::array<QRadioButton*, 2> Option3{};
    QPushButton* Command3 = nullptr;
    HeaderReaderState m_reader;
};

} // namespace selfreport
