#include "spreadsheet/view/DropDownList.h"

#include <QGuiApplication>
#include <QKeyEvent>
#include <QListWidget>
#include <QScreen>
#include <QVBoxLayout>

#include <algorithm>
#include <utility>

namespace spreadsheet {

DropDownList::DropDownList(QWidget* parent)
    : QFrame(parent, Qt::Popup)
    , m_list(new QListWidget(this))
{
    setObjectName(QStringLiteral("dropDown"));
    setFrameShape(QFrame::Box);
    m_list->setObjectName(QStringLiteral("dropDownEntries"));
    m_list->setFrameShape(QFrame::NoFrame);
    m_list->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    m_list->setMouseTracking(true);
    m_list->installEventFilter(this);
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(m_list);
    setFocusProxy(m_list);
    connect(m_list, &QListWidget::itemClicked, this,
            [this](QListWidgetItem* item) { choose(m_list->row(item)); });
    connect(m_list, &QListWidget::itemEntered, m_list,
            [this](QListWidgetItem* item) { m_list->setCurrentItem(item); });
}

void DropDownList::open(const QStringList& entries, int current, const QRect& cell, const QFont& font)
{
    constexpr int mostRows = 12;
    m_chosen = -1;
    m_open = true;
    m_list->clear();
    m_list->setFont(font);
    m_list->addItems(entries);
    m_list->setCurrentRow(std::max(current, 0));
    const int rows = std::clamp(static_cast<int>(entries.size()), 1, mostRows);
    const int height = rows * std::max(m_list->sizeHintForRow(0), 16) + 2 * frameWidth();
    const int bar = entries.size() > mostRows ? 20 : 0;
    QRect place(cell.left(), cell.bottom() + 1,
                std::max(cell.width(), m_list->sizeHintForColumn(0) + bar + 2 * frameWidth() + 8), height);
    if (const QScreen* screen = QGuiApplication::screenAt(cell.center())) {
        const QRect available = screen->availableGeometry();
        if (place.bottom() > available.bottom())
            place.moveBottom(cell.top() - 1);
        place.moveLeft(std::clamp(place.left(), available.left(),
                                  std::max(available.right() - place.width(), available.left())));
    }
    setGeometry(place);
    show();
    m_list->setFocus();
}

void DropDownList::choose(int index)
{
    m_chosen = index;
    hide();
}

void DropDownList::hideEvent(QHideEvent* event)
{
    QFrame::hideEvent(event);
    if (std::exchange(m_open, false))
        Q_EMIT closed(m_chosen);
}

bool DropDownList::eventFilter(QObject* watched, QEvent* event)
{
    if (event->type() != QEvent::KeyPress)
        return QFrame::eventFilter(watched, event);
    const auto& key = static_cast<const QKeyEvent&>(*event);
    const bool alt = key.modifiers().testFlag(Qt::AltModifier);
    switch (key.key()) {
    case Qt::Key_Return:
    case Qt::Key_Enter:
    case Qt::Key_Tab:
        choose(m_list->currentRow());
        return true;
    case Qt::Key_Escape:
        choose(-1);
        return true;
    case Qt::Key_Up:
    case Qt::Key_Down:
        if (alt)
            choose(m_list->currentRow());
        return alt;
    default:
        return false;
    }
}

} // namespace spreadsheet
