// The designer's controls, menus and toolbar, and what connects them.
#include "windows/designer/frmEditor.h"

#include "platform/services/Dialogs.h"
#include "platform/services/Preferences.h"
#include "platform/windows/ProportionalLayout.h"
#include "reports/ReportContext.h"
#include "spreadsheet/view/SpreadsheetControl.h"
#include "windows/designer/DiagnosticsPanel.h"
#include "windows/designer/editor_commands.h"
#include "windows/designer/EditorFiles.h"
#include "windows/designer/EditorFormulas.h"
#include "windows/designer/EditorGrid.h"
#include "windows/designer/EditorMenuBar.h"
#include "windows/designer/EditorStatus.h"
#include "windows/designer/FailedFetchBar.h"
#include "windows/designer/FormulaBox.h"
#include "windows/designer/report_function_hints.h"
#include "windows/formatting/cell_commands.h"
#include "windows/formatting/number_format_choice.h"
#include "windows/icons/own_icon.h"

#include <QComboBox>
#include <QFontDatabase>
#include <QLabel>
#include <QLineEdit>
#include <QScreen>
#include <QSignalBlocker>
#include <QSplitter>
#include <QToolBar>
#include <QToolButton>
#include <QVBoxLayout>

#include <algorithm>
#include <cmath>
#include <string_view>
#include <utility>

namespace selfreport {

// Menus, toolbars and their keys are laid out here and nowhere else, so that one look shows which command
// has which key. What a command does stands with the designer's handlers.

namespace {

constexpr QSize board(14400, 9300); // twips
constexpr double roominess = 1.25;  // of the window when it opens

// Twips on the board.
constexpr QRect toolbarPlace(0, 0, 14400, 600);
constexpr QRect list1Place(60, 630, 1920, 480);
constexpr QRect list2Place(2040, 630, 1080, 480);
constexpr QRect nameLabelPlace(3150, 630, 1050, 480);
constexpr QRect namePlace(4260, 630, 2640, 480);
constexpr QRect formulaLabelPlace(6900, 630, 2400, 480);
constexpr QRect equalsPlace(9300, 630, 240, 480);
constexpr QRect formulaPlace(9540, 630, 4800, 480);
constexpr QRect sheetPlace(0, 1170, 14400, 7680);
constexpr QRect statusPlace(0, 8880, 14400, 420);

constexpr int firstSize = 5; // points
constexpr int lastSize = 72;

/// The buttons that show how the entered cell looks.
constexpr const char* lookButtons[] = {"Bold", "Italic", "Left", "Middle", "Right", "Thousands"};

} // namespace

void frmEditor::buildControls()
{
    auto* layout = new ProportionalLayout(this, board);
    setLayout(layout);
    m_toolbar1 = new QToolBar;
    m_toolbar1->setObjectName("Toolbar1");
    layout->place(m_toolbar1, toolbarPlace);
    m_fps1->setObjectName("fps1");
    m_diagnostics = new DiagnosticsPanel;
    m_failedFetches = new FailedFetchBar;
    auto* sheet = new QWidget;
    auto* rows = new QVBoxLayout(sheet);
    rows->setContentsMargins(0, 0, 0, 0);
    rows->setSpacing(0);
    rows->addWidget(m_failedFetches);
    rows->addWidget(m_fps1, 1);
    auto* splitter = new QSplitter(Qt::Vertical);
    splitter->addWidget(sheet);
    splitter->addWidget(m_diagnostics);
    splitter->setStretchFactor(0, 4);
    splitter->setStretchFactor(1, 1);
    buildLabels(*layout);
    layout->place(splitter, sheetPlace);
    m_status = new EditorStatus;
    m_status->setContentsMargins(0, 0, 6, 0);
    layout->place(m_status, statusPlace);
    m_formulas =
        std::make_unique<EditorFormulas>(m_context, *m_fps1, *m_status, *m_diagnostics, *m_failedFetches);
    m_files = std::make_unique<EditorFiles>(m_context, *m_fps1, *m_txtReportName, *m_status, *m_diagnostics,
                                            *m_formulas, *m_formulaBox);
    buildCommands(); // the files' formats are among them
    resize((QSizeF(sizeHint()) * roominess).toSize().boundedTo(screen()->availableSize() * 9 / 10));
}

void frmEditor::buildLabels(ProportionalLayout& layout)
{
    const auto put = [&](auto* control, const char* name, const QRect& place) {
        control->setObjectName(name);
        layout.place(control, place);
        return control;
    };
    m_list1 = put(new QComboBox, "list1", list1Place);
    m_list2 = put(new QComboBox, "list2", list2Place);
    auto* nameLabel = put(new QLabel(QStringLiteral("报表名称：")), "lblReportName", nameLabelPlace);
    m_txtReportName = put(new QLineEdit, "txtReportName", namePlace);
    nameLabel->setBuddy(m_txtReportName);
    m_label1 = put(new QLabel(QStringLiteral("单元格公式：")), "Label1", formulaLabelPlace);
    m_label1->setSizePolicy(QSizePolicy::Ignored,
                            QSizePolicy::Preferred); // the caption never widens the window
    m_txtFormula = put(new QLineEdit, "txtFormula", formulaPlace);
    auto* equals = put(new QLabel(QStringLiteral("=")), "lblEquals", equalsPlace);
    equals->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Preferred);
    equals->hide();
    for (QLabel* label : {nameLabel, m_label1, equals})
        label->setAlignment(Qt::AlignRight | Qt::AlignVCenter);
    for (const auto& [list, letters] : {std::pair(m_list1, 6), std::pair(m_list2, 2)}) {
        list->setSizeAdjustPolicy(QComboBox::AdjustToMinimumContentsLengthWithIcon); // font names may be long
        list->setMinimumContentsLength(letters);
    }
    m_formulaBox = new FormulaBox(*m_txtFormula, *equals, *m_fps1);
    connect(m_txtReportName, &QLineEdit::returnPressed, m_fps1, qOverload<>(&QWidget::setFocus));
}

