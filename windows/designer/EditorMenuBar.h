#pragma once
#include <QMenuBar>

namespace selfreport {

/// The designer's menu bar: when its keys have led through several menus, the focus still goes back to where
/// it was before the first.
class EditorMenuBar : public QMenuBar {
    Q_OBJECT

protected:
    bool event(QEvent* event) override;
};

} // namespace selfreport
