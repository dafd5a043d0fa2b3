#pragma once
#include "platform/basicdata/ChooserEntry.h"

#include <QDialog>
#include <QStringList>

#include <vector>

class QLabel;
class QLineEdit;
class QTreeView;

namespace selfreport {

class EntryTree;

/// Lets the user pick one entry. The focus stays in the search box `txtSearch`: what is typed searches, the
/// arrow keys move in the tree `tree`, Enter picks, Esc gives up.
class ChooserWindow : public QDialog {
    Q_OBJECT

public:
    ChooserWindow(const QString& title, const QStringList& headings, std::vector<ChooserEntry> entries,
                  QWidget* parent);

    /// After the window was accepted; null otherwise.
    const ChooserEntry* chosen() const { return m_chosen; }

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void buildTree();
    void txtSearch_Change(const QString& text);
    void cmdXPOK_Click();

    EntryTree* m_entries;
    QLineEdit* m_txtSearch;
    QTreeView* m_tree;
    QLabel* m_found;
    const ChooserEntry* m_chosen = nullptr;
};

} // namespace selfreport
