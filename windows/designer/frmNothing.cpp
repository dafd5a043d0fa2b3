#include "windows/designer/frmNothing.h"

#include "fetch/CallState.h"
#include "platform/windows/buttons.h"
#include "platform/windows/settle.h"
#include "spreadsheet/view/SpreadsheetControl.h"
#include "spreadsheet/workbook/Workbook.h"

#include <QComboBox>
#include <QFormLayout>
#include <QLabel>
#include <QLineEdit>

namespace selfreport {

namespace {

constexpr CallState nothings[] = {CallState::zeroBalance,   CallState::noMovement, CallState::noData,
                                  CallState::notApplicable, CallState::missing,    CallState::failed};

const QString asFigure = QStringLiteral("0.00");
const QString asBlank = QStringLiteral("(空白)");

QComboBox* choice(CallState kind, const std::map<int, std::string>& texts)
{
    auto* const box = new QComboBox;
    box->setObjectName(QStringLiteral("cboNothing_%1").arg(static_cast<int>(kind)));
    box->setEditable(true);
    box->setInsertPolicy(QComboBox::NoInsert);
    box->setCompleter(nullptr); // it would take the first Enter for itself
    box->lineEdit()->setMaxLength(20);
    box->addItems(
        {asFigure, QStringLiteral("–"), asBlank,
         QString::fromUtf8(stateName(kind).data(), static_cast<qsizetype>(stateName(kind).size()))});
    const auto text = texts.find(static_cast<int>(kind));
    if (text != texts.end())
        box->setCurrentText(text->second.empty() ? asBlank : QString::fromStdString(text->second));
    return box;
}

} // namespace

frmNothing::frmNothing(spreadsheet::SpreadsheetControl& grid, QWidget* parent)
    : QDialog(parent)
    , m_grid(grid)
{
    setObjectName("frmNothing");
    setWindowTitle(QStringLiteral("空值显示"));
    const auto& texts = grid.cells().sheet().settings().nothingTexts;
    auto* const form = new QFormLayout(this);
    form->addRow(new QLabel(QStringLiteral("本表页中取数为零或没有取到数的单元格显示为：")));
    for (const CallState kind : nothings) {
        QComboBox* const box = choice(kind, texts);
        m_shown.emplace(static_cast<int>(kind), box);
        form->addRow(
            QString::fromUtf8(stateName(kind).data(), static_cast<qsizetype>(stateName(kind).size())) +
                QStringLiteral("："),
            box);
    }
    form->addRow(new QLabel(QStringLiteral("单元格的值仍是0，合计不变，其他报表引用时也是0。")));
    form->addRow(okAndClose(
        "确定(&Q)", [this] { cmdXPOK_Click(); }, "取消(&E)", [this] { close(); }));
    settle(*this);
}

void frmNothing::cmdXPOK_Click()
{
    std::map<int, std::string> texts;
    for (const auto& [kind, box] : m_shown) {
        const QString text = box->currentText().trimmed();
        if (text != asFigure)
            texts.emplace(kind, text == asBlank ? std::string() : text.toStdString());
    }
    spreadsheet::Sheet& sheet = m_grid.cells().sheet();
    if (texts != sheet.settings().nothingTexts)
        sheet.changeSettings(
            [&](spreadsheet::SheetSettings& settings) { settings.nothingTexts = std::move(texts); });
    m_grid.showChanges();
    close();
}

} // namespace selfreport
