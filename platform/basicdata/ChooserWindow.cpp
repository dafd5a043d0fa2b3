#include "platform/basicdata/ChooserWindow.h"

#include "platform/basicdata/EntryTree.h"
#include "platform/windows/buttons.h"
#include "platform/windows/settle.h"
#include "platform/windows/text_room.h"

#include <QCoreApplication>
#include <QHeaderView>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QTreeView>
#include <QVBoxLayout>

#include <utility>

namespace selfreport {

ChooserWindow::ChooserWindow(const QString& title, const QStringList& headings,
                             std::vector<ChooserEntry> entries, QWidget* parent)
    : QDialog(parent)
    , m_entries(new EntryTree(headings, std::move(entries), this))
    , m_txtSearch(new QLineEdit)
    , m_tree(new QTreeView)
    , m_found(new QLabel)
{
    setWindowTitle(title);
    m_txtSearch->setObjectName("txtSearch");
    m_txtSearch->setPlaceholderText(QStringLiteral("代码、名称或拼音首字母"));
    m_txtSearch->setClearButtonEnabled(true);
    m_txtSearch->setMinimumWidth(textRoom(*m_txtSearch, 30, 1).width());
    m_txtSearch->installEventFilter(this);
    m_found->setObjectName("lblFound");
    buildTree();
    auto* layout = new QVBoxLayout(this);
    layout->addWidget(m_txtSearch);
    layout->addWidget(m_tree, 1);
    layout->addWidget(m_found);
    layout->addWidget(okAndClose(
        "确定(&O)", [this] { cmdXPOK_Click(); }, "取消(&E)", [this] { reject(); }));
    connect(m_txtSearch, &QLineEdit::textChanged, this, &ChooserWindow::txtSearch_Change);
    resize(textRoom(*this, 70, 30));
    m_txtSearch->setFocus();
    txtSearch_Change({});
    settle(*this);
}

void ChooserWindow::buildTree()
{
    m_tree->setObjectName("tree");
    m_tree->setModel(m_entries);
    m_tree->setUniformRowHeights(true); // heights of 20,000 rows are not asked for one by one
    m_tree->setAllColumnsShowFocus(true);
    m_tree->setRootIsDecorated(m_entries->hasLevels());
    m_tree->setFocusPolicy(Qt::NoFocus); // keys come from the search box
    m_tree->header()->setStretchLastSection(true);
    m_tree->setColumnWidth(0, textRoom(*m_tree, 23, 1).width());
    m_tree->setColumnWidth(1, textRoom(*m_tree, 27, 1).width()); // the third one fits beside it
    connect(m_tree, &QTreeView::doubleClicked, this, &ChooserWindow::cmdXPOK_Click);
}

void ChooserWindow::txtSearch_Change(const QString& text)
{
    m_entries->search(text);
    if (!text.trimmed().isEmpty())
        m_tree->expandAll();
    m_tree->setCurrentIndex(m_entries->bestMatch());
    m_found->setText(QStringLiteral("%1 项").arg(m_entries->visibleCount()));
}

bool ChooserWindow::eventFilter(QObject* /*watched*/, QEvent* event)
{
    if (event->type() != QEvent::KeyPress)
        return false;
    const auto& key = static_cast<QKeyEvent&>(*event);
    const bool moves = key.key() == Qt::Key_Up || key.key() == Qt::Key_Down || key.key() == Qt::Key_PageUp ||
                       key.key() == Qt::Key_PageDown;
    // Left and Right close and open branches as long as there is no text to move in.
    const bool branches =
        m_txtSearch->text().isEmpty() && (key.key() == Qt::Key_Left || key.key() == Qt::Key_Right);
    if (moves || branches)
        QCoreApplication::sendEvent(m_tree, event);
    return moves || branches;
}

void ChooserWindow::cmdXPOK_Click()
{
    const QModelIndex current = m_tree->currentIndex();
    if (!current.isValid())
        return;
    m_chosen = &m_entries->entry(current);
    accept();
}

} // namespace selfreport
