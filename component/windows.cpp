#include "component/windows.h"

#include "component/host_call.h"
#include "platform/list_grid/ListGrid.h"
#include "platform/windows/HeldInput.h"
#include "state/mdlMain.h"
#include "state/shared_state.h"
#include "windows/designer/frmEditor.h"
#include "windows/list/frmSelfReportMain.h"

#include <QApplication>
#include <QPointer>

#include <utility>

namespace selfreport {

namespace {

constexpr const char* listIsOpen = "报表列表已经打开。";
constexpr const char* designerIsOpen = "报表设计窗口已经打开，请先关闭它。";

/// Of one kind of window: from before it is made until all that its closing brings is done.
struct Place {
    bool taken = false;
    QPointer<QDialog> window; ///< null while it is made and while it goes
};

Place listPlace, designerPlace;
Place* topPlace = nullptr; ///< of the window that opened last

class Taken {
public:
    explicit Taken(Place& place)
        : m_place(place)
        , m_below(std::exchange(topPlace, &place))
    {
        m_place.taken = true;
    }
    ~Taken()
    {
        m_place = {};
        topPlace = m_below;
    }
    Taken(const Taken&) = delete;
    Taken& operator=(const Taken&) = delete;

private:
    Place& m_place;
    Place* m_below;
};

/// Shows a window until it is closed. Its parent, a window of the host, may end before that and takes it
/// along. It works on what all windows share.
template <class Window, class... Arguments>
void showIn(Place& place, Arguments&&... arguments)
{
    struct Shown {
        QPointer<QDialog> window;
        ~Shown() { delete window.data(); }
    };
    const Shown shown{
        new Window(sharedContext, std::forward<Arguments>(arguments)..., QApplication::activeModalWidget())};
    place.window = shown.window;
    shown.window->exec();
    place.window.clear();
}

void refill(frmSelfReportMain& list)
{
    std::int32_t& row = sharedContext.listRow;
    row = list.vsf1().row();
    list.getReport();
    if (row <= list.vsf1().rowCount() - 1)
        list.vsf1().setRow(row);
}

/// A list that is not open fills itself when it is made.
void refillList()
{
    if (auto* const list = qobject_cast<frmSelfReportMain*>(listPlace.window.data()))
        refill(*list);
    else if (!listPlace.taken)
        sharedContext.listRow = frmSelfReportMain(sharedContext, showDesigner).vsf1().row();
}

/// The open window is not in the middle of anything: no dialog of ours is over it.
bool isIdle(const Place& place)
{
    return place.window && QApplication::activeModalWidget() == place.window;
}

} // namespace

void showReportList()
{
    if (listPlace.taken)
        return;
    const Taken taken(listPlace);
    if (!designerPlace.taken)
        return showIn<frmSelfReportMain>(listPlace, showDesigner);
    showIn<frmSelfReportMain>(listPlace, [report = sharedContext.report] {
        sharedContext.report = report; // which the list has just changed
        tellUser(Icon::exclamation, designerIsOpen);
    });
}

void showDesigner()
{
    if (designerPlace.taken)
        return;
    const Taken taken(designerPlace);
    showIn<frmEditor>(designerPlace);
    if (sharedContext.fromList == 1)
        refillList();
}

void requireRoomFor(HostWindow window)
{
    if ((window == HostWindow::list ? listPlace : designerPlace).taken)
        throw HostError(window == HostWindow::list ? listIsOpen : designerIsOpen);
    if (isDriverCallUnderWay() || HeldInput::isHolding() || (topPlace && !isIdle(*topPlace)))
        throw HostError("报表窗口正在处理另一项操作，请稍后再试。");
}

bool isWindowOpen()
{
    return topPlace != nullptr;
}

WorkBelow::WorkBelow()
    : m_isBelow(isWindowOpen())
    , m_report(sharedContext.report)
{
}

WorkBelow::~WorkBelow()
{
    if (m_isBelow)
        sharedContext.report = std::move(m_report);
}

} // namespace selfreport
