#include "windows/pickers/frmFilelList.h"

#include "platform/list_grid/ListGrid.h"
#include "reports/ReportContext.h"
#include "windows/pickers/code_picker.h"

#include <utility>

namespace selfreport {

frmFilelList::frmFilelList(ReportContext& context, std::function<void(const QString&)> handBack,
                           QWidget* parent)
    : QDialog(parent)
    , m_context(context)
    , m_handBack(std::move(handBack))
{
    setObjectName("frmFilelList");
    m_vsf1 = buildCodePicker(
        *this, "取数类型", [this] { cmdXPOK_Click(); }, [this] { cmdXPClose_Click(); });
    getFieldKeys();
}

void frmFilelList::getFieldKeys()
{
    m_context.database.done(Icon::critical, [this] {
        const auto rows = m_context.database.asked<Recordset>(
            [](Connection& open) { return open.query("select * from tblSelfReportFieldKey order by noid"); });
        for (std::size_t row = 0; row < rows.rowCount(); ++row)
            m_vsf1->addRow(codeRow("", rows.text(row, "fKey"), rows.text(row, "fKeyName")));
    });
}

void frmFilelList::cmdXPOK_Click()
{
    pickCode(*this, *m_vsf1, m_handBack);
}

void frmFilelList::cmdXPClose_Click()
{
    close();
}

} // namespace selfreport
