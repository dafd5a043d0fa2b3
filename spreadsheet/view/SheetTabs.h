#pragma once
#include <QStringList>
#include <QWidget>

#include <functional>

class QLineEdit;
class QTabBar;
class QToolButton;

namespace spreadsheet {

/// The names of a workbook's sheets as tabs: click to show, double click to rename, drag to move. It changes
/// nothing itself. Sheets count from 1.
class SheetTabs : public QWidget {
    Q_OBJECT

public:
    explicit SheetTabs(QWidget* parent);

    void showSheets(const QStringList& names, int active);
    void setEditable(bool editable); ///< adding, renaming, moving, taking away
    std::function<bool()> mayRename; ///< asked before a name is edited in place; empty: yes

Q_SIGNALS:
    void chosen(int index);
    void addWanted();
    void renameWanted(int index, const QString& name);
    void moveWanted(int from, int to);
    void removeWanted(int index);

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void beginRename(int tab);
    void endRename(bool keep);
    void openMenu(QPoint place);

    QTabBar* m_bar;
    QToolButton* m_add;
    QLineEdit* m_name; ///< over the tab that is renamed
    int m_renamed = -1;
    bool m_editable = true;
    bool m_filling = false;
};

} // namespace spreadsheet
