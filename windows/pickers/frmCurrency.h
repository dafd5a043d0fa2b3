#pragma once
#include <functional>
#include <QDialog>

namespace selfreport {

class ListGrid;

/// Lets the user pick a currency, or all of them in base currency.
class frmCurrency : public QDialog {
    Q_OBJECT

public:
    /// @param handBack  takes the currency's code; "" for all currencies in base currency
    explicit frmCurrency(std::function<void(const QString&)> handBack, QWidget* parent = nullptr);

private:
    /// Fills the list from the database. A failure is told; the rows read so far stay.
    void getCurrency();
    void cmdXPOK_Click();
    void cmdXPClose_Click();

    std::function<void(const QString&)> m_handBack;
    ListGrid* m_vsf1;
};

} // namespace selfreport
