#pragma once
#include <functional>
#include <QDialog>

class QLabel;

namespace selfreport {

class ListGrid;
struct ReportContext;

/// The list of all stored reports, from which they are created, opened, changed and deleted. It is filled
/// when it is made.
class frmSelfReportMain : public QDialog {
    Q_OBJECT

public:
    /// @param showDesigner  shows the designer on the context's report and returns once it is closed
    frmSelfReportMain(ReportContext& context, std::function<void()> showDesigner, QWidget* parent = nullptr);

    /// Refills the list from the database. False after telling the user why it failed; the rows stay then.
    bool getReport();

    /// Row 0 is the heading, column 0 the report's id.
    ListGrid& vsf1() { return *m_vsf1; }

    /// Makes the current row's report the open one of the context. False if no data row is current. (A
    /// window of the toolkit repaints by itself; its function of this name is of no use here.)
    bool update();

    /// Asks, and deletes the current row's report from the database. False if it is still there.
    bool delete_();

private:
    void buildList();
    void buildButtons();
    bool hasCurrentReport() const;
    bool isStillStored();
    void cmd_Click(int index);
    void cmdXPOK_Click();
    void cmdXPClose_Click();
    void vsf1_DblClick();

    ReportContext& m_context;
    std::function<void()> m_showDesigner;
    ListGrid* m_vsf1;
    QLabel* m_warning; ///< what to know of the database; mostly empty
};

} // namespace selfreport