QAction* frmEditor::newAction(const QString& name, const QString& caption, std::function<void()> run,
                              bool whileTyping)
{
    auto* action = new QAction(caption, this);
    action->setObjectName(name);
    if (run)
        connect(action, &QAction::triggered, this, [this, run = std::move(run), whileTyping] {
            finishOpening();
            if (whileTyping || m_fps1->entry().commit()) // the cell may go elsewhere, or its content
                run();
        });
    return action;
}

void frmEditor::addFileFormats(QMenu& menu)
{
    for (FileCommand& command : m_files->formatCommands())
        menu.addAction(newAction(QString::fromStdString(command.name),
                                 QString::fromStdString(command.caption), std::move(command.run)));
}

void frmEditor::addPreferences(QMenu& menu)
{
    m_status->addFigureChoices(menu);
    QAction* const asks = menu.addAction(QStringLiteral("关闭时询问是否保存"));
    asks->setObjectName("MenuAskAtClosing");
    asks->setCheckable(true);
    asks->setChecked(preferences().isOn(asksAtClosing));
    connect(asks, &QAction::toggled, this, [](bool on) { preferences().keepOn(asksAtClosing, on); });
}

QAction* frmEditor::actionOf(const EditorCommand& command)
{
    std::function<void()> run;
    if (command.run)
        run = [this, work = command.run] { work(*this); };
    QAction* action =
        newAction(command.name, QString::fromUtf8(command.caption), std::move(run), command.whileTyping);
    action->setShortcuts(QKeySequence::listFromString(command.shortcut));
    return action;
}

void frmEditor::fillMenu(QMenu& shown, const EditorMenu& menu)
{
    shown.setObjectName(menu.name);
    for (const EditorCommand& command : menu.commands) {
        if (command.submenu)
            fillMenu(*shown.addMenu(QString::fromUtf8(command.submenu->caption)), *command.submenu);
        else if (command.addsMore)
            command.addsMore(*this, shown);
        else if (command.name)
            shown.addAction(actionOf(command));
        else if (!shown.isEmpty())
            shown.addSeparator();
    }
}

/// The edit menu's entries as the right button offers them: what is wanted most, then each group in a menu of
/// its own, as all of them together are too many for a screen.
QMenu* frmEditor::newPopup(const EditorMenu& menu)
{
    auto* popup = new QMenu(this);
    popup->setObjectName("MenuPopup");
    for (const char* name : {"MenuCut", "MenuCopy", "MenuPaste"})
        popup->addAction(findChild<QAction*>(name));
    popup->addAction(findChild<QAction*>("MenuDrill"));
    popup->addSeparator();
    QMenu* group = popup;
    for (const EditorCommand& command : menu.commands) {
        if (command.submenu)
            popup->addMenu(findChild<QMenu*>(command.submenu->name));
        else if (command.name)
            group->addAction(findChild<QAction*>(command.name));
        else
            group = command.caption ? popup->addMenu(QString::fromUtf8(command.caption)) : popup;
    }
    return popup;
}

