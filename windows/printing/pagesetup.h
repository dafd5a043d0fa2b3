#pragma once
#include <array>
#include <QDialog>

class QComboBox;
class QRadioButton;

namespace spreadsheet {
struct PrintSettings;
}

namespace selfreport {

class MarginField;
class PrintedGrid;

/// Margins, orientation and preview zoom of the report in the designer. The report's row keeps margins and
/// orientation; a report that was never saved has none.
class pagesetup : public QDialog {
    Q_OBJECT

public:
    explicit pagesetup(PrintedGrid& grid, QWidget* parent = nullptr);

    /// Loads the stored margins and orientation into the controls. Without a stored report they stay empty.
    void getReportInfo();
    /// Writes margins and orientation into the report's row.
    void saveToDB();

    /// Shows nothing but the reason while the page set-up may not be changed.
    int exec() override;

    /// Every way of closing keeps the list's entry for the next opening.
    void done(int result) override;

private:
    void buildMargins();
    void buildChoices();
    void buildButtons();
    void showMargin(int index, double inches);
    void showShownPrint();
    [[nodiscard]] bool marginsAreComplete();
    [[nodiscard]] bool marginsLeaveRoom();
    void apply(spreadsheet::PrintSettings& print) const;
    PrintedGrid& m_grid;
    bool m_zoomWasChosen = true; ///< before this opening
    std::array<double, 4> inches() const;
    void cmdXPOK_Click();
    void Command1_Click();

    std::array<MarginField*, 4> pagemargin{}; ///< left, right, top, bottom
    std::array<QRadioButton*, 2> porientation{};
    QComboBox* Combo1 = nullptr;
};

} // namespace selfreport
