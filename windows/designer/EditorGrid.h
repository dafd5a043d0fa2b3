#pragma once
#include "windows/designer/frmEditor.h"
#include "windows/formulas/FormulaCell.h"
#include "windows/printing/PrintedGrid.h"

namespace selfreport {

/// The designer's grid as printing windows and formula dialogs see it.
class frmEditor::EditorGrid : public PrintedGrid, public FormulaCell {
public:
    EditorGrid(ReportContext& reportContext, frmEditor& window)
        : PrintedGrid(reportContext)
        , FormulaCell(reportContext)
        , m_window(window)
    {
    }

    spreadsheet::Workbook& workbook() override;
    spreadsheet::CellRange selectedBlock() const override;
    std::vector<spreadsheet::CellRange> selectedRanges() const override;
    std::string reportName() const override;
    int diagnosticsCount() const override;
    std::string failedFetches() const override;
    void goToFailedFetch() override;
    std::vector<CellWithoutData> cellsWithoutData() const override;
    void goTo(const CellWithoutData& cell) override;
    void tellStatus(std::string_view text) override;
    void closeDesigner() override;
    spreadsheet::Refusal pageSetupRefusal() const override;
    bool showsStoredMargins() const override;
    std::function<bool(Connection&)> ownershipOfRow() const override;
    void pageSetupStored(const std::array<double, 4>& inches, bool isPortrait) override;
    void headerStored(bool isFooter, const std::string& codes) override;
    /// Undo has given the sheets other print settings: the row gets them too, if it gave them what was
    /// undone.
    void pageSetupTravelled(bool alone);
    spreadsheet::Refusal writeFormula(const QString& formula) override;

private:
    frmEditor& m_window;
};

} // namespace selfreport
