#pragma once
#include <QCursor>
#include <QGuiApplication>

namespace selfreport {

/// The pointer shows that the user has to wait, as long as this lives. Put it away before a box opens.
class WaitCursor {
public:
    WaitCursor() { QGuiApplication::setOverrideCursor(Qt::WaitCursor); }
    ~WaitCursor() { QGuiApplication::restoreOverrideCursor(); }
    WaitCursor(const WaitCursor&) = delete;
    WaitCursor& operator=(const WaitCursor&) = delete;
};

} // namespace selfreport
