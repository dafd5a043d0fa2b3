#include "platform/services/Dialogs.h"
#include "platform/services/ScriptedPrintService.h"
#include "platform/toolkit/ChineseTexts.h"
#include "platform/toolkit/QtColourDialog.h"
#include "platform/toolkit/QtDialogs.h"
#include "platform/toolkit/QtFileDialog.h"
#include "platform/toolkit/QtFontDialog.h"
#include "platform/toolkit/QtPrinterSetupDialog.h"
#include "tests/fetch/TestLedger.h"
#include "tests/platform/WindowTest.h"
#include "tests/windows/all/every_window.h"

#include <QAbstractButton>
#include <QAbstractItemView>
#include <QAbstractSpinBox>
#include <QAction>
#include <QComboBox>
#include <QContextMenuEvent>
#include <QDialog>
#include <QGroupBox>
#include <QLabel>
#include <QLineEdit>
#include <QMenu>
#include <QPlainTextEdit>
#include <QRegularExpression>
#include <QScrollBar>
#include <QTabBar>
#include <QTemporaryDir>

#include <set>

namespace selfreport {
namespace {

/// Called so in Chinese too.
const std::set<QString> latinNames{
    "Excel",   "Spread", "PDF",      "ss7",       "xls",   "xlsx",
    "csv",     "html",                         // programs, formats and their endings
    "files",                                   // in the suite's own "Excel files", "ss7 files"
    "Acct",    "REF",    "Sheet1",   "Sheet2", // functions, sheets
    "Ctrl",    "Alt",    "Shift",    "Esc",       "Enter", "Del", // keys
    "EndDate", "Comp",   "operator", "PrintDate",                 // what headers and footers are filled with
};

/// The suite's own texts, which its users know.
const std::set<QString> suiteTexts{
    "No border",
    "Solid border",
    "Dash border",
    "Dot border",
    "Dash dot border",
    "Dash dot dot border",
    "Erases border and grid",
    "Fine solid border",
    "Fine dash border",
    "Fine dot border",
    "Fine dash dot border",
    "Fine dash dot dot border",
    "页边距(inch)",
    "Page Width",
    "Page Height",
    "Whole Page",
    "Two Pages",
    "Three Pages",
    "Four Pages",
    "Six Pages",
};

/// What stands in a list because it is there: fonts, files.
bool holdsData(const QObject& control)
{
    static const std::set<QString> names{"list1", "fontFamily", "fileNameEdit", "lookInCombo", "sidebar"};
    return names.contains(control.objectName());
}

void add(QStringList& texts, const QAction& action)
{
    texts << action.text() << action.toolTip();
}

void add(QStringList& texts, const QAbstractItemModel* headed)
{
    for (int column = 0; headed && column < headed->columnCount(); ++column)
        texts << headed->headerData(column, Qt::Horizontal).toString();
}

/// All that a control says by itself; what it holds for the user is not counted.
QStringList textsOf(const QWidget& control)
{
    QStringList texts{control.windowTitle(), control.toolTip()};
    if (holdsData(control))
        return texts;
    if (const auto* const label = qobject_cast<const QLabel*>(&control))
        texts << label->text();
    if (const auto* const button = qobject_cast<const QAbstractButton*>(&control))
        texts << button->text();
    if (const auto* const group = qobject_cast<const QGroupBox*>(&control))
        texts << group->title();
    if (const auto* const edit = qobject_cast<const QLineEdit*>(&control))
        texts << edit->placeholderText();
    if (const auto* const list = qobject_cast<const QComboBox*>(&control))
        for (int entry = 0; entry < list->count(); ++entry)
            texts << list->itemText(entry);
    if (const auto* const tabs = qobject_cast<const QTabBar*>(&control))
        for (int tab = 0; tab < tabs->count(); ++tab)
            texts << tabs->tabText(tab);
    if (const auto* const view = qobject_cast<const QAbstractItemView*>(&control))
        add(texts, view->model());
    for (const QAction* const action : control.actions())
        add(texts, *action);
    return texts;
}

/// Words of two or more Latin letters that are no such names; "" if there are none.
QString foreignWords(const QStringList& texts)
{
    static const QRegularExpression word("[A-Za-z]{2,}[0-9]*");
    QStringList found;
    for (QString text : texts) {
        text.remove('&');
        if (suiteTexts.contains(text.trimmed()))
            continue;
        for (auto match = word.globalMatch(text); match.hasNext();)
            if (const QString latin = match.next().captured(); !latinNames.contains(latin))
                found << latin + " in " + text;
    }
    found.removeDuplicates();
    return found.join('\n');
}

class ChineseWindows : public test::WindowTest {
protected:
    ChineseWindows() { useChineseTexts(ChineseFor::ourWindows); }

    /// What the menu says that the right button opens on a control; it closes again.
    static QStringList contextMenuOf(QWidget& control)
    {
        QStringList texts;
        bool looked = false;
        QTimer::singleShot(0, qApp, [&] { // some run a loop of their own until they are closed
            looked = true;
            if (auto* const menu = qobject_cast<QMenu*>(QApplication::activePopupWidget())) {
                texts = textsOf(*menu);
                menu->close();
            }
        });
        const QPoint place = control.rect().center();
        QContextMenuEvent event(QContextMenuEvent::Mouse, place, control.mapToGlobal(place));
        QApplication::sendEvent(&control, &event);
        while (!looked)
            QCoreApplication::processEvents();
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        return texts;
    }

