#pragma once
#include <QDialog>

class QLineEdit;

namespace selfreport {

/// The four run parameters of the user's settings that fill the placeholders of headers and footers.
class frmRunParameters : public QDialog {
    Q_OBJECT

public:
    explicit frmRunParameters(QWidget* parent = nullptr);

private:
    void cmdXPOK_Click();

    QLineEdit* m_txt[4] = {};
};

} // namespace selfreport
