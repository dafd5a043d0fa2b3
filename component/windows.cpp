#include "component/windows.h"

#include "catalogue/frmSelfReportMain.h"
#include "component/state/shared_state.h"
#include "designer/frmEditor.h"
#include "platform/list_grid/ListGrid.h"

#include <QApplication>

#include <memory>

namespace selfreport {

namespace {

frmSelfReportMain* openList = nullptr;
frmEditor* openDesigner = nullptr;

/// Fills a slot with a window while it is open.
template <typename Window>
class Open {
public:
    Open(Window*& slot, Window& window)
        : m_slot(slot)
    {
        m_slot = &window;
    }
    ~Open() { m_slot = nullptr; }
    Open(const Open&) = delete;
    Open& operator=(const Open&) = delete;

private:
    Window*& m_slot;
};

void refill(frmSelfReportMain& list)
{
    gListRow = list.vsf1().row();
    list.getReport();
    if (gListRow <= list.vsf1().rowCount() - 1)
        list.vsf1().setRow(gListRow);
}

/// A list that is not open fills itself when it is made.
void refillList()
{
    if (openList)
        refill(*openList);
    else
        gListRow = frmSelfReportMain(showDesigner).vsf1().row();
}

} // namespace

void showReportList()
{
    if (openList)
        return;
    frmSelfReportMain list(showDesigner, QApplication::activeModalWidget());
    const Open open(openList, list);
    list.exec();
}

void showDesigner()
{
    if (openDesigner)
        return;
    {
        frmEditor designer(QApplication::activeModalWidget());
        const Open open(openDesigner, designer);
        designer.exec();
    }
    if (gFromList == 1)
        refillList();
}

} // namespace selfreport
