#pragma once
#include <functional>
#include <QDialog>

namespace selfreport {

struct ReportContext;
class ListGrid;

/// Lets the user pick a currency, or all of them in base currency.
class frmCurrency : public QDialog {
    Q_OBJECT

public:
    /// @param context   whose database is asked
    /// @param handBack  takes the currency's code; "" for all currencies in base currency
    frmCurrency(ReportContext& context, std::function<void(const QString&)> handBack,
                QWidget* parent = nullptr);

private:
    /// Fills the list from the database. A failure is told; the rows read so far stay.
    void getCurrency();
    void cmdXPOK_Click();
    void cmdXPClose_Click();

    ReportContext& m_context;
    std::function<void(const QString&)> m_handBack;
    ListGrid* m_vsf1;
};

} // namespace selfreport
