#include "platform/toolkit/QtColourDialog.h"

#include <QApplication>
#include <QColorDialog>

namespace selfreport {

std::optional<std::uint32_t> QtColourDialog::choose(std::uint32_t first)
{
    constexpr QRgb redGreenBlue = 0xFFFFFF; // without the opacity
    QColorDialog dialog(QColor(static_cast<QRgb>(first)), QApplication::activeWindow());
    dialog.setObjectName("colourDialog");
    if (dialog.exec() != QDialog::Accepted)
        return {};
    return dialog.selectedColor().rgb() & redGreenBlue;
}

} // namespace selfreport
