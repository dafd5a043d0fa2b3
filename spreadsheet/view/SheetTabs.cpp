#include "spreadsheet/view/SheetTabs.h"

#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLineEdit>
#include <QMenu>
#include <QScopedValueRollback>
#include <QTabBar>
#include <QToolButton>

#include <algorithm>
#include <utility>

namespace spreadsheet {

SheetTabs::SheetTabs(QWidget* parent)
    : QWidget(parent)
    , m_bar(new QTabBar(this))
    , m_add(new QToolButton(this))
    , m_name(new QLineEdit(m_bar))
{
    setObjectName(QStringLiteral("sheetTabs"));
    setAttribute(Qt::WA_NoMousePropagation); // buttons that tabs have no use for are not meant for the cells
    m_bar->setObjectName(QStringLiteral("sheetTabBar"));
    m_bar->setShape(QTabBar::RoundedSouth);
    m_bar->setMovable(true);
    m_bar->setExpanding(false);
    m_bar->setDrawBase(false);
    m_bar->setUsesScrollButtons(true);
    m_bar->setFocusPolicy(Qt::NoFocus);
    m_bar->setContextMenuPolicy(Qt::CustomContextMenu);
    m_bar->installEventFilter(this);
    m_add->setObjectName(QStringLiteral("addSheet"));
    m_add->setText(QStringLiteral("+"));
    m_add->setToolTip(QStringLiteral("新建表"));
    m_add->setAutoRaise(true);
    m_add->setFocusPolicy(Qt::NoFocus);
    m_name->setObjectName(QStringLiteral("sheetName"));
    m_name->hide();
    m_name->installEventFilter(this);

    auto* layout = new QHBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(2);
    layout->addWidget(m_bar);
    layout->addWidget(m_add);
    layout->addStretch();

    connect(m_bar, &QTabBar::currentChanged, this, [this](int tab) {
        if (!m_filling && tab >= 0)
            Q_EMIT chosen(tab + 1);
    });
    connect(m_bar, &QTabBar::tabMoved, this, [this](int from, int to) {
        if (!m_filling)
            Q_EMIT moveWanted(from + 1, to + 1);
    });
    connect(m_bar, &QTabBar::tabBarDoubleClicked, this, &SheetTabs::beginRename);
    connect(m_bar, &QWidget::customContextMenuRequested, this, &SheetTabs::openMenu);
    connect(m_add, &QToolButton::clicked, this, &SheetTabs::addWanted);
    connect(m_name, &QLineEdit::editingFinished, this, [this] { endRename(true); });
}

void SheetTabs::showSheets(const QStringList& names, int active)
{
    const QScopedValueRollback filling(m_filling, true);
    while (m_bar->count() > names.size())
        m_bar->removeTab(m_bar->count() - 1);
    for (int tab = 0; tab < names.size(); ++tab) {
        QString shown = names[tab];
        shown.replace('&', QStringLiteral("&&")); // no access key
        if (tab >= m_bar->count())
            m_bar->addTab(shown);
        else if (m_bar->tabText(tab) != shown)
            m_bar->setTabText(tab, shown);
        m_bar->setTabData(tab, names[tab]);
    }
    m_bar->setCurrentIndex(active - 1);
}

void SheetTabs::setEditable(bool editable)
{
    m_editable = editable;
    m_bar->setMovable(editable);
    m_add->setVisible(editable);
}

void SheetTabs::beginRename(int tab)
{
    if (tab < 0 || !m_editable || (mayRename && !mayRename()))
        return;
    m_renamed = tab;
    m_name->setText(m_bar->tabData(tab).toString());
    QRect place = m_bar->tabRect(tab);
    place.setWidth(std::max(place.width(), 80));
    m_name->setGeometry(place);
    m_name->show();
    m_name->selectAll();
    m_name->setFocus();
}

void SheetTabs::endRename(bool keep)
{
    if (m_renamed < 0)
        return;
    const int tab = std::exchange(m_renamed, -1); // hiding the field ends editing once more
    const QString name = m_name->text();
    if (m_name->hasFocus())
        parentWidget()->setFocus(); // hiding would hand it to any widget
    m_name->hide();
    if (keep && name != m_bar->tabData(tab).toString())
        Q_EMIT renameWanted(tab + 1, name);
}

bool SheetTabs::eventFilter(QObject* watched, QEvent* event)
{
    if (watched == m_name && event->type() == QEvent::KeyPress &&
        static_cast<QKeyEvent*>(event)->key() == Qt::Key_Escape) {
        endRename(false);
        return true;
    }
    if (watched == m_bar && event->type() == QEvent::KeyPress) {
        event->accept(); // the field had no use for it; it would move to another tab, or act on the cells
        return true;
    }
    return QWidget::eventFilter(watched, event);
}

void SheetTabs::openMenu(QPoint place)
{
    const int tab = m_bar->tabAt(place);
    if (tab < 0 || !m_editable)
        return;
    QMenu menu(this);
    menu.setObjectName(QStringLiteral("sheetMenu"));
    menu.addAction(QStringLiteral("新建表"), this, &SheetTabs::addWanted);
    menu.addAction(QStringLiteral("重命名"), this, [this, tab] { beginRename(tab); });
    menu.addAction(QStringLiteral("删除"), this, [this, tab] { Q_EMIT removeWanted(tab + 1); });
    menu.exec(m_bar->mapToGlobal(place));
}

} // namespace spreadsheet
