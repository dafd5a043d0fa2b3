#include "windows/formulas/CallPreview.h"

#include "fetch/call_trial.h"
#include "fetch/formula_text.h"
#include "platform/list_grid/ListGrid.h"
#include "reports/ReportContext.h"

#include <algorithm>
#include <QLabel>
#include <QVBoxLayout>

namespace selfreport {

namespace {

constexpr std::chrono::milliseconds pauseBeforeTrial{300};
constexpr std::chrono::milliseconds trialLimit{500};

QLabel* textLabel(const char* name)
{
    auto* label = new QLabel;
    label->setObjectName(name);
    label->setTextFormat(Qt::PlainText); // codes may look like markup
    label->setWordWrap(true);
    label->setTextInteractionFlags(Qt::TextSelectableByMouse);
    return label;
}

} // namespace

CallPreview::CallPreview(const ReportContext& context, QWidget* parent)
    : QWidget(parent)
    , m_context(context)
    , m_words(textLabel("lblWords"))
    , m_value(textLabel("lblValue"))
    , m_accounts(new ListGrid)
{
    m_accounts->setObjectName("vsfAccounts");
    m_accounts->setColumns({{"科目代码", 1800}, {"科目名称", 3000}, {"", 1500}});
    m_accounts->setFocusPolicy(Qt::ClickFocus); // Tab goes from the last box to OK
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins({});
    layout->addWidget(m_words);
    layout->addWidget(m_value);
    layout->addWidget(m_accounts, 1);
    m_pause.setSingleShot(true);
    m_pause.setInterval(pauseBeforeTrial);
    connect(&m_pause, &QTimer::timeout, this, &CallPreview::tryNow);
}

void CallPreview::textsChanged(const std::array<std::string, 6>& texts)
{
    std::ranges::transform(texts, m_texts.begin(), withQuotesRead);
    m_pause.start();
}

void CallPreview::tryNow()
{
    const bool isEmpty = std::ranges::all_of(m_texts, &std::string::empty);
    show(isEmpty ? CallTrial() : tryCall(m_context.database.connectionString, m_texts, trialLimit));
}

void CallPreview::show(const CallTrial& trial)
{
    m_words->setText(QString::fromStdString(trial.meaning.words));
    QStringList lines;
    for (const std::string& problem : trial.meaning.problems)
        lines.append(QString::fromStdString(problem));
    if (!trial.value.empty())
        lines.append(QStringLiteral("当前取数：") + QString::fromStdString(trial.value));
    m_value->setText(lines.join('\n'));
    m_accounts->clearRows();
    for (const auto& [code, name, countedInParent] : trial.meaning.accounts)
        m_accounts->addRow(QStringList{ListGrid::columnText(code), ListGrid::columnText(name),
                                       countedInParent ? QStringLiteral("已含在上级科目") : QString()}
                               .join('\t'));
}

} // namespace selfreport
