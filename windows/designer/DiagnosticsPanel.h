#pragma once
#include "fetch/diagnostics.h"

#include <QStringList>
#include <QWidget>

#include <cstddef>
#include <functional>
#include <vector>

class QLabel;

namespace spreadsheet {
class Workbook;
}

namespace selfreport {

class ListGrid;

/// The list below the grid: cells whose fetch failed or found nothing ("取数诊断"), or what an import or
/// export could not carry over, under a heading that says how many, with a button that closes it. Hidden
/// until there is something to read; in a splitter it opens a few lines high, as the statement is what is
/// read.
class DiagnosticsPanel : public QWidget {
    Q_OBJECT

public:
    explicit DiagnosticsPanel(QWidget* parent = nullptr);

    /// Takes over what a recalculation found. An empty list hides the panel; others show it until the user
    /// has closed it once.
    void setDiagnostics(const std::vector<CellDiagnostic>& diagnostics,
                        const spreadsheet::Workbook& workbook);

    bool showsDiagnostics() const { return m_showsDiagnostics; }
    void open(); ///< by hand: also what was closed

    /// Shows sentences instead, until the next recalculation.
    void showNotices(const QString& heading, const std::vector<std::string>& notices);

Q_SIGNALS:
    /// A line was double-clicked.
    void chosen(const selfreport::CellDiagnostic& diagnostic);

protected:
    void showEvent(QShowEvent* event) override;

private:
    int heightAtFirst() const;
    void showHeading(const QString& about, std::size_t count);

    QLabel* m_heading;
    ListGrid* m_list;
    std::vector<CellDiagnostic> m_diagnostics;
    QStringList m_lines; ///< their texts on show
    bool m_showsDiagnostics = true;
    bool m_isClosed = false;  ///< by the user
    bool m_hasOpened = false; ///< from then on its height is the user's matter
};

} // namespace selfreport