    static bool hasStandardMenu(const QWidget& control)
    {
        return qobject_cast<const QLineEdit*>(&control) || qobject_cast<const QAbstractSpinBox*>(&control) ||
               qobject_cast<const QPlainTextEdit*>(&control) || qobject_cast<const QScrollBar*>(&control);
    }

    void expectChinese(QWidget& window, const std::string& name)
    {
        QStringList texts = textsOf(window);
        for (QWidget* const control : window.findChildren<QWidget*>()) {
            texts << textsOf(*control);
            if (control->isVisible() && hasStandardMenu(*control)) {
                const QStringList menu = contextMenuOf(*control);
                menus += menu.isEmpty() ? 0 : 1;
                texts << menu;
            }
        }
        EXPECT_EQ(foreignWords(texts).toStdString(), "") << name;
    }

    /// Of a dialog that runs until it is closed.
    void expectChineseWhenOpen(const char* objectName)
    {
        whenModal(objectName, [this, objectName](QWidget& window) {
            expectChinese(window, objectName);
            QTest::keyClick(&window, Qt::Key_Escape);
        });
    }

    test::TestLedger ledger;
    int menus = 0; ///< that were looked into
};

TEST_F(ChineseWindows, SayNoLatinWordInAHostThatSpeaksEnglish)
{
    test::EveryWindow every;
    for (const test::ShownWindow& row : every.windows()) {
        const std::unique_ptr<QWidget> window = row.make();
        window->setWindowModality(Qt::ApplicationModal); // as all of them are shown
        window->show();
        QCoreApplication::processEvents();
        expectChinese(*window, row.name);
    }
    EXPECT_GT(menus, 20);
}

TEST_F(ChineseWindows, TheSystemsDialogsSayNoneEither)
{
    test::EveryWindow every;
    const std::unique_ptr<QWidget> below = every.windows().front().make();
    below->setWindowModality(Qt::ApplicationModal);
    show(*below);
    ScriptedPrintService printers;
    const PrintServiceInUse printersInUse(printers);
    QTemporaryDir folder;
    QDir(folder.path()).mkdir("下级");
    const std::string present = folder.filePath("旧表.ss7").toStdString();
    QFile(QString::fromStdString(present)).open(QIODevice::WriteOnly);
    FileDialogSettings settings;
    settings.filter = "报表文件(*.ss7)|*.ss7";
    settings.folder = folder.path().toStdString();

    expectChineseWhenOpen("fileDialog");
    QtFileDialog().chooseToOpen(settings);
    expectChineseWhenOpen("fileDialog");
    QtFileDialog().chooseToSave(settings);
    expectChineseWhenOpen("colourDialog");
    QtColourDialog().choose(0);
    expectChineseWhenOpen("fontDialog");
    QtFontDialog().choose({});
    expectChineseWhenOpen("printerSetupDialog");
    QtPrinterSetupDialog().choose({});
    expectChineseWhenOpen("messageBox");
    QtDialogs().message(Icon::information, "账套", "完成");
    expectChineseWhenOpen("messageBox");
    QtDialogs().question("账套", "继续吗?");

    settings.fileName = present; // asks before it is replaced
    settings.flags = FileDialogSettings::overwritePrompt;
    whenModal("fileDialog", [this](QWidget& dialog) {
        expectChineseWhenOpen("");
        auto* const name = dialog.findChild<QLineEdit*>("fileNameEdit");
        name->setFocus();
        QTest::keyClick(name, Qt::Key_Return);
        dialog.close();
    });
    QtFileDialog().chooseToSave(settings);
    EXPECT_GT(menus, 3);
}

TEST_F(ChineseWindows, AHostKeepsItsLanguageBesideThem)
{
    struct HostWindow : QWidget {
        int changes = 0; ///< of the language, as its windows heard
        void changeEvent(QEvent* event) override { changes += event->type() == QEvent::LanguageChange; }
    } host;
    host.show();
    const auto copy = [] { return QCoreApplication::translate("QLineEdit", "&Copy"); };
    QStringList heard;
    QTimer timer;
    QObject::connect(&timer, &QTimer::timeout, [&] { heard << copy(); });
    test::EveryWindow every;
    const std::unique_ptr<QWidget> ours = every.windows().front().make();
    auto& dialog = dynamic_cast<QDialog&>(*ours);
    QTimer::singleShot(50, &dialog, [&] {
        EXPECT_TRUE(contextMenuOf(*dialog.findChild<QScrollBar*>()).contains("滚动到此处"));
        dialog.close();
    });
    timer.start(5);
    dialog.exec();
    heard << copy(); // behind the call that opened our window
    EXPECT_GT(heard.size(), 3);
    heard.removeDuplicates();
    EXPECT_EQ(heard, QStringList("&Copy"));
    EXPECT_EQ(host.changes, 0);
}

} // namespace
} // namespace selfreport
