#include "platform/windows/ProportionalLayout.h"

#include "platform/windows/twips.h"

#include <QWidget>

#include <algorithm>

namespace selfreport {

ProportionalLayout::ProportionalLayout(QWidget* parent, QSize boardTwips)
    : QLayout(parent)
    , m_board(boardTwips)
{
}

ProportionalLayout::~ProportionalLayout() = default;

void ProportionalLayout::place(QWidget* control, const QRect& twips)
{
    addChildWidget(control);
    m_placed.push_back({std::make_unique<QWidgetItem>(control), twips});
    invalidate();
}

void ProportionalLayout::addItem(QLayoutItem* item)
{
    m_placed.push_back({std::unique_ptr<QLayoutItem>(item), {}});
}

/// The board in pixels, so many times its size that every control has the room it needs.
QSize ProportionalLayout::boardScaled(double least) const
{
    const QWidget& window = *parentWidget();
    double factor = least;
    for (const Placed& placed : m_placed) {
        const QSize needed = placed.item->minimumSize();
        const int width = pixelsOf(placed.twips.width(), window);
        const int height = pixelsOf(placed.twips.height(), window);
        if (width > 0 && height > 0)
            factor = std::max({factor, double(needed.width()) / width, double(needed.height()) / height});
    }
    return {int(pixelsOf(m_board.width(), window) * factor),
            int(pixelsOf(m_board.height(), window) * factor)};
}

QSize ProportionalLayout::sizeHint() const
{
    return boardScaled(1);
}

QSize ProportionalLayout::minimumSize() const
{
    return boardScaled(0);
}

void ProportionalLayout::setGeometry(const QRect& area)
{
    QLayout::setGeometry(area);
    const double across = double(area.width()) / m_board.width();
    const double down = double(area.height()) / m_board.height();
    const auto scaled = [](int twips, double factor) {
        return static_cast<int>(std::lround(twips * factor));
    };
    for (const Placed& placed : m_placed) {
        if (placed.item->widget() == nullptr)
            continue;
        const QRect& twips = placed.twips;
        // Straight to the control: the item would keep a button as low as it likes to be.
        placed.item->widget()->setGeometry({area.x() + scaled(twips.x(), across),
                                            area.y() + scaled(twips.y(), down), scaled(twips.width(), across),
                                            scaled(twips.height(), down)});
    }
}

QLayoutItem* ProportionalLayout::itemAt(int index) const
{
    const auto position = static_cast<std::size_t>(index);
    return index >= 0 && position < m_placed.size() ? m_placed[position].item.get() : nullptr;
}

QLayoutItem* ProportionalLayout::takeAt(int index)
{
    if (itemAt(index) == nullptr)
        return nullptr;
    QLayoutItem* const taken = m_placed[static_cast<std::size_t>(index)].item.release();
    m_placed.erase(m_placed.begin() + index);
    return taken;
}

} // namespace selfreport
