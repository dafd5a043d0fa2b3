#include "windows/pickers/frmCurrency.h"

#include "platform/list_grid/ListGrid.h"
#include "platform/windows/settle.h"
#include "reports/ReportContext.h"
#include "windows/pickers/code_picker.h"

#include <utility>

namespace selfreport {

frmCurrency::frmCurrency(ReportContext& context, std::function<void(const QString&)> handBack,
                         QWidget* parent)
    : QDialog(parent)
    , m_context(context)
    , m_handBack(std::move(handBack))
{
    setObjectName("frmCurrency");
    m_vsf1 = buildCodePicker(
        *this, "币别", [this] { cmdXPOK_Click(); }, [this] { cmdXPClose_Click(); });
    getCurrency();
    settle(*this);
}

void frmCurrency::getCurrency()
{
    m_context.database.done(Icon::critical, [this] {
        const auto rows = m_context.database.asked<Recordset>(
            [](Connection& open) { return open.query("select * from tblCurrency order by fitemid"); });
        for (std::size_t row = 0; row < rows.rowCount(); ++row)
            m_vsf1->addRow(
                codeRow(rows.text(row, "fitemid"), rows.text(row, "fnumber"), rows.text(row, "fname")));
        m_vsf1->addRow(codeRow("0", "", "综合本位币"));
    });
}

void frmCurrency::cmdXPOK_Click()
{
    pickCode(*this, *m_vsf1, m_handBack);
}

void frmCurrency::cmdXPClose_Click()
{
    close();
}

} // namespace selfreport
