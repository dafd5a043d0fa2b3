#include "windows/formulas/frmCoverage.h"

#include "fetch/call_in_words.h"
#include "fetch/code_hint.h"
#include "fetch/report_functions.h"
#include "platform/basicdata/clsAccountChooser.h"
#include "platform/list_grid/ListGrid.h"
#include "platform/windows/buttons.h"
#include "platform/windows/CancellableWait.h"
#include "platform/windows/own_file.h"
#include "platform/windows/settle.h"
#include "platform/windows/text_room.h"
#include "reports/ReportContext.h"
#include "spreadsheet/view/SpreadsheetControl.h"
#include "text/amount_text.h"
#include "text/ascii.h"
#include "windows/pickers/ArgumentBoxes.h"

#include <algorithm>
#include <array>
#include <map>
#include <QCheckBox>
#include <QComboBox>
#include <QGridLayout>
#include <QLabel>
#include <QLineEdit>
#include <QLocale>
#include <QVBoxLayout>

namespace selfreport {

// Which accounts a sheet forgets or counts twice depends on what its calls ask for: balances and movements,
// years and currencies do not add up to one figure. So the calls are grouped by measure and one measure is
// checked at a time, against the ledger as it is now and in the background, because a chart may have
// thousands of accounts.

namespace {

QString groupedAmount(const std::optional<double>& amount)
{
    return amount ? QLocale(QLocale::Chinese, QLocale::China).toString(*amount, 'f', 2) : QString();
}

QString cellText(const CellCall& call)
{
    return QString::fromStdString(spreadsheet::cellName({call.column, call.row}));
}

/// "B5、C7(2次)", by column and row.
QString cellsText(const AccountCoverage& account, const std::vector<CellCall>& calls)
{
    std::map<std::pair<int, int>, std::vector<std::size_t>> byCell;
    for (const std::size_t call : account.calls)
        byCell[{calls[call].column, calls[call].row}].push_back(call);
    QStringList cells;
    for (const auto& [place, here] : byCell)
        cells.append(cellText(calls[here.front()]) +
                     (here.size() > 1 ? QStringLiteral("(%1次)").arg(here.size()) : QString()));
    return cells.join(QStringLiteral("、"));
}

bool isFault(const AccountCoverage& account)
{
    return account.calls.size() != 1 || account.isPartial;
}

} // namespace

frmCoverage::frmCoverage(ReportContext& context, spreadsheet::SpreadsheetControl& grid,
                         const RunRecord& record, QWidget* parent)
    : QDialog(parent)
    , m_context(context)
    , m_grid(grid)
    , m_record(record)
    , m_cboMeasure(new QComboBox)
    , m_chkFaults(new QCheckBox(QStringLiteral("只列遗漏、重复和仅取部分项目的科目")))
    , m_summary(new QLabel)
    , m_vsf1(new ListGrid)
{
    setObjectName("frmCoverage");
    setWindowTitle(QStringLiteral("覆盖检查"));
    auto* rows = new QGridLayout;
    m_txt = new ArgumentBoxes(this, rows, {{"科目：", true}, {"至", true}});
    m_txt->seek = [this](int index) { seekAccount(index); };
    for (const int index : {0, 1})
        connect(&m_txt->box(index), &QLineEdit::returnPressed, this, &frmCoverage::check);
    m_txt->box(0).setPlaceholderText(QStringLiteral("两框都空：全部科目"));
    buildLayout(rows);
    connect(m_cboMeasure, &QComboBox::activated, this, &frmCoverage::readAccounts);
    connect(m_chkFaults, &QCheckBox::toggled, this, &frmCoverage::listAccounts);
    connect(m_vsf1, &QAbstractItemView::clicked, this, &frmCoverage::goToCells);
    connect(m_vsf1, &QAbstractItemView::activated, this, &frmCoverage::goToCells); // Enter
    resize(textRoom(*this, 112, 30));
    settle(*this);
}

void frmCoverage::buildLayout(QGridLayout* rows)
{
    m_cboMeasure->setObjectName("cboMeasure");
    m_cboMeasure->setSizeAdjustPolicy(QComboBox::AdjustToMinimumContentsLengthWithIcon);
    auto* caption = new QLabel(QStringLiteral("取数："));
    caption->setObjectName("Label2_2");
    const int row = rows->rowCount();
    rows->addWidget(caption, row, 0);
    rows->addWidget(m_cboMeasure, row, 1);
    m_chkFaults->setObjectName("chkFaults");
    m_chkFaults->setChecked(true);
    m_summary->setObjectName("lblSummary");
    m_summary->setWordWrap(true);
    m_vsf1->setObjectName("vsf1");
    m_vsf1->setColumns({{"科目代码", 1500},
                        {"科目名称", 3200},
                        {"金额", 1900, Qt::AlignRight | Qt::AlignVCenter},
                        {"取数次数", 1800},
                        {"单元格", 3000}});
    m_vsf1->setToolTip(QStringLiteral("单击转到单元格，再次单击转到下一个"));
    QDialogButtonBox* buttons = okAndClose(
        "检查(&Q)", [this] { check(); }, "关闭(&E)", [this] { close(); });
    for (auto* button : buttons->findChildren<QPushButton*>()) {
        button->setDefault(false); // Enter in the list goes to the cells
        button->setAutoDefault(false);
    }
    auto* layout = new QVBoxLayout(this);
    layout->addLayout(rows);
    layout->addWidget(m_chkFaults);
    layout->addWidget(m_vsf1, 1);
    layout->addWidget(m_summary);
    layout->addWidget(buttons);
}

void frmCoverage::seekAccount(int index)
{
    clsAccountChooser chooser;
    chooser.initChooser(m_context.database.connectionString, m_context.title, m_context.user,
                        componentFolder().toStdString());
    chooser.chooseAccount("", 1);
    if (!chooser.chosenNumber().empty())
        m_txt->box(index).setText(QString::fromStdString(chooser.chosenNumber()));
}

void frmCoverage::check()
{
    if (!m_grid.entry().commit())
        return; // what is being typed is no formula: its reason is on screen
    m_accounts.clear();
    m_asked.reset();
    {
        const CancellableWait waiting(windowTitle(), this);
        if (readSheet())
            askAccounts();
    }
    listAccounts();
}

bool frmCoverage::readSheet()
{
    const RecalculationUnderWay underWay(m_context.database); // a database that cannot be opened is told once
    const int chosen = m_cboMeasure->currentIndex();
    const LedgerArguments kept =
        chosen < 0 ? LedgerArguments() : m_measures[static_cast<std::size_t>(chosen)].arguments;
    m_measures.clear();
    m_cboMeasure->clear();
    std::optional<SheetCalls> found;
    guardedEvaluation(m_context.database, [&] {
        found = acctCallsOf(m_grid.cells().workbook(), m_grid.cells().activeSheet(), m_context.database);
    });
    m_sheet = found.value_or(SheetCalls());
    m_places.clear();
    for (const CellCall& call : m_sheet.calls)
        m_places.push_back(m_record.followed({m_grid.cells().activeSheet(), call.column, call.row}));
    if (!found)
        return false;
    auto measures = measuresOf(m_sheet.calls);
    const auto words =
        m_context.database.read<std::vector<std::string>>(Icon::critical, [measures](Connection& open) {
            std::vector<LedgerArguments> arguments;
            for (const auto& measure : measures)
                arguments.push_back(measure.arguments);
            return measuresInWords(open, arguments);
        });
    if (!words)
        return false;
    m_measures = std::move(measures);
    for (std::size_t at = 0; at < m_measures.size(); ++at) {
        m_cboMeasure->addItem(QString::fromStdString((*words)[at]) +
                              QStringLiteral(" (%1 个公式)").arg(m_measures[at].calls));
        if (m_measures[at].arguments == kept)
            m_cboMeasure->setCurrentIndex(m_cboMeasure->count() - 1);
    }
    return true;
}

void frmCoverage::readAccounts()
{
    {
        const CancellableWait waiting(windowTitle(), this);
        askAccounts();
    }
    listAccounts();
}

void frmCoverage::askAccounts()
{
    m_accounts.clear();
    m_asked.reset();
    const int chosen = m_cboMeasure->currentIndex();
    if (chosen < 0)
        return;
    auto range = m_txt->texts<std::array<std::string, 2>>();
    for (std::string& code : range)
        code = std::string(ascii::trimmed(code, " "));
    auto accounts = m_context.database.read<std::vector<AccountCoverage>>(
        Icon::critical,
        [range, measure = m_measures[static_cast<std::size_t>(chosen)].arguments, calls = m_sheet.calls](
            Connection& open) { return accountCoverage(open, range[0], range[1], measure, calls); });
    if (!accounts)
        return;
    m_accounts = std::move(*accounts);
    m_asked = std::move(range);
}

void frmCoverage::listAccounts()
{
    m_vsf1->clearRows();
    m_listed.clear();
    m_visitedLine = 0;
    for (std::size_t index = 0; index < m_accounts.size(); ++index) {
        const AccountCoverage& account = m_accounts[index];
        if (m_chkFaults->isChecked() && !isFault(account))
            continue;
        const QString times = QString::number(account.calls.size());
        const QString code = ListGrid::columnText(account.code);
        const QString name = ListGrid::columnText(account.name);
        const QString cells = cellsText(account, m_sheet.calls);
        const QString sortable =
            account.amount ? QString::fromStdString(amountText(*account.amount)) : QString();
        m_vsf1->addRow(QStringList{code, name, groupedAmount(account.amount),
                                   times + (account.isPartial ? QStringLiteral("(部分项目)") : QString()),
                                   cells}
                           .join('\t'),
                       QStringList{code, name, sortable, times, cells}.join('\t'));
        m_listed.push_back(index);
    }
    m_summary->setText(summary());
}

QString frmCoverage::summary() const
{
    const QString unusable = m_sheet.unusable > 0
                                 ? QStringLiteral("；%1 个 Acct 公式的参数有错，未计入").arg(m_sheet.unusable)
                                 : QString();
    if (m_measures.empty())
        return QStringLiteral("当前表页没有可用的 Acct 取数公式") + unusable;
    if (m_accounts.empty() && m_asked) // nothing was looked at: that is not all well
        return QStringLiteral("没有这样的末级科目") + QString::fromStdString(codeHint(*m_asked)) + unusable;
    const auto count = [this](auto&& condition) { return std::ranges::count_if(m_accounts, condition); };
    const auto isGap = [](const AccountCoverage& account) { return account.calls.empty(); };
    const auto matters = [&](const AccountCoverage& account) {
        return isGap(account) && account.amount.value_or(0) != 0;
    };
    return QStringLiteral("末级科目 %1 个：未取 %2 个(其中 %3 个有金额)，重复 %4 个，仅取部分项目 %5 个")
               .arg(m_accounts.size())
               .arg(count(isGap))
               .arg(count(matters))
               .arg(count([](const AccountCoverage& account) { return account.calls.size() > 1; }))
               .arg(count([](const AccountCoverage& account) { return account.isPartial; })) +
           unusable;
}

void frmCoverage::goToCells()
{
    const int line = m_vsf1->row();
    if (line < 1)
        return;
    const std::vector<std::size_t>& calls = m_accounts[m_listed[static_cast<std::size_t>(line - 1)]].calls;
    if (calls.empty() || !m_grid.entry().commit())
        return;
    m_visits = line == m_visitedLine ? m_visits + 1 : 0;
    m_visitedLine = line;
    const std::optional<spreadsheet::SheetCell>& place = *m_places[calls[m_visits % calls.size()]];
    const int sheet = place ? m_grid.cells().workbook().sheetIndexOfId(place->sheetId) : 0;
    if (sheet == 0)
        return; // it is gone
    if (sheet != m_grid.cells().activeSheet())
        m_grid.cells().setActiveSheet(sheet);
    m_grid.cursor().moveTo(place->cell);
}

} // namespace selfreport
