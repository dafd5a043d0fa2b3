#include "windows/explain/frmDrill.h"

#include "explain/drill_sheet.h"
#include "explain/drill_text.h"
#include "explain/figure_parts.h"
#include "failures/failure_text.h"
#include "fetch/referenced_place.h"
#include "fetch/RunRecord.h"
#include "platform/database/session/Recordset.h"
#include "platform/services/FileDialog.h"
#include "platform/windows/CancellableWait.h"
#include "platform/windows/settle.h"
#include "reports/ReportContext.h"
#include "spreadsheet/files/FileFormats.h"
#include "spreadsheet/view/SpreadsheetControl.h"
#include "text/amount_text.h"
#include "windows/explain/DrillPages.h"
#include "windows/printing/frmPreview.h"

#include <QCloseEvent>
#include <QComboBox>
#include <QDialogButtonBox>
#include <QItemSelectionModel>
#include <QKeyEvent>
#include <QLabel>
#include <QLocale>
#include <QPushButton>
#include <QShortcut>
#include <QTreeWidget>
#include <QVBoxLayout>

#include <algorithm>

namespace selfreport {

// The tree is walked by keys alone: arrows open and close rows, Enter goes to where a row is written, Esc
// leads back and out. A row asks the database when it is opened first, in the background, and what fails of
// that stands in the tree, which stays.

namespace {

enum Column { item, basis, factor, amount, share };
constexpr int nodeRole = Qt::UserRole;
constexpr int pageRole = Qt::UserRole + 1;

QString groupedText(double value)
{
    return QLocale(QLocale::Chinese, QLocale::China).toString(value, 'f', 2);
}

QString rowText(const std::string& text)
{
    return QString::fromStdString(oneLine(text));
}

DrillNode* nodeOf(const QTreeWidgetItem* row)
{
    return row ? static_cast<DrillNode*>(row->data(item, nodeRole).value<void*>()) : nullptr;
}

/// What opening it may change: its remark, and whether it is a fault.
void showRemark(QTreeWidgetItem* row, const DrillNode& node)
{
    const QString from = rowText(node.basis), remark = rowText(node.remark);
    row->setText(basis, from + (from.isEmpty() || remark.isEmpty() ? "" : QStringLiteral("　")) + remark);
    for (int column = item; column <= share; ++column) {
        if (node.isFault)
            row->setForeground(column, Qt::red);
        if (column <= basis)
            row->setToolTip(column, row->text(column));
    }
}

} // namespace

frmDrill::frmDrill(ReportContext& context, spreadsheet::SpreadsheetControl& grid, QWidget* parent)
    : QDialog(parent)
    , m_context(context)
    , m_grid(grid)
    , m_head(new QLabel)
    , m_foot(new QLabel)
    , m_status(new QLabel)
    , m_cboWay(new QComboBox)
    , m_tree(new QTreeWidget)
{
    setObjectName("frmDrill");
    setWindowTitle(QStringLiteral("联查"));
    buildLayout();
    connect(m_tree, &QTreeWidget::itemExpanded, this, &frmDrill::openRow);
    connect(m_tree, &QTreeWidget::currentItemChanged, this, &frmDrill::enterRow);
    connect(m_tree, &QTreeWidget::itemActivated, this, &frmDrill::activateRow);
    // From a cell of another column the arrow to the right would not lead into the row.
    connect(m_tree->selectionModel(), &QItemSelectionModel::currentChanged, this,
            [this](const QModelIndex& now) {
                if (now.column() > item)
                    m_tree->setCurrentItem(m_tree->currentItem(), item);
            });
    connect(m_cboWay, &QComboBox::activated, this, &frmDrill::chooseWay);
    m_tree->installEventFilter(this);
    connect(new QShortcut(QKeySequence::Print, this), &QShortcut::activated, this, &frmDrill::printTree);
    resize(960, 600);
    settle(*this);
}

frmDrill::~frmDrill() = default;

void frmDrill::buildLayout()
{
    m_tree->setObjectName("tree");
    m_tree->setHeaderLabels({QStringLiteral("项目"), QStringLiteral("依据"), QStringLiteral("系数"),
                             QStringLiteral("金额"), QStringLiteral("占比")});
    m_tree->setUniformRowHeights(true); // there may be thousands
    m_tree->setColumnWidth(item, 330);
    m_tree->setColumnWidth(basis, 310);
    m_tree->setColumnWidth(factor, 50);
    m_tree->setColumnWidth(amount, 130);
    for (const int column : {factor, amount, share})
        m_tree->headerItem()->setTextAlignment(column, Qt::AlignRight | Qt::AlignVCenter);
    m_tree->setExpandsOnDoubleClick(false); // a double click goes to the cell, as Enter does
    for (const auto& [label, name] :
         {std::pair(m_head, "lblHead"), std::pair(m_foot, "lblFoot"), std::pair(m_status, "lblStatus")}) {
        label->setObjectName(name);
        label->setWordWrap(true);
        label->setTextFormat(Qt::PlainText); // names come from the customer's data
        label->setTextInteractionFlags(Qt::TextSelectableByMouse);
    }
    m_cboWay->setObjectName("cboWay");
    m_cboWay->setSizeAdjustPolicy(QComboBox::AdjustToContents);
    auto* caption = new QLabel(QStringLiteral("展开方式(&B)："));
    caption->setBuddy(m_cboWay);
    auto* ways = new QHBoxLayout;
    ways->addWidget(caption);
    ways->addWidget(m_cboWay);
    ways->addStretch();
    auto* buttons = new QDialogButtonBox;
    for (const auto& [text, name, run] :
         {std::tuple("打印(&P)…", "cmdPrint", &frmDrill::printTree),
          std::tuple("引出(&X)…", "cmdExport", &frmDrill::exportTree),
          std::tuple("关闭(&E)", "cmdXPClose", static_cast<void (frmDrill::*)()>(&frmDrill::hide))}) {
        auto* button = buttons->addButton(QString::fromUtf8(text), QDialogButtonBox::ActionRole);
        button->setObjectName(name);
        button->setAutoDefault(false); // Enter is the tree's
        connect(button, &QPushButton::clicked, this, run);
    }
    auto* layout = new QVBoxLayout(this);
    layout->addWidget(m_head);
    layout->addLayout(ways);
    layout->addWidget(m_tree, 1);
    layout->addWidget(m_foot);
    layout->addWidget(m_status);
    layout->addWidget(buttons);
}

bool frmDrill::explain(const std::string& report, const RunRecord& record)
{
    const spreadsheet::Workbook& workbook = m_grid.cells().workbook();
    const spreadsheet::CellAddress active = m_grid.cursor().activeCell();
    const spreadsheet::CallPlace cell{m_grid.cells().activeSheet(), active.column, active.row};
    if (!isRecorded(workbook, record, cell))
        return false;
    m_figure = std::make_unique<DrillTree>(report, workbook, record, cell);
    m_tree->clear();
    m_status->clear();
    nameAccounts();
    addRows(m_tree->invisibleRootItem(), m_figure->root());
    makeRoom(nullptr);
    showHead();
    m_tree->setFocus();
    if (m_tree->topLevelItemCount() > 0)
        m_tree->setCurrentItem(m_tree->topLevelItem(0));
    return true;
}

/// Who does not want to wait for names reads codes.
void frmDrill::nameAccounts()
{
    try {
        const CancellableWait waiting(windowTitle(), this);
        m_figure->nameAccounts(m_context.database);
    } catch (const WorkCancelled&) {
        m_status->setText(QStringLiteral("已取消，科目只有代码"));
    }
}

void frmDrill::showHead()
{
    const DrillHead& head = m_figure->head();
    QString text = rowText(head.report + "  " + head.cell);
    if (!head.formula.empty())
        text += QStringLiteral("\n公式：=") + rowText(head.formula);
    text += QStringLiteral("\n显示：") + rowText(head.shown) + QStringLiteral("    精确：") +
            (head.value ? QString::fromStdString(numberText(*head.value)) : QStringLiteral("不是数"));
    if (!head.remark.empty())
        text += "\n" + rowText(head.remark);
    if (head.ledgerHasChanged)
        text += "\n" + rowText(ledgerHasChangedText) + QStringLiteral("，请重算");
    m_head->setText(text);
    const DrillNode& root = m_figure->root();
    const bool isSum = root.sum && root.whole;
    m_foot->setVisible(isSum);
    if (!isSum)
        return;
    m_foot->setText(
        QStringLiteral("合计：%1    单元格：%2    差额：%3")
            .arg(groupedText(*root.sum), groupedText(*root.whole), groupedText(root.difference())));
    m_foot->setStyleSheet(root.isWhole() ? QString() : QStringLiteral("color: red"));
}

void frmDrill::addRow(QTreeWidgetItem* above, DrillNode& node, double sum)
{
    auto* row = new QTreeWidgetItem(above);
    row->setText(item, rowText(node.item));
    row->setText(factor, node.factor == 1 ? "" : QString::fromStdString(numberText(node.factor)));
    row->setText(amount, node.amount ? groupedText(*node.amount) : QString());
    row->setText(share, QString::fromStdString(shareText(node, sum)));
    for (const int column : {factor, amount, share})
        row->setTextAlignment(column, Qt::AlignRight | Qt::AlignVCenter);
    showRemark(row, node);
    if (node.isFault && !node.amount && row->text(basis).isEmpty())
        row->setFirstColumnSpanned(true); // a sentence
    row->setData(item, nodeRole, QVariant::fromValue(static_cast<void*>(&node)));
    if (node.canOpen())
        row->setChildIndicatorPolicy(QTreeWidgetItem::ShowIndicator);
    if (node.isOpen)
        addRows(row, node);
}

void frmDrill::addRows(QTreeWidgetItem* above, DrillNode& node)
{
    for (DrillNode& part : node.parts)
        addRow(above, part, node.sum.value_or(0));
    for (const std::int64_t page : {node.page - 1, node.page + 1}) {
        if (page < 1 || page > node.pages)
            continue;
        auto* row = new QTreeWidgetItem(above);
        row->setText(item, (page < node.page ? QStringLiteral("上一页（第 %1 页，共 %2 页）")
                                             : QStringLiteral("下一页（第 %1 页，共 %2 页）"))
                               .arg(page)
                               .arg(node.pages));
        row->setData(item, pageRole, QVariant::fromValue<qlonglong>(page));
    }
}

void frmDrill::openRow(QTreeWidgetItem* row)
{
    DrillNode* const node = nodeOf(row);
    if (node && node->canOpen() && !node->isOpen)
        reopen(row, 0, 1);
}

void frmDrill::reopen(QTreeWidgetItem* row, std::size_t way, std::int64_t page)
{
    DrillNode& node = *nodeOf(row);
    qDeleteAll(row->takeChildren());
    m_status->clear();
    try {
        const CancellableWait waiting(windowTitle(), this);
        m_figure->open(node, m_context.database, way, page);
    } catch (const WorkCancelled&) {
        m_status->setText(QStringLiteral("已取消，这一行没有展开"));
        row->setExpanded(false);
        return;
    }
    addRows(row, node);
    row->setExpanded(true);
    makeRoom(row);
    if (node.parts.empty())
        row->setChildIndicatorPolicy(QTreeWidgetItem::DontShowIndicatorWhenChildless);
    showRemark(row, node);
    showHead();
    enterRow();
}

/// Each level stands further to the right: names of deep ones would have no room, and long ones no end.
void frmDrill::makeRoom(const QTreeWidgetItem* row)
{
    int most = m_tree->viewport()->width() / 2;
    for (; row; row = row->parent())
        most += m_tree->indentation();
    const QAbstractItemView& view = *m_tree;
    const int wanted = std::min(view.sizeHintForColumn(item), most);
    if (wanted > m_tree->columnWidth(item))
        m_tree->setColumnWidth(item, wanted);
}

/// The ways of the row that is current; a part that is none has those of the row above it.
void frmDrill::enterRow()
{
    m_cboWay->clear();
    const DrillNode* const node = nodeOf(m_tree->currentItem());
    if (node)
        for (const PartsWay& way : node->ways)
            m_cboWay->addItem(rowText(way.text()));
    m_cboWay->setEnabled(m_cboWay->count() > 1);
    if (node && node->isOpen && m_cboWay->count() > 0)
        m_cboWay->setCurrentIndex(static_cast<int>(node->way));
}

void frmDrill::chooseWay(int way)
{
    QTreeWidgetItem* const row = m_tree->currentItem();
    if (nodeOf(row))
        reopen(row, static_cast<std::size_t>(way), 1);
    m_tree->setFocus();
}

void frmDrill::activateRow(QTreeWidgetItem* row)
{
    if (const auto page = row->data(item, pageRole).toLongLong(); page > 0) {
        QTreeWidgetItem* const above = row->parent();
        reopen(above, nodeOf(above)->way, page);
        m_tree->setCurrentItem(above->child(0));
    } else if (const DrillNode* const node = nodeOf(row)) {
        goToCell(*node);
    }
}

void frmDrill::goToCell(const DrillNode& node)
{
    using spreadsheet::Workbook;
    if (const auto& read = node.reference)
        return openReport(read->report,
                          [read](const Workbook& book) { return referencedPlace(book, *read); });
    if (!node.cell) {
        m_status->setText(QStringLiteral("这一行不是单元格里写的"));
        return;
    }
    if (!node.report.empty())
        return openReport(node.report, [cell = node.cell](const Workbook&) { return cell; });
    if (!m_grid.entry().commit())
        return;
    const std::optional<spreadsheet::SheetCell>& place = *node.place;
    const int sheet = place ? m_grid.cells().workbook().sheetIndexOfId(place->sheetId) : 0;
    if (sheet == 0) {
        m_status->setText(QStringLiteral("这个单元格已经删除"));
        return;
    }
    if (sheet != m_grid.cells().activeSheet())
        m_grid.cells().setActiveSheet(sheet);
    m_grid.cursor().moveTo(place->cell);
    m_grid.window()->activateWindow();
    m_grid.setFocus();
}

void frmDrill::reject()
{
    QTreeWidgetItem* row = m_tree->currentItem();
    if (!row || !row->parent())
        return QDialog::reject();
    while (row->parent())
        row = row->parent();
    m_tree->setCurrentItem(row);
    m_tree->setFocus();
}

/// At a star the toolkit would open whatever lies below, which leads through all periods of a ledger.
bool frmDrill::eventFilter(QObject* watched, QEvent* event)
{
    const bool isStar = watched == m_tree && event->type() == QEvent::KeyPress &&
                        static_cast<QKeyEvent*>(event)->key() == Qt::Key_Asterisk;
    if (isStar && m_tree->currentItem())
        m_tree->currentItem()->setExpanded(true);
    return isStar || QDialog::eventFilter(watched, event);
}

/// Whatever row is current.
void frmDrill::closeEvent(QCloseEvent* event)
{
    QDialog::reject();
    event->accept();
}

/// The preview shows the open part of the tree, and prints it.
void frmDrill::printTree()
{
    DrillPages pages(m_context, m_figure->head(), m_figure->root());
    frmPreview::showModally(pages);
}

void frmDrill::exportTree()
{
    FileDialogSettings settings;
    settings.title = "引出联查";
    settings.filter = "Excel文件(*.xlsx)|*.xlsx";
    settings.fileName = "联查.xlsx";
    const auto file = FileDialogInUse::current().chooseToSave(settings);
    if (!file || file->empty())
        return;
    try {
        spreadsheet::Workbook sheet;
        writeDrillSheet(sheet, m_figure->head(), m_figure->root());
        const auto* const named = spreadsheet::fileFormatOfName(*file);
        const auto* const usual = spreadsheet::fileFormatOfName("a.xlsx");
        spreadsheet::saveWorkbook(sheet, *file, named && named->isStrict ? *named : *usual);
        m_status->setText(QStringLiteral("已引出：%1").arg(QString::fromStdString(*file)));
    } catch (const std::exception& error) {
        m_status->setText(
            QStringLiteral("没有引出：%1").arg(QString::fromStdString(failures::sentenceOf(error))));
    }
}

} // namespace selfreport
