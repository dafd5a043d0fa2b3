#include "windows/pickers/frmFilelList.h"

#include "fetch/fetch_types.h"
#include "platform/list_grid/ListGrid.h"
#include "platform/windows/settle.h"
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
    settle(*this);
}

void frmFilelList::getFieldKeys()
{
    m_context.database.done(Icon::critical, [this] {
        const auto types = m_context.database.asked<std::vector<FetchType>>(fetchTypes);
        for (const FetchType& type : types)
            m_vsf1->addRow(codeRow("", type.key, type.name));
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
