#pragma once
#include "explain/ledger_proof.h"

#include <QDialog>

class QLabel;
class QLineEdit;
class QPlainTextEdit;

namespace selfreport {

class ListGrid;
struct ReportContext;

/// Whether everything holds in the ledger that holds in a sound one: each identity with its difference, its
/// first rows and the statement that shows them all.
class frmProve : public QDialog {
    Q_OBJECT

public:
    /// @param context  whose database is asked
    explicit frmProve(ReportContext& context, QWidget* parent = nullptr);

    void check();

private:
    void buildLayout();
    void showIdentity();

    ReportContext& m_context;
    QLineEdit* m_txtYear;
    ListGrid* m_vsf1;
    QPlainTextEdit* m_rows;
    QLabel* m_summary;
    LedgerProof m_proof; ///< on show
    QString m_listed;    ///< what it says, and of which year; "" at first
};

} // namespace selfreport
