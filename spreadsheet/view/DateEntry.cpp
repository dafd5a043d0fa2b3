#include "spreadsheet/view/DateEntry.h"

#include "spreadsheet/display/cell_types.h"
#include "spreadsheet/values/date_serial.h"
#include "spreadsheet/view/SpreadsheetControl.h"

#include <QCalendarWidget>
#include <QGridLayout>
#include <QGuiApplication>
#include <QKeyEvent>
#include <QPushButton>
#include <QScreen>
#include <QTimeEdit>
#include <QToolButton>

#include <algorithm>
#include <cmath>

namespace spreadsheet {

namespace {

constexpr int buttonWidth = 18;
constexpr double secondsOfDay = 86'400;

CellHolds heldBy(const SpreadsheetControl& control, CellAddress cell)
{
    return cellTypeRow(control.cells().shownSheet().style(cell).type).holds;
}

/// First cell of the active one's span.
CellAddress activeAnchor(const SpreadsheetControl& control)
{
    const CellRange extent = control.cells().shownSheet().extent(control.cursor().activeCell());
    return {extent.left, extent.top};
}

} // namespace

DateEntry::DateEntry(SpreadsheetControl& control)
    : QFrame(&control, Qt::Popup)
    , m_control(control)
    , m_button(new QToolButton(&control))
    , m_calendar(new QCalendarWidget(this))
    , m_clock(new QTimeEdit(this))
    , m_now(new QPushButton(this))
    , m_ok(new QPushButton(QStringLiteral("确定"), this))
{
    setObjectName(QStringLiteral("dateEntry"));
    setFrameShape(QFrame::Box);
    m_button->setObjectName(QStringLiteral("openCalendar"));
    m_button->setArrowType(Qt::DownArrow);
    m_button->setFocusPolicy(Qt::NoFocus);
    m_button->hide();
    m_calendar->setObjectName(QStringLiteral("calendar"));
    m_calendar->setLocale(QLocale(QLocale::Chinese, QLocale::China));
    m_calendar->setVerticalHeaderFormat(QCalendarWidget::NoVerticalHeader);
    m_calendar->setDateRange(QDate(1900, 1, 1), QDate(9999, 12, 31));
    m_clock->setObjectName(QStringLiteral("clock"));
    m_clock->setDisplayFormat(QStringLiteral("HH:mm:ss"));
    m_now->setObjectName(QStringLiteral("now"));
    m_ok->setObjectName(QStringLiteral("takeTime"));
    auto* layout = new QGridLayout(this);
    layout->setContentsMargins(4, 4, 4, 4);
    layout->addWidget(m_calendar, 0, 0, 1, 2);
    layout->addWidget(m_clock, 1, 0, 1, 2);
    layout->addWidget(m_now, 2, 0);
    layout->addWidget(m_ok, 2, 1);
    connect(m_button, &QToolButton::clicked, this, &DateEntry::open);
    const auto takeDay = [this](QDate day) {
        if (const auto serial = serialOfDay(day.year(), day.month(), day.day()))
            put(*serial - (m_control.cells().workbook().countsFrom1904() ? daysFrom1900To1904 : 0));
    };
    connect(m_calendar, &QCalendarWidget::clicked, this, takeDay);
    connect(m_calendar, &QCalendarWidget::activated, this, takeDay);
    connect(m_now, &QPushButton::clicked, this, &DateEntry::chooseNow);
    connect(m_ok, &QPushButton::clicked, this,
            [this] { put(m_clock->time().msecsSinceStartOfDay() / 1000 / secondsOfDay); });
    m_clock->installEventFilter(this);
    const auto placeButton = [this] { this->placeButton(); };
    connect(&control, &SpreadsheetControl::selectionChanged, this, placeButton);
    connect(&control, &SpreadsheetControl::viewChanged, this, placeButton);
    connect(&control, &SpreadsheetControl::undoChanged, this, placeButton);
    connect(&control, &SpreadsheetControl::sheetChanged, this, placeButton);
    connect(&control, &SpreadsheetControl::editModeChanged, this, placeButton);
}

bool DateEntry::fitsActiveCell() const
{
    const CellHolds held = heldBy(m_control, activeAnchor(m_control));
    return held == CellHolds::days || held == CellHolds::times;
}

/// Beside the cell, so that it covers nothing of it; at the right edge of the cells within it.
void DateEntry::placeButton()
{
    const QRect cell = m_control.cellRect(m_control.cursor().activeCell());
    const CellAddress active = activeAnchor(m_control);
    const bool wanted = fitsActiveCell() && !cell.isEmpty() && !m_control.entry().isOpen() &&
                        m_control.mayEdit({active.column, active.row, active.column, active.row});
    if (wanted) {
        const int left = std::min(cell.right() + 2, m_control.cellArea().right() + 1 - buttonWidth);
        m_button->setGeometry(left, cell.top(), buttonWidth, std::min(cell.height() - 1, 24));
        m_button->setToolTip(heldBy(m_control, active) == CellHolds::days
                                 ? QStringLiteral("选择日期 (Alt+↓)")
                                 : QStringLiteral("选择时间 (Alt+↓)"));
    }
    m_button->setVisible(wanted);
}

void DateEntry::open()
{
    if (!m_control.entry().commit() || !fitsActiveCell())
        return;
    m_cell = activeAnchor(m_control);
    if (m_control.refuseEdit({{m_cell.column, m_cell.row, m_cell.column, m_cell.row}}))
        return;
    const bool isDate = heldBy(m_control, m_cell) == CellHolds::days;
    m_calendar->setVisible(isDate);
    m_clock->setVisible(!isDate);
    m_ok->setVisible(!isDate);
    m_now->setText(isDate ? QStringLiteral("今天") : QStringLiteral("现在"));
    showValue();
    adjustSize();
    const QRect cell = m_control.cellRect(m_cell);
    QPoint place = m_control.mapToGlobal(cell.bottomLeft() + QPoint(0, 1));
    if (const QScreen* screen = QGuiApplication::screenAt(place)) {
        const QRect available = screen->availableGeometry();
        if (place.y() + height() > available.bottom())
            place.setY(m_control.mapToGlobal(cell.topLeft()).y() - height());
        place.setX(
            std::clamp(place.x(), available.left(), std::max(available.right() - width(), available.left())));
    }
    move(place);
    show();
    (isDate ? static_cast<QWidget*>(m_calendar) : m_clock)->setFocus();
}

/// Begins with what the cell holds, else with today or now.
void DateEntry::showValue()
{
    const Value value = m_control.cells().shownSheet().value(m_cell);
    QDate day = QDate::currentDate();
    QTime time = QTime::currentTime();
    if (value.isNumber() && value.number() >= 0) {
        const double from1900 =
            value.number() + (m_control.cells().workbook().countsFrom1904() ? daysFrom1900To1904 : 0);
        if (const auto held = dayOfSerial(from1900);
            held && QDate::isValid(held->year, held->month, held->day))
            day = QDate(held->year, held->month, held->day);
        const double fraction = value.number() - std::floor(value.number());
        time = QTime(0, 0).addSecs(static_cast<int>(std::lround(fraction * secondsOfDay)) %
                                   static_cast<int>(secondsOfDay));
    }
    m_calendar->setSelectedDate(day);
    m_clock->setTime(time);
}

void DateEntry::chooseNow()
{
    if (!m_calendar->isHidden())
        Q_EMIT m_calendar->clicked(QDate::currentDate());
    else
        put(QTime::currentTime().msecsSinceStartOfDay() / 1000 / secondsOfDay);
}

void DateEntry::put(double serial)
{
    hide();
    if (m_control.refuseEdit({{m_cell.column, m_cell.row, m_cell.column, m_cell.row}}))
        return;
    {
        const UndoStep step(m_control.cells().workbook(), "输入");
        m_control.cells().shownSheet().setValue(m_cell, serial);
    }
    m_control.afterEdit(m_cell);
}

/// Enter in the clock takes the time.
bool DateEntry::eventFilter(QObject* watched, QEvent* event)
{
    if (event->type() == QEvent::KeyPress) {
        const int key = static_cast<QKeyEvent*>(event)->key();
        if (key == Qt::Key_Return || key == Qt::Key_Enter) {
            m_ok->click();
            return true;
        }
    }
    return QFrame::eventFilter(watched, event);
}

} // namespace spreadsheet
