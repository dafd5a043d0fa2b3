#pragma once
#include <QSize>
#include <QWidget>

#include <functional>
#include <memory>
#include <vector>

namespace selfreport::test {

/// A window of ours as a user sees it.
struct ShownWindow {
    const char* name;
    std::function<std::unique_ptr<QWidget>()> make;
    QSize size = {}; ///< none: as the window opens
};

/// All windows that stand alone, on the ledger that the shared state names, which has to be there as long as
/// this. A new window is a row of it: what holds for all of them is then tested of it, and a picture is
/// taken.
class EveryWindow {
public:
    EveryWindow();
    ~EveryWindow();

    std::vector<ShownWindow> windows();

private:
    struct Ground;
    std::unique_ptr<Ground> m_ground; ///< what the windows work on
};

} // namespace selfreport::test
