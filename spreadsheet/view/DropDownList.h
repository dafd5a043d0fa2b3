#pragma once
#include <QFrame>

class QListWidget;

namespace spreadsheet {

/// The list that a drop-down cell opens below itself.
class DropDownList : public QFrame {
    Q_OBJECT

public:
    explicit DropDownList(QWidget* parent);

    /// @param cell     its place on the screen
    /// @param current  the entry to begin with, -1: the first one
    void open(const QStringList& entries, int current, const QRect& cell, const QFont& font);

Q_SIGNALS:
    /// Once for each opening. @param index  of the chosen entry, from 0; -1: none was chosen
    void closed(int index);

protected:
    void hideEvent(QHideEvent* event) override;
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void choose(int index);

    QListWidget* m_list;
    int m_chosen = -1;
    bool m_open = false;
};

} // namespace spreadsheet
