#pragma once
#include "reports/ReportContext.h"

namespace selfreport {

// The two windows that a host opens. Each is modal and gone when the function returns; there is one of each
// kind at a time, and asking for one that is open does nothing.

/// The list of stored reports. Over a designer it offers no second one.
void showReportList();

/// The designer on the shared state as it is. When it closes and `gFromList` is 1 the list is refilled,
/// keeping its current row; a list that is not open is refilled unseen.
void showDesigner();

enum class HostWindow { list, designer };

/// Before a call of the host changes anything.
/// @throws HostError if the window could not be shown now: it is open, or a window of ours is opening,
/// closing
///         or in the middle of something (a box, a dialog, a fetch)
void requireRoomFor(HostWindow window);

/// Either of the windows is open, opening or closing.
bool isWindowOpen();

/// What the window below works on, put back when the one over it has closed. Without a window below nothing
/// is: later calls find what this one left.
class WorkBelow {
public:
    WorkBelow();
    ~WorkBelow();
    WorkBelow(const WorkBelow&) = delete;
    WorkBelow& operator=(const WorkBelow&) = delete;

private:
    bool m_isBelow;
    OpenReport m_report;
};

} // namespace selfreport
