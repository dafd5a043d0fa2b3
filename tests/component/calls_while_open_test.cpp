// Calls of the host while windows are open: from timers, out of every state.
#include "component/clsSelfReport.h"
#include "component/windows.h"
#include "platform/list_grid/ListGrid.h"
#include "platform/toolkit/QtDialogs.h"
#include "state/report_procedures.h"
#include "tests/windows/designer/DesignerTest.h"

#include <QLabel>
#include <QPushButton>

#include <tuple>

namespace selfreport {
namespace {

auto everything()
{
    return std::tuple(gConnString, gTitle, gLoginUserId, gAppPath, gReportId, gEditFlag, gRunMode, gFromList,
                      gHeaderText, gFooterText, gPreviewZoomIndex, gCellRow, gCellCol, gActiveSheet);
}

struct HostCall {
    const char* name;
    void (*call)(clsSelfReport& host);
    const char* shows; ///< the window that it opens where it can
};

constexpr HostCall hostCalls[] = {
    {"init", [](clsSelfReport& host) { host.init("Data Source=other", "别的", "li", "/other"); }, nullptr},
    {"editForm", [](clsSelfReport& host) { host.editForm(0); }, "frmEditor"},
    {"cwSelfReport", [](clsSelfReport& host) { host.cwSelfReport(); }, "frmSelfReportMain"},
    {"cwSelfReportExe", [](clsSelfReport& host) { host.cwSelfReportExe(3); }, "frmEditor"},
};

class CallsWhileOpen : public test::DesignerTest {
protected:
    CallsWhileOpen()
    {
        store(1, "一月");
        store(3, "三月");
        gFromList = 1;
    }
    void store(int id, const char* name)
    {
        spreadsheet::Workbook report;
        report.sheet(1).setText({1, 1}, name);
        ledger.addReport(id, name, spreadsheet::saveContent(report));
    }
    std::string storedText(int id)
    {
        spreadsheet::Workbook stored;
        std::string name;
        const auto former = std::exchange(gReportId, id);
        EXPECT_TRUE(loadReport(sharedContext, name, stored));
        gReportId = former;
        return stored.sheet(1).displayText({1, 1});
    }
    /// Makes every call, each by another instance. Those that open `room` do, whichever it is; the rest is
    /// refused. None changes what the windows below work on.
    void callAll(const std::string& room)
    {
        ++states;
        for (const auto& [name, call, shows] : hostCalls) {
            const bool isShown = shows && room == shows;
            if (isShown)
                whenModal(shows, [](QWidget& opened) { opened.close(); });
            const auto before = everything();
            clsSelfReport other;
            call(other);
            EXPECT_EQ(other.lastError().empty(), isShown) << name << ": " << other.lastError();
            EXPECT_EQ(everything(), before) << name;
        }
    }
    void inWindow(const char* name, const std::function<void(QWidget&)>& act)
    {
        whenModal(name, [act](QWidget& opened) {
            act(opened);
            opened.close();
        });
    }
    static void click(QWidget& in, const char* button) { control<QPushButton>(in, button).click(); }
    static void choose(QWidget& in, const char* entry) { control<QAction>(in, entry).trigger(); }

