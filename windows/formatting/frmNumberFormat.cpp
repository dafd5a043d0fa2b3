#include "windows/formatting/frmNumberFormat.h"

#include "platform/windows/buttons.h"
#include "platform/windows/named_list.h"
#include "platform/windows/number_fields.h"
#include "platform/windows/settle.h"
#include "spreadsheet/display/display_text.h"
#include "spreadsheet/display/number_format_code.h"
#include "spreadsheet/view/SpreadsheetControl.h"
#include "windows/formatting/cell_commands.h"

#include <QCheckBox>
#include <QFormLayout>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QSignalBlocker>
#include <QSpinBox>

#include <cmath>

namespace selfreport {

// The code is what is stored; the lists are a way to write it. So each choice makes a code, a code that the
// lists can express fills them, and any other stays as it was typed. Every choice shows what it makes of the
// cell's own value, since accountants choose by looks and not by codes.

using Choice = NumberFormatChoice;
using spreadsheet::Value;

namespace {

constexpr double exampleOfEmptyCell = 1234567.89;

constexpr struct {
    Choice::Kind kind;
    const char* caption;
} kinds[] = {
    {Choice::Kind::byType, "按数据类型"},   {Choice::Kind::number, "数字"},
    {Choice::Kind::percent, "百分比"},      {Choice::Kind::date, "日期"},
    {Choice::Kind::capitals, "人民币大写"}, {Choice::Kind::byHand, "自定义代码"},
};

int rowOf(Choice::Kind kind)
{
    int row = 0;
    while (kinds[row].kind != kind)
        ++row;
    return row;
}

template <class Control>
Control* named(Control* control, const char* name)
{
    control->setObjectName(name);
    return control;
}

QString inColour(const QString& text, spreadsheet::Colour colour)
{
    const QString escaped = text.toHtmlEscaped().replace(' ', QStringLiteral("&nbsp;"));
    return colour == spreadsheet::automaticColour ? escaped
                                                  : QStringLiteral("<span style=\"color:#%1\">%2</span>")
                                                        .arg(colour & 0xFFFFFF, 6, 16, QChar('0'))
                                                        .arg(escaped);
}

} // namespace

frmNumberFormat::frmNumberFormat(spreadsheet::SpreadsheetControl& grid, QWidget* parent)
    : QDialog(parent)
    , m_grid(grid)
    , m_style(grid.cells().sheet().style(grid.cursor().activeCell()))
    , m_value(grid.cells().sheet().value(grid.cursor().activeCell()))
    , m_kinds(named(new QListWidget, "lstKind"))
    , m_grouped(named(new QCheckBox(QStringLiteral("千分位(&T)")), "chkGrouped"))
    , m_apart(named(new QCheckBox(QStringLiteral("与右边线留空(&S)")), "chkApart"))
    , m_decimals(named<QSpinBox>(new WholeNumberField, "spnDecimals"))
    , m_negative(namedList("cboNegative"))
    , m_zero(namedList("cboZero"))
    , m_unit(namedList("cboUnit"))
    , m_date(namedList("cboDate"))
    , m_code(named(new QLineEdit, "txtCode"))
    , m_preview(named(new QLabel, "lblPreview"))
    , m_note(named(new QLabel, "lblNote"))
{
    setObjectName("frmNumberFormat");
    setWindowTitle(QStringLiteral("数字格式"));
    if (m_value.isEmpty())
        m_value = Value(exampleOfEmptyCell);
    auto* columns = new QHBoxLayout;
    columns->addWidget(m_kinds);
    auto* form = new QFormLayout;
    buildKinds();
    buildChoices(*form);
    columns->addLayout(form, 1);
    auto* rows = new QVBoxLayout(this);
    rows->addLayout(columns);
    rows->addWidget(m_note);
    rows->addWidget(okAndClose(
        "确定(&Q)", [this] { cmdXPOK_Click(); }, "关闭(&E)", [this] { close(); }));
    NumberFormatChoice choice = choiceOf(m_style);
    choice.isGrouped = choice.isGrouped || choice.kind == Choice::Kind::byType; // what most want of a number
    fillFrom(choice);
    choiceChanged();
    m_kinds->setFocus();
    settle(*this);
}

void frmNumberFormat::buildKinds()
{
    for (const auto& [kind, caption] : kinds)
        m_kinds->addItem(QString::fromUtf8(caption));
    m_kinds->setMaximumWidth(m_kinds->sizeHintForColumn(0) + 6 * m_kinds->fontMetrics().averageCharWidth());
    connect(m_kinds, &QListWidget::currentRowChanged, this, [this] { choiceChanged(); });
}

void frmNumberFormat::buildChoices(QFormLayout& form)
{
    m_decimals->setRange(0, mostDecimals);
    m_unit->addItems({QStringLiteral("元"), QStringLiteral("千元"), QStringLiteral("万元")});
    for (QComboBox* list : {m_negative, m_zero})
        for (int i = 0; i < 3; ++i)
            list->addItem({}); // as the active cell's value looks then
    for (std::size_t i = 0; i < dateFormatCodes.size(); ++i)
        m_date->addItem({});
    form.addRow(m_grouped);
    form.addRow(QStringLiteral("小数位数(&D)："), m_decimals);
    form.addRow(QStringLiteral("负数(&N)："), m_negative);
    form.addRow(QStringLiteral("零(&Z)："), m_zero);
    form.addRow(QStringLiteral("单位(&U)："), m_unit);
    form.addRow(m_apart);
    form.addRow(QStringLiteral("日期(&R)："), m_date);
    form.addRow(QStringLiteral("格式代码(&C)："), m_code);
    form.addRow(QStringLiteral("示例："), m_preview);
    m_preview->setTextFormat(Qt::RichText);
    m_preview->setMinimumWidth(34 * m_preview->fontMetrics().averageCharWidth());
    m_preview->setWordWrap(true); // amounts in words are long
    m_preview->setMinimumHeight(2 * m_preview->fontMetrics().lineSpacing());
    m_preview->setAlignment(Qt::AlignLeft | Qt::AlignTop);
    m_note->setWordWrap(true);
    m_note->setMinimumHeight(2 * m_note->fontMetrics().lineSpacing());
    for (QCheckBox* box : {m_grouped, m_apart})
        connect(box, &QCheckBox::toggled, this, [this] { choiceChanged(); });
    for (QComboBox* list : {m_negative, m_zero, m_unit, m_date})
        connect(list, &QComboBox::currentIndexChanged, this, [this] { choiceChanged(); });
    connect(m_decimals, &QSpinBox::valueChanged, this, [this] { choiceChanged(); });
    connect(m_code, &QLineEdit::textEdited, this, [this] { codeTyped(); });
}

void frmNumberFormat::fillFrom(const Choice& choice)
{
    m_isFilling = true;
    m_kinds->setCurrentRow(rowOf(choice.kind));
    m_grouped->setChecked(choice.isGrouped);
    m_apart->setChecked(choice.isApart);
    m_decimals->setValue(choice.decimals);
    m_negative->setCurrentIndex(static_cast<int>(choice.negative));
    m_zero->setCurrentIndex(static_cast<int>(choice.zero));
    m_unit->setCurrentIndex(static_cast<int>(choice.unit));
    m_date->setCurrentIndex(static_cast<int>(choice.date));
    m_code->setText(QString::fromStdString(formatCode(choice)));
    m_isFilling = false;
}

Choice frmNumberFormat::chosen() const
{
    Choice choice;
    choice.kind = kinds[std::max(m_kinds->currentRow(), 0)].kind;
    choice.isGrouped = m_grouped->isChecked();
    choice.isApart = m_apart->isChecked();
    choice.decimals = m_decimals->value();
    choice.negative = static_cast<Choice::Negative>(m_negative->currentIndex());
    choice.zero = static_cast<Choice::Zero>(m_zero->currentIndex());
    choice.unit = static_cast<Choice::Unit>(m_unit->currentIndex());
    choice.date = static_cast<std::size_t>(std::max(m_date->currentIndex(), 0));
    choice.byHand = m_code->text().toStdString();
    if (choice.kind != Choice::Kind::number)
        choice.unit = Choice::Unit::yuan;
    return choice;
}

/// Another kind or detail: the code follows, unless it is the one that is typed.
void frmNumberFormat::choiceChanged()
{
    if (m_isFilling)
        return;
    const Choice choice = chosen();
    const bool isNumber = choice.kind == Choice::Kind::number || choice.kind == Choice::Kind::percent;
    for (QWidget* control :
         std::initializer_list<QWidget*>{m_grouped, m_apart, m_decimals, m_negative, m_zero})
        control->setEnabled(isNumber);
    m_unit->setEnabled(choice.kind == Choice::Kind::number);
    m_date->setEnabled(choice.kind == Choice::Kind::date);
    if (choice.kind != Choice::Kind::byHand)
        m_code->setText(QString::fromStdString(formatCode(choice)));
    showPreviews(choice);
}

/// What is typed is a code by hand, whatever was chosen before.
void frmNumberFormat::codeTyped()
{
    const QSignalBlocker blocker(m_kinds);
    m_kinds->setCurrentRow(rowOf(Choice::Kind::byHand));
    choiceChanged();
}

QString frmNumberFormat::shownBy(const std::string& code, const Value& value) const
{
    spreadsheet::CellStyle style = m_style;
    style.numberFormat = spreadsheet::Text(code);
    return QString::fromStdString(displayText(value, style, m_grid.cells().workbook().countsFrom1904()));
}

/// The lists show their choices on the cell's value, and the label what all of them make together.
void frmNumberFormat::showPreviews(const Choice& choice)
{
    const QSignalBlocker negatives(m_negative), zeros(m_zero), dates(m_date);
    const bool hasSize = m_value.isNumber() && m_value.number() != 0;
    const double size = hasSize ? std::fabs(m_value.number()) : exampleOfEmptyCell; // zero has no sign
    Choice number = choice;
    if (number.kind != Choice::Kind::percent)
        number.kind = Choice::Kind::number;
    for (int i = 0; i < 3; ++i) {
        Choice one = number;
        one.negative = static_cast<Choice::Negative>(i);
        const QString red =
            i == static_cast<int>(Choice::Negative::red) ? QStringLiteral("  红字") : QString();
        m_negative->setItemText(i, shownBy(formatCode(one), Value(-size)).trimmed() + red);
        one = number;
        one.zero = static_cast<Choice::Zero>(i);
        const QString zero = shownBy(formatCode(one), Value(0.0)).trimmed();
        m_zero->setItemText(i, zero.isEmpty() ? QStringLiteral("空白") : zero);
    }
    for (std::size_t i = 0; i < dateFormatCodes.size(); ++i)
        m_date->setItemText(static_cast<int>(i), shownBy(std::string(dateFormatCodes[i]), m_value));

    const std::string code = formatCode(choice);
    const auto sections = spreadsheet::parseFormatCode(code);
    spreadsheet::CellStyle style = m_style;
    style.numberFormat = spreadsheet::Text(code);
    m_preview->setText(inColour(shownBy(code, m_value), textColour(m_value, style)));
    const bool isOurs = code.find("[万元]") != code.npos || code.find("[人民币大写]") != code.npos;
    m_note->setText(
        !sections && !code.empty()
            ? QStringLiteral("格式代码有误：其中有没有意义的字母，文字要放在双引号里。")
        : isOurs ? QStringLiteral("这种格式只有本程序认识，引出为Excel文件时改为相近的格式，并会提示。")
                 : QString());
}

void frmNumberFormat::cmdXPOK_Click()
{
    const std::string code = formatCode(chosen());
    if (!code.empty() && !spreadsheet::parseFormatCode(code)) {
        m_code->setFocus();
        m_code->selectAll();
        return;
    }
    setNumberFormat(m_grid, code);
    close();
}

} // namespace selfreport
