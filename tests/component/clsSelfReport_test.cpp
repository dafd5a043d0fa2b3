#include "component/clsSelfReport.h"
#include "platform/database/sqlite/SqliteDatabase.h"
#include "state/shared_state.h"
#include "tests/platform/WindowTest.h"

#include <filesystem>
#include <gtest/gtest.h>
#include <tuple>

using namespace selfreport;

namespace {

/// What the window operations hand on: run mode, edit flag, report, list flag, zoom.
auto handedOn()
{
    return std::tuple(gRunMode, gEditFlag, gReportId, gFromList, gPreviewZoomIndex);
}

using HandedOn = decltype(handedOn());

/// The state of a library that was just loaded.
void startAfresh()
{
    gConnString.clear();
    gRunMode = false;
    gEditFlag = gFromList = gPreviewZoomIndex = 0;
    gReportId = 0;
}

/// Every window is closed as soon as it is open.
struct ClsSelfReport : test::WindowTest {
    ClsSelfReport()
    {
        QObject::connect(&closer, &QTimer::timeout, [] {
            if (QWidget* const window = QApplication::activeModalWidget())
                window->close();
        });
        closer.start(5);
    }
    QTimer closer;
};

} // namespace

TEST_F(ClsSelfReport, OperationsHandOnWhatEarlierOnesLeft)
{
    startAfresh();
    clsSelfReport object;
    const std::int16_t type = 3;
    const struct {
        const char* what;
        bool (*call)(clsSelfReport&);
        HandedOn expected;
    } steps[] = {
        {"a new report at first", [](auto& o) { return o.editForm(3); }, {false, 0, 0, 0, 0}},
        {"run", [](auto& o) { return o.cwSelfReportExe(42); }, {true, 1, 42, 0, -1}},
        {"the designer runs it again", [](auto& o) { return o.editForm(0); }, {true, 1, 42, 0, -1}},
        {"only mode and list flag change", [](auto& o) { return o.cwSelfReport(); }, {false, 1, 42, 1, -1}},
        {"the list flag stays", [](auto& o) { return o.cwSelfReportExe(-7); }, {true, 1, -7, 1, -1}},
        {"init touches none of it",
         [](auto& o) { return o.init("c", "t", "u", "/a"); },
         {true, 1, -7, 1, -1}},
    };
    for (const auto& step : steps) {
        EXPECT_FALSE(step.call(object)) << step.what;
        EXPECT_EQ(object.lastError(), "") << step.what;
        EXPECT_EQ(handedOn(), step.expected) << step.what;
    }
    EXPECT_FALSE(object.editForm(type, &type));
    EXPECT_EQ(std::tie(gConnString, gTitle, gLoginUserId, gAppPath),
              std::tuple(std::string("c"), std::string("t"), std::string("u"), std::string("/a")));
}

TEST_F(ClsSelfReport, InstancesShareOneStateAndAnyEndReleasesTheConnection)
{
    startAfresh();
    clsSelfReport first;
    first.cwSelfReportExe(5);
    const std::string file = testing::TempDir() + "released.db";
    createDatabase(file);
    gCnn = openConnection("Provider=SQLite;Data Source=" + file);
    {
        const clsSelfReport second;
        EXPECT_EQ(gReportId, 5);
    }
    EXPECT_FALSE(gCnn);
    std::filesystem::remove(file);
}
