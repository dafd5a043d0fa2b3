#pragma once
#include "fetch/diagnostics.h"

#include <QWidget>

#include <functional>
#include <vector>

namespace spreadsheet {
class Workbook;
}

namespace selfreport {

class ListGrid;

/// The list below the grid: cells whose fetch failed or found nothing ("取数诊断"), or what an import or
/// export could not carry over. Hidden until there is something to read.
class DiagnosticsPanel : public QWidget {
    Q_OBJECT

public:
    explicit DiagnosticsPanel(QWidget* parent = nullptr);

    /// Takes over what a recalculation found; an empty list hides the panel unless it was opened by hand.
    void setDiagnostics(const std::vector<CellDiagnostic>& diagnostics,
                        const spreadsheet::Workbook& workbook);

    /// Shows sentences instead, until the next recalculation.
    void showNotices(const QString& heading, const std::vector<std::string>& notices);

Q_SIGNALS:
    /// A line was double-clicked.
    void chosen(const selfreport::CellDiagnostic& diagnostic);

private:
    ListGrid* m_list;
    std::vector<CellDiagnostic> m_diagnostics; ///< the lines on show
    bool m_showsDiagnostics = true;
};

} // namespace selfreport