    clsSelfReport host;
    int states = 0;
};

TEST_F(CallsWhileOpen, ShowAWindowOrLeaveAnErrorAndChangeNothing)
{
    QtDialogs real;
    const DialogsInUse boxes(real);
    // The list
    inWindow("frmSelfReportMain", [this](QWidget&) { callAll("frmEditor"); });
    host.cwSelfReport();
    // … in the middle of deleting
    inWindow("frmSelfReportMain", [this](QWidget& list) {
        whenModal("messageBox", [this](QWidget& box) {
            callAll("none");
            QTest::keyClick(&box, Qt::Key_Escape);
        });
        click(list, "cmd_2");
    });
    host.cwSelfReport();
    // … below a designer
    inWindow("frmSelfReportMain", [this](QWidget& list) {
        inWindow("frmEditor", [this](QWidget&) { callAll("none"); });
        click(list, "cmd_1");
    });
    host.cwSelfReport();
    // The designer, for design and for use
    gReportId = gEditFlag = 1;
    inWindow("frmEditor", [this](QWidget&) { callAll("frmSelfReportMain"); });
    host.editForm(0);
    inWindow("frmEditor", [this](QWidget&) { callAll("frmSelfReportMain"); });
    host.cwSelfReportExe(1);
    gRunMode = false;
    // … below a box, a dialog, the preview; beside the find window
    const std::pair<const char*, const char*> dialogs[] = {
        {"MenuFileSave", "messageBox"}, {"MenuDataType", "frmDataType"}, {"MenuPreview", "frmPreview"}};
    for (const auto& [command, dialog] : dialogs) {
        inWindow("frmEditor", [&, this](QWidget& designer) {
            control<QLineEdit>(designer, "txtReportName").setText(" ");
            inWindow(dialog, [this](QWidget&) { callAll("none"); });
            choose(designer, command);
            control<QLineEdit>(designer, "txtReportName").setText("一月");
        });
        host.editForm(0);
    }
    inWindow("frmEditor", [this](QWidget& designer) {
        choose(designer, "MenuFind");
        callAll("frmSelfReportMain");
    });
    host.editForm(0);
    // … while it opens, and says that its report is gone
    gReportId = 9;
    whenModal("messageBox", [this](QWidget& box) {
        callAll("none");
        box.close();
        whenModal("frmEditor", [](QWidget& designer) { designer.close(); });
    });
    host.editForm(0);
    EXPECT_EQ(states, 10);
}

TEST_F(CallsWhileOpen, WhileTheUserWaits)
{
    ledger.run("alter table tblAccount rename to tblAccountKept");
    ledger.run("create view tblAccount as select * from tblAccountKept where (with recursive n(i) as "
               "(select 1 union all select i+1 from n where i<20000000000) select count(*) from n)>0");
    const std::string pairs = "SUMPRODUCT((ROW(1:3000)>TRANSPOSE(ROW(1:300)))*1)"; // a while each
    for (const auto& [formula, cells] : {std::pair(std::string(test::closingBalance), 1), {pairs, 500}}) {
        inWindow("frmEditor", [this, &formula, cells](QWidget& designer) {
            QTimer waiting;
            QObject::connect(&waiting, &QTimer::timeout, [this, &waiting] {
                QWidget* const dialog = waitingDialog();
                if (!dialog)
                    return;
                waiting.stop();
                callAll("none");
                clsSelfReport().init("", "", "", ""); // and ends
                control<QPushButton>(*dialog, "cmdCancel").click();
            });
            waiting.start(10);
            auto& sheet = dynamic_cast<frmEditor&>(designer).fps1().cells().sheet();
            for (int row = 1; row <= cells; ++row)
                spreadsheet::demand(sheet.setFormula({1, row}, formula));
            choose(designer, "MenuRecalculate");
        });
        host.editForm(0);
    }
    EXPECT_EQ(states, 2);
}

/// Makes all calls when the designer is about to be gone.
class WhileHiding : public QObject {
public:
    explicit WhileHiding(std::function<void()> act)
        : m_act(std::move(act))
    {
        qApp->installEventFilter(this);
    }

protected:
    bool eventFilter(QObject* watched, QEvent* event) override
    {
        if (event->type() == QEvent::Hide && watched->objectName() == "frmEditor")
            m_act();
        return false;
    }

private:
    std::function<void()> m_act;
};

TEST_F(CallsWhileOpen, FromWithinClosing)
{
    const WhileHiding hiding([this] { callAll("none"); });
    inWindow("frmSelfReportMain", [](QWidget& list) {
        whenModal("frmEditor", [](QWidget& designer) { designer.close(); });
        click(list, "cmd_1");
    });
    host.cwSelfReport();
    whenModal("frmEditor", [](QWidget& designer) { designer.close(); });
    host.editForm(0);
    EXPECT_EQ(states, 2);
}

TEST_F(CallsWhileOpen, TheNextSaveGoesIntoTheReportThatIsOpen)
{
    inWindow("frmSelfReportMain", [this](QWidget& list) {
        inWindow("frmEditor", [](QWidget& designer) {
            auto& editor = dynamic_cast<frmEditor&>(designer);
            EXPECT_EQ(editor.fps1().cells().text(1, 1), "一月");
            clsSelfReport other;
            other.cwSelfReportExe(3);
            EXPECT_NE(other.lastError(), "");
            other.cwSelfReport();
            EXPECT_NE(other.lastError(), "");
            other.init("x", "x", "x", "x");
            editor.fps1().cells().setText(1, 1, "改过");
            choose(designer, "MenuFileSave");
        });
        control<ListGrid>(list, "vsf1").setRow(1);
        click(list, "cmd_1");
    });
    host.cwSelfReport();
    EXPECT_EQ(storedText(1), "改过");
    EXPECT_EQ(storedText(3), "三月");
}

TEST_F(CallsWhileOpen, TheListDesignsAfterAReportWasShownOverIt)
{
    inWindow("frmSelfReportMain", [this](QWidget& list) {
        inWindow("frmEditor", [](QWidget& designer) {
            EXPECT_EQ(control<QLabel>(designer, "lblStatusMode").text(), "使用");
        });
        clsSelfReport other;
        other.cwSelfReportExe(3);
        inWindow("frmEditor", [](QWidget& designer) {
            EXPECT_EQ(control<QLabel>(designer, "lblStatusMode").text(), "设计");
            EXPECT_EQ(control<QLineEdit>(designer, "txtReportName").text(), "一月");
        });
        control<ListGrid>(list, "vsf1").setRow(1);
        click(list, "cmd_1");
    });
    host.cwSelfReport();
}

TEST_F(CallsWhileOpen, TheListOverADesignerOpensNoSecondOne)
{
    gReportId = gEditFlag = 1;
    inWindow("frmEditor", [this](QWidget& designer) {
        inWindow("frmSelfReportMain", [this](QWidget& list) {
            auto& rows = control<ListGrid>(list, "vsf1");
            rows.setRow(2);
            for (const char* button : {"cmd_0", "cmd_1", "cmdXPOK"}) {
                ledger.boxes.said.clear();
                click(list, button);
                EXPECT_EQ(ledger.boxes.said.size(), 1u) << button;
                EXPECT_EQ(std::tuple(gReportId, gEditFlag), std::tuple(1, 1)) << button;
            }
            ledger.boxes.answer = true;
            click(list, "cmd_2");
        });
        clsSelfReport other;
        other.cwSelfReport();
        dynamic_cast<frmEditor&>(designer).fps1().cells().setText(1, 1, "改过");
        choose(designer, "MenuFileSave");
    });
    host.editForm(0);
    EXPECT_EQ(storedText(1), "改过");
    EXPECT_EQ(ledger.query("select noid from tblCWSelfReport").rowCount(), 1u) << "3 was deleted";
}

TEST_F(CallsWhileOpen, AnInstanceMayEndDuringItsOwnCall)
{
    for (const auto& [name, call, shows] : hostCalls) {
        if (!shows)
            continue;
        auto own = std::make_unique<clsSelfReport>();
        clsSelfReport& called = *own;
        inWindow(shows, [&own](QWidget&) {
            clsSelfReport().init("", "", "", "");
            own.reset();
        });
        call(called);
        EXPECT_FALSE(isWindowOpen()) << name;
    }
}

} // namespace
} // namespace selfreport
