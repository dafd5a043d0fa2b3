#include "windows/designer/FailedFetchBar.h"

namespace selfreport {

FailedFetchBar::FailedFetchBar(QWidget* parent)
    : QPushButton(parent)
{
    setObjectName("barFailedFetches");
    setAutoDefault(false); // Enter belongs to the grid
    setFocusPolicy(Qt::NoFocus);
    setCursor(Qt::PointingHandCursor);
    setToolTip(QStringLiteral("单击转到第一个取数失败的单元格"));
    setStyleSheet(QStringLiteral("QPushButton { background: #b00020; color: white; font-weight: bold; "
                                 "border: none; padding: 4px; text-align: left; }"));
    hide();
}

void FailedFetchBar::tell(const std::string& text)
{
    setText(QString::fromStdString(text));
    setVisible(!text.empty());
}

} // namespace selfreport
