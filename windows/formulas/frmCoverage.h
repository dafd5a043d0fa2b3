#pragma once
#include "fetch/coverage_calls.h"
#include "fetch/RunRecord.h"

#include <array>
#include <optional>
#include <QDialog>
#include <string>
#include <vector>

class QCheckBox;
class QComboBox;
class QGridLayout;
class QLabel;

namespace spreadsheet {
class SpreadsheetControl;
}

namespace selfreport {

class ArgumentBoxes;
class ListGrid;
struct ReportContext;

/// Which accounts the `Acct` cells of the sheet that is shown fetch once, several times or not at all. Stays
/// open beside the designer: a click on an account goes to its cells.
class frmCoverage : public QDialog {
    Q_OBJECT

public:
    /// @param context  whose database is asked
    /// @param record   of the grid's workbook, which knows where cells have come to lie
    frmCoverage(ReportContext& context, spreadsheet::SpreadsheetControl& grid, const RunRecord& record,
                QWidget* parent = nullptr);

    /// Looks at the sheet as it is now. A failure is told and empties the list.
    void check();

private:
    void buildLayout(QGridLayout* rows);
    void seekAccount(int index);
    /// Finds the calls and what they ask for. False if the user cancelled, or was told why not.
    bool readSheet();
    /// Looks the accounts up for the measure that is chosen, and lists them.
    void readAccounts();
    void askAccounts(); ///< there are none if the user cancelled or was told why not
    void listAccounts();
    QString summary() const;
    void goToCells();

    ReportContext& m_context;
    spreadsheet::SpreadsheetControl& m_grid;
    const RunRecord& m_record;
    ArgumentBoxes* m_txt;
    QComboBox* m_cboMeasure;
    QCheckBox* m_chkFaults;
    QLabel* m_summary;
    ListGrid* m_vsf1;
    SheetCalls m_sheet;                             ///< as it was looked at
    std::vector<RunRecord::FollowedPlace> m_places; ///< of its calls
    std::vector<CoverageMeasure> m_measures;
    std::vector<AccountCoverage> m_accounts;
    std::optional<std::array<std::string, 2>>
        m_asked;                       ///< the codes that they lie between, once they were read
    std::vector<std::size_t> m_listed; ///< the account of each line
    int m_visitedLine = 0;             ///< 0: none
    std::size_t m_visits = 0;          ///< of that line's calls
};

} // namespace selfreport
