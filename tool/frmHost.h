#pragma once
#include <QDialog>

#include <functional>

namespace selfreport {

class ListGrid;

/// The window of our own host program: the menu of stored reports, which opens one for use, the designer's
/// list, and the run parameters that fill headers and footers.
class frmHost : public QDialog {
    Q_OBJECT

public:
    /// What the buttons do, as a host does it through the public class.
    struct Operations {
        std::function<void()> design;          ///< shows the list of reports
        std::function<void(std::int32_t)> use; ///< shows a stored report for use
    };
    explicit frmHost(Operations operations, QWidget* parent = nullptr);

private:
    /// Reads the menu anew. A failure is told; the rows stay.
    void fillMenu();
    void cmdDesign_Click();
    void cmdRun_Click();
    void cmdParameters_Click();

    Operations m_operations;
    ListGrid* m_vsf1;
};

} // namespace selfreport
