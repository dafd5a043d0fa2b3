#pragma once
#include "spreadsheet/display/CellStyle.h"

#include <QDialog>

class QComboBox;
class QPushButton;

namespace spreadsheet {
class SpreadsheetControl;
}

namespace selfreport {

/// Draws lines around the selected ranges, between their cells or both, or takes all away.
class frmBorders : public QDialog {
    Q_OBJECT

public:
    explicit frmBorders(spreadsheet::SpreadsheetControl& grid, QWidget* parent = nullptr);

private:
    void edgesChosen();
    void chooseColour();
    void showColour();
    void cmdXPOK_Click();

    spreadsheet::SpreadsheetControl& m_grid;
    QComboBox* m_edges;
    QComboBox* m_line;
    QPushButton* m_colour;
    spreadsheet::Colour m_chosen = 0x000000;
};

} // namespace selfreport
