#include "platform/toolkit/QtColourDialog.h"

#include "platform/toolkit/ChineseTexts.h"
#include "platform/windows/front_window.h"

#include <QColorDialog>

#include <memory>

namespace selfreport {

namespace {

/// The toolkit's own dialog: that of the desktop speaks the desktop's language.
std::unique_ptr<QColorDialog> prepared(QColor first)
{
    const BuildingOurs building;
    auto dialog = std::make_unique<QColorDialog>(frontWindow());
    dialog->setObjectName("colourDialog");
    dialog->setOption(QColorDialog::DontUseNativeDialog);
    dialog->setCurrentColor(first);
    return dialog;
}

} // namespace

std::optional<std::uint32_t> QtColourDialog::choose(std::uint32_t first)
{
    constexpr QRgb redGreenBlue = 0xFFFFFF; // without the opacity
    const auto dialog = prepared(QColor(static_cast<QRgb>(first)));
    if (dialog->exec() != QDialog::Accepted)
        return {};
    return dialog->selectedColor().rgb() & redGreenBlue;
}

} // namespace selfreport
