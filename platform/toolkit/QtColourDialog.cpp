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

/// The toolkit keeps custom colours for the whole program. While this lives they are all black; then those of
/// the host are back.
class FreshCustomColours {
public:
    FreshCustomColours()
    {
        for (int index = 0; index < QColorDialog::customCount(); ++index) {
            m_former.push_back(QColorDialog::customColor(index));
            QColorDialog::setCustomColor(index, Qt::black);
        }
    }
    ~FreshCustomColours()
    {
        for (int index = 0; index < m_former.size(); ++index)
            QColorDialog::setCustomColor(index, m_former[index]);
    }
    FreshCustomColours(const FreshCustomColours&) = delete;
    FreshCustomColours& operator=(const FreshCustomColours&) = delete;

private:
    QList<QColor> m_former;
};

} // namespace

std::optional<std::uint32_t> QtColourDialog::choose(std::uint32_t first)
{
    constexpr QRgb redGreenBlue = 0xFFFFFF; // without the opacity
    const FreshCustomColours fresh;
    const auto dialog = prepared(QColor(static_cast<QRgb>(first)));
    if (dialog->exec() != QDialog::Accepted)
        return {};
    return dialog->selectedColor().rgb() & redGreenBlue;
}

} // namespace selfreport
