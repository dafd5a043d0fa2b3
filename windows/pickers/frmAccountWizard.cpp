#include "windows/pickers/frmAccountWizard.h"

#include "platform/basicdata/clsAccountChooser.h"
#include "platform/basicdata/clsItemChooser.h"
#include "platform/windows/buttons.h"
#include "platform/windows/own_file.h"
#include "platform/windows/settle.h"
#include "platform/windows/text_room.h"
#include "reports/ReportContext.h"
#include "spreadsheet/view/SpreadsheetControl.h"
#include "spreadsheet/workbook/typed_text.h"
#include "text/ascii.h"
#include "windows/pickers/account_argument.h"
#include "windows/pickers/ArgumentBoxes.h"
#include "windows/pickers/item_classes.h"

#include <QFocusEvent>
#include <QGridLayout>
#include <QLabel>
#include <QLineEdit>
#include <QVBoxLayout>

#include <array>
#include <utility>

namespace selfreport {

// The wizard writes one account expression, but users think of it in rows: a class of items with a first and
// a last code. The expression names a class and the chooser of items knows it by id, so each row keeps both,
// and whatever changes one of them, by list, keyboard or clipboard, brings the other in step.

namespace {

enum Column { classColumn = 1, classIdColumn, fromColumn, toColumn };

constexpr int rowsAtFirst = 10;

} // namespace

frmAccountWizard::frmAccountWizard(ReportContext& context, std::function<void(const QString&)> handBack,
                                   QWidget* parent)
    : QDialog(parent)
    , m_context(context)
    , m_handBack(std::move(handBack))
    , m_fps1(new spreadsheet::SpreadsheetControl)
    , m_words(new QLabel)
{
    setObjectName("frmAccountWizard");
    setWindowTitle(QStringLiteral("取数科目向导"));
    auto* accountRows = new QGridLayout;
    m_txt = new ArgumentBoxes(this, accountRows, {{"科目：", true}, {"至", true}});
    m_txt->seek = [this](int index) { getBasicInfo(index); };
    m_txt->changed = [this] { showWords(); };
    for (const int index : {0, 1})
        m_txt->box(index).installEventFilter(this);
    buildGrid();
    buildLayout(accountRows);
    resize(textRoom(*this, 83, 25));
    settle(*this);
}

void frmAccountWizard::buildGrid()
{
    using spreadsheet::SpreadsheetControl;
    m_fps1->setObjectName("fps1");
    m_fps1->setSheetTabsShown(false);
    spreadsheet::demand(m_fps1->cells().setColumnCount(toColumn));
    setRowCount(rowsAtFirst);
    m_fps1->setColumnHeadings({QStringLiteral("核算项目类别"), QStringLiteral("fItemclassId"),
                               QStringLiteral("项目代码(从)"), QStringLiteral("项目代码(至)")});
    for (const auto& [column, twips] :
         {std::pair(classColumn, 2400), {classIdColumn, 0}, {fromColumn, 2400}, {toColumn, 2400}})
        m_fps1->cells().setColumnWidth(column, twips);
    connect(m_fps1, &SpreadsheetControl::keyDown, this, &frmAccountWizard::fps1_KeyDown);
    connect(m_fps1, &SpreadsheetControl::comboDropDown, this, &frmAccountWizard::fps1_ComboDropDown);
    connect(m_fps1, &SpreadsheetControl::comboCloseUp, this, &frmAccountWizard::fps1_ComboCloseUp);
    connect(m_fps1, &SpreadsheetControl::cellChanged, this, &frmAccountWizard::fps1_Change);
}

void frmAccountWizard::buildLayout(QGridLayout* accountRows)
{
    auto* items = new QLabel(QStringLiteral("核算项目："));
    items->setObjectName("Label2_2");
    m_words->setObjectName("lblWords");
    m_words->setTextFormat(Qt::PlainText);
    m_words->setWordWrap(true);
    QDialogButtonBox* buttons = okAndClose(
        "确定(&Q)", [this] { cmdXPOK_Click(); }, "取消(&E)", [this] { cmdXPClose_Click(); });
    auto* insertRow = buttons->addButton(QStringLiteral("插入行"), QDialogButtonBox::ResetRole);
    insertRow->setObjectName("MenuInsertRow");
    insertRow->setAutoDefault(false);
    connect(insertRow, &QPushButton::clicked, this, &frmAccountWizard::MenuInsertRow_Click);
    auto* layout = new QVBoxLayout(this);
    layout->addLayout(accountRows);
    layout->addWidget(items);
    layout->addWidget(m_fps1, 1);
    layout->addWidget(m_words);
    layout->addWidget(buttons);
}

bool frmAccountWizard::eventFilter(QObject* watched, QEvent* event)
{
    if (event->type() != QEvent::FocusOut)
        return false;
    // A chooser or another program in front takes no focus from the box for good.
    const Qt::FocusReason reason = static_cast<QFocusEvent*>(event)->reason();
    if (reason == Qt::ActiveWindowFocusReason || reason == Qt::PopupFocusReason)
        return false;
    for (const int index : {0, 1})
        if (watched == &m_txt->box(index))
            txt_LostFocus(index);
    return false;
}

void frmAccountWizard::txt_LostFocus(int index)
{
    if (const QString text = m_txt->box(index).text(); !text.isEmpty())
        getHSXMDetail(text);
}

void frmAccountWizard::getBasicInfo(int index)
{
    clsAccountChooser chooser;
    chooser.initChooser(m_context.database.connectionString, m_context.title, m_context.user,
                        componentFolder().toStdString());
    chooser.chooseAccount("", 1);
    const QString number = QString::fromStdString(chooser.chosenNumber());
    if (number.isEmpty())
        return;
    m_txt->box(index).setText(number);
    if (index == 0 && m_txt->box(1).text().isEmpty())
        m_txt->box(1).setText(number);
}

void frmAccountWizard::getHSXMDetail(const QString& account)
{
    const std::string number(ascii::trimmed(account.toStdString(), " "));
    const auto classes = m_context.database.read<ItemClasses>(
        Icon::critical, [number](Connection& open) { return itemClassesOf(open, number); });
    if (!classes)
        return;
    m_fps1->cells().setColumnDropDown(classColumn, classes->names);
    m_fps1->cells().setColumnDropDown(classIdColumn, classes->ids);
}

void frmAccountWizard::getBasicInfoHSXM(int column)
{
    const int row = m_fps1->cursor().activeCell().row;
    m_fps1->cells().setCurrent(classIdColumn, row);
    const QString id = m_fps1->cells().text();
    if (id.isEmpty())
        return; // no class is chosen in this row
    bool isNumber = false;
    const short classId = id.toShort(&isNumber);
    if (!isNumber || classId < 0) {
        m_context.database.tell(Icon::critical, "核算项目类别编号无效: " + id.toStdString());
        return;
    }
    clsItemChooser chooser;
    chooser.initChooser(m_context.title, m_context.user, componentFolder().toStdString());
    chooser.chooseItem(classId, "fNumber", "", m_context.database.connectionString, 1, "", "");
    const QString code = QString::fromStdString(chooser.chosenNumber());
    if (code.isEmpty())
        return;
    m_fps1->cells().setText(column, row, code);
    if (column == fromColumn && m_fps1->cells().text(toColumn, row).isEmpty())
        m_fps1->cells().setText(toColumn, row, code);
    m_fps1->showChanges();
    showWords();
}

void frmAccountWizard::fps1_KeyDown(QKeyEvent* event)
{
    if (event->key() != Qt::Key_F7)
        return;
    event->accept();
    if (const int column = m_fps1->cursor().activeCell().column; column >= fromColumn)
        getBasicInfoHSXM(column);
}

void frmAccountWizard::fps1_ComboDropDown(int column)
{
    if (column < fromColumn)
        return;
    m_fps1->actions().cancelDropDown();
    getBasicInfoHSXM(m_fps1->cursor().activeCell().column);
}

void frmAccountWizard::fps1_ComboCloseUp(int column, int row, int index)
{
    if (index == -1)
        return;
    if (column == classColumn) {
        m_fps1->cells().setCurrent(classIdColumn, row);
        m_fps1->cells().setDropDownIndex(index);
    }
    m_fps1->showChanges();
    showWords();
}

/// Keeps the ids in step with class names that were typed, pasted or deleted.
void frmAccountWizard::fps1_Change(int column, int row)
{
    if (column == classColumn) {
        m_fps1->cells().setCurrent(classColumn, row);
        const int index = m_fps1->cells().dropDownIndex();
        m_fps1->cells().setCurrent(classIdColumn, row);
        if (index >= 0)
            m_fps1->cells().setDropDownIndex(index);
        else
            m_fps1->cells().setText({});
    }
    showWords();
}

void frmAccountWizard::setRowCount(int count)
{
    if (const spreadsheet::Refusal why = m_fps1->cells().setRowCount(count)) {
        m_context.database.tell(Icon::exclamation, why.reason());
        return;
    }
    m_fps1->cells().changeStyle({classColumn, 1, toColumn, count}, [](spreadsheet::CellStyle& style) {
        style.type = spreadsheet::CellType::dropDown;
        style.numberFormat = spreadsheet::Text(spreadsheet::textFormat); // a typed 01 is a code, not 1
    });
}

void frmAccountWizard::MenuInsertRow_Click()
{
    setRowCount(m_fps1->cells().rowCount() + 1);
}

std::string frmAccountWizard::argument()
{
    std::vector<ItemCondition> rows;
    const auto text = [this](int column, int row) { return m_fps1->cells().text(column, row).toStdString(); };
    for (int row = 1; row <= m_fps1->cells().lastDataRow(); ++row)
        rows.push_back({text(classColumn, row), text(fromColumn, row), text(toColumn, row)});
    const auto boxes = m_txt->texts<std::array<std::string, 2>>();
    return accountArgument(boxes[0], boxes[1], rows);
}

void frmAccountWizard::showWords()
{
    m_words->setText(QString::fromStdString(argumentInWords(argument())));
}

void frmAccountWizard::cmdXPOK_Click()
{
    if (!m_fps1->entry().commit())
        return; // the text in the cell was refused and stays to be mended
    m_handBack(QString::fromStdString(argument()));
    close();
}

void frmAccountWizard::cmdXPClose_Click()
{
    close();
}

} // namespace selfreport