void frmEditor::buildCommands()
{
    auto* bar = new EditorMenuBar;
    layout()->setMenuBar(bar);
    for (const EditorMenu& menu : editorMenus())
        fillMenu(*bar->addMenu(QString::fromUtf8(menu.caption)), menu);
    const auto edit = std::ranges::find(editorMenus(), std::string_view("MenuEdit"), &EditorMenu::name);
    m_popup = newPopup(*edit);
    for (const EditorButton& button : editorButtons()) {
        if (!button.key) {
            m_toolbar1->addSeparator();
            continue;
        }
        QAction* action = m_toolbar1->addAction(ownIcon(button.icon), QString::fromUtf8(button.tooltip));
        action->setObjectName(button.key);
        action->setCheckable(button.checkable);
        if (const auto* command = button.command ? findChild<QAction*>(button.command) : nullptr) {
            connect(action, &QAction::triggered, command, &QAction::trigger);
        } else if (button.run) {
            connect(action, &QAction::triggered, this, [this, run = button.run] {
                if (m_fps1->entry().commit())
                    run(*this);
            });
        }
    }
}

/// Only a choice by the user counts; choosing the current entry again does.
void frmEditor::connectLists()
{
    connect(m_list1, &QComboBox::textActivated, this, [this](const QString& name) {
        setFontName(*m_fps1, name.toStdString());
        showCellLooks();
        m_fps1->setFocus();
    });
    connect(m_list2, &QComboBox::textActivated, this, [this](const QString& size) {
        setFontSize(*m_fps1, size.toInt());
        showCellLooks();
        m_fps1->setFocus();
    });
}

void frmEditor::initForm()
{
    connectLists();
    m_list1->addItems(QFontDatabase::families());
    for (int size = firstSize; size <= lastSize; ++size)
        m_list2->addItem(QString::number(size));
    showCellLooks();
}

/// Lists and buttons follow the entered cell; none of this is a choice by the user.
void frmEditor::showCellLooks()
{
    const spreadsheet::CellStyle& style = m_fps1->cells().sheet().style(m_fps1->cursor().activeCell());
    const spreadsheet::CellFont& font = style.font;
    const QString family = QString::fromUtf8(font.family.view());
    m_list1->setCurrentIndex(m_list1->findText(family.isEmpty() ? m_fps1->screenFont(font).family() : family,
                                               Qt::MatchExactly | Qt::MatchCaseSensitive));
    m_list2->setCurrentIndex(m_list2->findText(QString::number(std::lround(font.points))));
    const auto press = [this](const char* key, bool pressed) {
        m_toolbar1->findChild<QAction*>(key)->setChecked(pressed);
    };
    for (const char* key : lookButtons)
        press(key, false);
    using spreadsheet::HorizontalAlignment;
    press("Left", style.horizontal == HorizontalAlignment::left);
    press("Right", style.horizontal == HorizontalAlignment::right);
    press("Middle", style.horizontal == HorizontalAlignment::centre);
    press("Bold", font.bold);
    press("Italic", font.italic);
    press("Thousands", groupsThousands(style));
}

void frmEditor::connectGrid()
{
    using spreadsheet::SpreadsheetControl;
    m_formulaBox->refused = [this](const std::string& reason) {
        m_context.database.tell(Icon::critical, reason);
    };
    describeReportFunctions(m_fps1->entry().functionHints(), m_context);
    m_fps1->ask = [this](const QString& question) {
        return dialogs().question(m_context.title, question.toStdString());
    };
    connect(m_formulas.get(), &EditorFormulas::shown, this, &frmEditor::enterCell);
    connect(m_files.get(), &EditorFiles::shown, this, &frmEditor::enterCell);
    connect(m_fps1, &SpreadsheetControl::leaveCell, this, &frmEditor::fps1_LeaveCell);
    connect(m_fps1, &SpreadsheetControl::selectionChanged, this, &frmEditor::enterCell);
    connect(m_fps1, &SpreadsheetControl::cellChanged, this, &frmEditor::enterCell);
    connect(m_fps1, &SpreadsheetControl::refused, m_status,
            [this](const QString& why) { m_status->showMessage(why); });
    connect(m_fps1, &SpreadsheetControl::contextMenuWanted, this,
            [this](const QPoint& place) { m_popup->popup(place); });
    m_fps1->setMovesByRightButton(true);
    connect(m_fps1, &SpreadsheetControl::editModeChanged, this, [this] { m_refusedAtClosing.clear(); });
    connect(m_fps1, &SpreadsheetControl::undoChanged, this, &frmEditor::showTitle); // with every change
    connect(m_fps1, &SpreadsheetControl::printSettingsTravelled, this,
            [this](bool alone) { m_grid->pageSetupTravelled(alone); });
    connect(m_files.get(), &EditorFiles::stored, this, &frmEditor::showTitle);
    connect(m_txtReportName, &QLineEdit::textChanged, this, &frmEditor::showTitle);
}

} // namespace selfreport
