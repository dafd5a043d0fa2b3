#include "windows/pickers/code_picker.h"

#include "platform/list_grid/ListGrid.h"
#include "platform/windows/buttons.h"
#include "platform/windows/text_room.h"

#include <QDialog>
#include <QTabWidget>
#include <QVBoxLayout>

namespace selfreport {

ListGrid* buildCodePicker(QDialog& dialog, const char* caption, std::function<void()> ok,
                          std::function<void()> close)
{
    dialog.setWindowTitle(QString::fromUtf8(caption));
    auto* list = new ListGrid;
    list->setObjectName("vsf1");
    list->setColumns({{"", 450}, {"代码", 1500}, {"名称", 3000}});
    QObject::connect(list, &ListGrid::dblClick, &dialog, ok);
    auto* tabs = new QTabWidget;
    tabs->setObjectName("SSTab1");
    tabs->addTab(list, dialog.windowTitle());
    auto* layout = new QVBoxLayout(&dialog);
    layout->addWidget(tabs);
    layout->addWidget(okAndClose("确定(&O)", std::move(ok), "关闭(&E)", std::move(close)));
    dialog.resize(textRoom(dialog, 54, 22));
    list->setFocus();
    return list;
}

QString codeRow(const std::string& first, const std::string& code, const std::string& name)
{
    return QStringList{ListGrid::columnText(first), ListGrid::columnText(code), ListGrid::columnText(name)}
        .join('\t');
}

void pickCode(QDialog& dialog, const ListGrid& list, const std::function<void(const QString&)>& handBack)
{
    constexpr int codeColumn = 1;
    if (list.row() < 1)
        return;
    handBack(list.text(list.row(), codeColumn));
    dialog.close();
}

} // namespace selfreport
