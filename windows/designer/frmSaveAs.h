#pragma once
#include <QDialog>

class QLineEdit;

namespace selfreport {

struct ReportContext;

/// Asks for the name of a report that is stored as a new one: a name that no report has.
class frmSaveAs : public QDialog {
    Q_OBJECT

public:
    frmSaveAs(ReportContext& context, const QString& name, QWidget* parent = nullptr);

    /// The name as typed.
    QString name() const;

private:
    void cmdXPOK_Click();

    ReportContext& m_context;
    QLineEdit* m_txtName;
};

} // namespace selfreport
