#include "windows/designer/frmFind.h"

#include "platform/windows/settle.h"
#include "platform/windows/text_room.h"
#include "spreadsheet/view/SpreadsheetControl.h"

#include <QCheckBox>
#include <QComboBox>
#include <QGridLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QVBoxLayout>

namespace selfreport {

using spreadsheet::GridMode;
using spreadsheet::Search;
using spreadsheet::SearchIn;

frmFind::frmFind(spreadsheet::SpreadsheetControl& grid, QWidget* parent)
    : QDialog(parent)
    , m_grid(grid)
    , m_chkCase(new QCheckBox(QStringLiteral("区分大小写和全半角(&C)")))
    , m_chkWhole(new QCheckBox(QStringLiteral("单元格内容完全相同(&W)")))
    , m_chkWildcards(new QCheckBox(QStringLiteral("使用通配符 ? 和 *(&Q)")))
    , m_cboIn(new QComboBox)
    , m_result(new QLabel)
{
    setObjectName("frmFind");
    setWindowTitle(QStringLiteral("查找和替换"));
    auto* rows = new QGridLayout(this);
    constexpr const char* labels[] = {"查找内容(&F)：", "替换为(&R)："};
    for (int box = 0; box < 2; ++box) {
        m_txt[box] = new QLineEdit;
        m_txt[box]->setObjectName("txt_" + QString::number(box));
        auto* label = new QLabel(QString::fromUtf8(labels[box]));
        label->setBuddy(m_txt[box]);
        rows->addWidget(label, box, 0);
        rows->addWidget(m_txt[box], box, 1);
    }
    rows->setColumnMinimumWidth(1, textRoom(*this, 32, 1).width());
    m_txt[1]->setEnabled(m_grid.mode() == GridMode::edit);
    buildOptions(*rows);
    buildButtons(*rows);
    connect(&m_grid, &spreadsheet::SpreadsheetControl::refused, m_result, &QLabel::setText);
    settle(*this);
}

void frmFind::buildOptions(QGridLayout& rows)
{
    m_chkCase->setObjectName("chkCase");
    m_chkWhole->setObjectName("chkWhole");
    m_chkWildcards->setObjectName("chkWildcards");
    m_cboIn->setObjectName("cboIn");
    m_cboIn->addItems({QStringLiteral("公式"), QStringLiteral("显示的数据")});
    m_result->setObjectName("lblResult");
    auto* label = new QLabel(QStringLiteral("查找范围(&S)："));
    label->setBuddy(m_cboIn);
    rows.addWidget(label, 2, 0);
    rows.addWidget(m_cboIn, 2, 1);
    rows.addWidget(m_chkCase, 3, 1);
    rows.addWidget(m_chkWhole, 4, 1);
    rows.addWidget(m_chkWildcards, 5, 1);
    rows.addWidget(m_result, 6, 0, 1, 3);
}

void frmFind::buildButtons(QGridLayout& rows)
{
    const bool mayReplace = m_grid.mode() == GridMode::edit;
    int row = 0;
    const auto add = [&](const char* name, const char* caption, bool enabled, auto clicked) {
        auto* button = new QPushButton(QString::fromUtf8(caption));
        button->setObjectName(name);
        button->setAutoDefault(false);
        button->setEnabled(enabled);
        connect(button, &QPushButton::clicked, this, clicked);
        rows.addWidget(button, row++, 2);
        return button;
    };
    add("cmdFindNext", "查找下一个(&N)", true, [this] { find(false); })->setDefault(true);
    add("cmdFindPrevious", "查找上一个(&P)", true, [this] { find(true); });
    add("cmdReplace", "替换(&T)", mayReplace, [this] { cmdReplace_Click(); });
    add("cmdReplaceAll", "全部替换(&A)", mayReplace, [this] { cmdReplaceAll_Click(); });
    add("cmdXPClose", "关闭(&E)", true, [this] { close(); });
}

void frmFind::begin(bool replacing)
{
    show();
    activateWindow();
    QLineEdit* const box = m_txt[replacing && m_txt[1]->isEnabled() && !m_txt[0]->text().isEmpty() ? 1 : 0];
    box->setFocus();
    box->selectAll();
}

Search frmFind::search() const
{
    Search search;
    search.what = m_txt[0]->text().toStdString();
    search.options.matchCase = m_chkCase->isChecked();
    search.options.wholeCell = m_chkWhole->isChecked();
    search.options.wildcards = m_chkWildcards->isChecked();
    search.in = m_cboIn->currentIndex() == 0 ? SearchIn::formulas : SearchIn::values;
    return search;
}

void frmFind::find(bool backwards)
{
    m_result->clear();
    if (!m_txt[0]->text().isEmpty())
        m_grid.commands().findNext(search(), backwards);
}

/// In the active cell, if it holds the text; then on to the next one.
void frmFind::cmdReplace_Click()
{
    const spreadsheet::CellAddress active = m_grid.cursor().activeCell();
    Search here = search();
    here.within = {active.column, active.row, active.column, active.row};
    m_result->clear();
    if (here.what.empty() || !m_grid.entry().commit())
        return;
    const spreadsheet::Sheet& sheet = m_grid.cells().shownSheet();
    if (spreadsheet::findNext(sheet, here, active) &&
        m_grid.commands().replaceAll(here, m_txt[1]->text()) == 0)
        return; // why is on screen
    m_grid.commands().findNext(search());
}

void frmFind::cmdReplaceAll_Click()
{
    m_result->clear();
    if (m_txt[0]->text().isEmpty() || !m_grid.entry().commit())
        return;
    if (const int replaced = m_grid.commands().replaceAll(search(), m_txt[1]->text()))
        m_result->setText(QStringLiteral("已替换 %1 个单元格  ").arg(replaced) + m_result->text());
}

} // namespace selfreport
