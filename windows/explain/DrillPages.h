#pragma once
#include "spreadsheet/workbook/Workbook.h"
#include "windows/printing/PrintedGrid.h"

namespace selfreport {

struct DrillHead;
struct DrillNode;

/// The open part of a tree as printing windows see it: a workbook of its own, which nobody stores.
class DrillPages : public PrintedGrid {
public:
    DrillPages(ReportContext& reportContext, const DrillHead& head, const DrillNode& root);

    spreadsheet::Workbook& workbook() override { return m_workbook; }
    spreadsheet::CellRange selectedBlock() const override { return {1, 1, 1, 1}; }
    std::string reportName() const override { return m_name; }
    int diagnosticsCount() const override { return 0; }
    std::string failedFetches() const override { return {}; } ///< the tree says so itself
    void goToFailedFetch() override {}
    void tellStatus(std::string_view) override {}
    void closeDesigner() override;
    spreadsheet::Refusal pageSetupRefusal() const override;

private:
    spreadsheet::Workbook m_workbook;
    std::string m_name;
};

} // namespace selfreport
