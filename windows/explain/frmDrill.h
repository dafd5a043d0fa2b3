#pragma once
#include "explain/DrillTree.h"

#include <QDialog>

#include <functional>
#include <memory>

class QComboBox;
class QLabel;
class QTreeWidget;
class QTreeWidgetItem;

namespace spreadsheet {
class SpreadsheetControl;
}

namespace selfreport {

class RunRecord;
struct ReportContext;

/// What a figure is made of, level by level down to the vouchers. Stays open beside the report.
class frmDrill : public QDialog {
    Q_OBJECT

public:
    /// @param context  whose database is asked
    frmDrill(ReportContext& context, spreadsheet::SpreadsheetControl& grid, QWidget* parent = nullptr);
    ~frmDrill() override;

    /// Takes the grid's active cell apart. False, and nothing changes, if the record lacks calls of it: the
    /// report was not computed since it was opened.
    /// @param report  its name
    [[nodiscard]] bool explain(const std::string& report, const RunRecord& record);

    using PlaceIn =
        std::function<std::optional<spreadsheet::CallPlace>(const spreadsheet::Workbook& workbook)>;
    /// Opens another report by its name. @param place  of the cell that is shown there, if it has it
    std::function<void(const std::string& report, const PlaceIn& place)> openReport = [](const std::string&,
                                                                                         const PlaceIn&) {};

    /// Esc goes up to the first level, and from there closes this window.
    void reject() override;

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;
    void closeEvent(QCloseEvent* event) override;

private:
    void buildLayout();
    void nameAccounts();
    void showHead();
    void addRow(QTreeWidgetItem* above, DrillNode& node, double sum);
    void addRows(QTreeWidgetItem* above, DrillNode& node);
    void openRow(QTreeWidgetItem* row);
    void reopen(QTreeWidgetItem* row, std::size_t way, std::int64_t page);
    void makeRoom(const QTreeWidgetItem* row);
    void enterRow();
    void activateRow(QTreeWidgetItem* row);
    void chooseWay(int way);
    void goToCell(const DrillNode& node);
    void exportTree();
    void printTree();

    ReportContext& m_context;
    spreadsheet::SpreadsheetControl& m_grid;
    QLabel* m_head;
    QLabel* m_foot;
    QLabel* m_status;
    QComboBox* m_cboWay;
    QTreeWidget* m_tree;
    std::unique_ptr<DrillTree> m_figure;
};

} // namespace selfreport
