#pragma once
#include <QDialog>

class QComboBox;
class QLabel;
class QLineEdit;
class QPushButton;

namespace spreadsheet {
class PreviewWidget;
}

namespace selfreport {

class PrintedGrid;

/// The active sheet of the designer's grid page by page. There is one instance, made when it is first needed;
/// the designer discards it when it ends.
class frmPreview : public QDialog {
    Q_OBJECT

public:
    /// The instance; made hidden if there is none.
    static frmPreview& shared(PrintedGrid& grid);
    static bool exists();
    /// Closes the instance, if there is one. It is gone at once or, while it is shown modally, when its loop
    /// has ended.
    static void discard();
    /// Brings pages, label and buttons of the instance up to date with the workbook, if there is one.
    static void refresh();
    /// Shows the instance modally and discards it after that.
    static void showModally(PrintedGrid& grid);

    explicit frmPreview(PrintedGrid& grid);

    /// Brings the page label and the two page buttons up to date.
    void UpdatePageCount();
    spreadsheet::PreviewWidget& fpsp1() { return *m_fpsp1; }

protected:
    void keyPressEvent(QKeyEvent* event) override;

private:
    void buildButtons();
    void cmdPrevious_Click();
    void cmdNext_Click();
    void cmdHome_Click();
    void cmdSupport_Click();
    void cmdHelp_Click();
    void buildSearch();
    void buildView();
    void showView();
    void cboZoom_Click(int index);
    void cmdFind_Click();
    void findOn(bool isForward);
    void showHits();
    void cmdCopy_Click();

    PrintedGrid& m_grid;
    spreadsheet::PreviewWidget* m_fpsp1;
    QLabel* lblPage;
    QComboBox* cboZoom = nullptr;
    QLineEdit* txtFind = nullptr;
    QLabel* lblHits = nullptr;
    QPushButton* cmdPrevious = nullptr;
    QPushButton* cmdNext = nullptr;
    bool m_shownModally = false;
};

} // namespace selfreport
