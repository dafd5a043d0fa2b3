#include "windows/explain/frmProve.h"

#include "explain/proof_text.h"
#include "platform/list_grid/ListGrid.h"
#include "platform/windows/buttons.h"
#include "platform/windows/CancellableWait.h"
#include "platform/windows/number_fields.h"
#include "platform/windows/settle.h"
#include "platform/windows/text_room.h"
#include "reports/ReportContext.h"
#include "text/amount_text.h"

#include <QItemSelectionModel>
#include <QLabel>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QVBoxLayout>

namespace selfreport {

frmProve::frmProve(ReportContext& context, QWidget* parent)
    : QDialog(parent)
    , m_context(context)
    , m_txtYear(new QLineEdit)
    , m_vsf1(new ListGrid)
    , m_rows(new QPlainTextEdit)
    , m_summary(new QLabel)
{
    setObjectName("frmProve");
    setWindowTitle(QStringLiteral("账套自检"));
    buildLayout();
    connect(m_vsf1->selectionModel(), &QItemSelectionModel::currentRowChanged, this, &frmProve::showIdentity);
    resize(textRoom(*this, 115, 33));
    settle(*this);
}

void frmProve::buildLayout()
{
    m_txtYear->setObjectName("txtYear");
    m_txtYear->setValidator(new WholeNumberValidator(1, 9999, m_txtYear));
    m_txtYear->setPlaceholderText(QStringLiteral("空：全部年度"));
    m_txtYear->setFixedWidth(textRoom(*m_txtYear, 20, 1).width());
    auto* caption = new QLabel(QStringLiteral("年度(&Y)："));
    caption->setBuddy(m_txtYear);
    auto* year = new QHBoxLayout;
    year->addWidget(caption);
    year->addWidget(m_txtYear);
    year->addStretch();
    m_vsf1->setObjectName("vsf1");
    m_vsf1->setColumns({{"结果", 1000},
                        {"应有的关系", 6000},
                        {"差额合计", 2200, Qt::AlignRight | Qt::AlignVCenter},
                        {"行数", 1400, Qt::AlignRight | Qt::AlignVCenter}});
    m_rows->setObjectName("txtRows");
    m_rows->setReadOnly(true);
    m_rows->setTabChangesFocus(true);
    m_rows->setTabStopDistance(100);
    m_rows->setLineWrapMode(QPlainTextEdit::NoWrap);
    m_summary->setObjectName("lblSummary");
    m_summary->setWordWrap(true);
    m_summary->setText(QStringLiteral("只读，不改账。按“检查”开始。"));
    auto* layout = new QVBoxLayout(this);
    layout->addLayout(year);
    layout->addWidget(m_vsf1, 3);
    layout->addWidget(m_rows, 2);
    layout->addWidget(m_summary);
    layout->addWidget(okAndClose(
        "检查(&Q)", [this] { check(); }, "关闭(&E)", [this] { close(); }));
}

void frmProve::check()
{
    std::optional<LedgerProof> proof;
    const int year = m_txtYear->text().toInt();
    {
        const CancellableWait waiting(windowTitle(), this);
        proof = m_context.database.read<LedgerProof>(
            Icon::critical, [year](Connection& open) { return proveLedger(open, year); });
    }
    if (!proof) {
        m_summary->setText(
            QStringLiteral("没有查完") +
            (m_listed.isEmpty() ? QString() : QStringLiteral("，列的还是上一次的。") + m_listed));
        return;
    }
    m_proof = std::move(*proof);
    m_vsf1->clearRows();
    for (const ProvedIdentity& one : m_proof.identities) {
        const bool isBroken = one.state == ProvedIdentity::State::broken;
        m_vsf1->addRow(QStringList{QString::fromUtf8(stateText(one.state).data()),
                                   QString::fromStdString(one.name),
                                   isBroken ? QString::fromStdString(amountText(one.difference)) : QString(),
                                   isBroken ? QString::number(one.rows) : QString()}
                           .join('\t'));
    }
    m_listed = (year == 0 ? QStringLiteral("全部年度：") : QStringLiteral("%1 年：").arg(year)) +
               QString::fromStdString(proofSummary(m_proof));
    m_summary->setText(m_listed);
    m_summary->setStyleSheet(m_proof.faults() > 0 ? QStringLiteral("color: red") : QString());
    for (std::size_t at = 0; at < m_proof.identities.size(); ++at)
        if (m_proof.identities[at].state == ProvedIdentity::State::broken) {
            m_vsf1->setRow(static_cast<int>(at) + 1);
            break;
        }
    showIdentity();
    m_vsf1->setFocus();
}

void frmProve::showIdentity()
{
    const int row = m_vsf1->row();
    m_rows->clear();
    if (row < 1 || row > static_cast<int>(m_proof.identities.size()))
        return;
    m_rows->setPlainText(
        QString::fromStdString(identityDetails(m_proof.identities[static_cast<std::size_t>(row) - 1])));
}

} // namespace selfreport
