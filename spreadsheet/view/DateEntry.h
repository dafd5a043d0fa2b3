#pragma once
#include "spreadsheet/values/CellAddress.h"

#include <QFrame>

class QCalendarWidget;
class QPushButton;
class QTimeEdit;
class QToolButton;

namespace spreadsheet {

class SpreadsheetControl;

/// Chooses the day of a date cell on a calendar, or the time of a time cell. A button beside the active cell
/// opens it, if the user may change the cell.
class DateEntry : public QFrame {
    Q_OBJECT

public:
    explicit DateEntry(SpreadsheetControl& control);

    /// For the active cell; other cells than those of date and time open nothing.
    void open();

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    bool fitsActiveCell() const;
    void placeButton();
    void showValue();
    void chooseNow();
    void put(double serial);

    SpreadsheetControl& m_control;
    QToolButton* m_button;
    QCalendarWidget* m_calendar;
    QTimeEdit* m_clock;
    QPushButton* m_now;
    QPushButton* m_ok; ///< of a time; a click on a day says it
    CellAddress m_cell;
};

} // namespace spreadsheet
