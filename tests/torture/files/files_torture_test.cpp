// Reports, exports and conversions whose n-th call to the file system fails, or is the last before the
// process is killed, for every n.
#include "tests/host/ProgramRun.h"
#include "tests/sanitized.h"

#include <algorithm>
#include <gmock/gmock.h>
#include <map>
#include <string_view>
#include <vector>

namespace {

using Files = std::map<std::string, std::string>; ///< contents by name

/// One command that writes files into a folder of its own.
struct Command {
    std::string what;
    std::string arguments; ///< "OUT/" stands for the folder, "IN/" for that of what is read
    std::vector<std::string> written;
};

std::string replaced(std::string text, std::string_view mark, const std::string& by)
{
    for (auto at = text.find(mark); at != std::string::npos; at = text.find(mark, at + by.size()))
        text.replace(at, mark.size(), by);
    return text;
}

class FilesTorture : public ::testing::TestWithParam<Command> {
protected:
    static void SetUpTestSuite()
    {
        s_given = std::make_unique<TestFolder>();
        ASSERT_EQ(ProgramRun("demo " + given("demo.db")).exitCode, 0);
        ASSERT_EQ(ProgramRun("run 1 --db " + given("demo.db") + " --csv " + given("in.csv")).exitCode, 0);
        ASSERT_EQ(ProgramRun("convert " + given("in.csv") + " " + given("in.ss7")).exitCode, 0);
    }
    static void TearDownTestSuite() { s_given.reset(); }
    void SetUp() override
    {
        if (isSanitized)
            GTEST_SKIP() << "nothing may be loaded before the sanitizer's own library";
    }

    /// What the commands read stands outside the folder that they write into.
    static std::string given(const std::string& name) { return s_given->file(name); }

    static int run(const TestFolder& folder, int place, const char* way, const std::string& count = {})
    {
        const std::string shim = "LD_PRELOAD=" FILES_SHIM " FILES_FOLDER=" + folder.file("") +
                                 " FILES_PLACE=" + std::to_string(place) + " FILES_WAY=" + way +
                                 (count.empty() ? "" : " FILES_COUNT=" + count) + " ";
        return ProgramRun(commandIn(folder), shim).exitCode;
    }
    static std::string commandIn(const TestFolder& folder)
    {
        return replaced(replaced(GetParam().arguments, "OUT/", folder.file("")), "IN/", given(""));
    }

    static void putOld(const TestFolder& folder)
    {
        for (const std::string& name : GetParam().written)
            std::ofstream(folder.file(name)) << "old " << name;
    }
    static bool isOld(const TestFolder& folder, const std::string& name)
    {
        return contentOf(folder.file(name)) == "old " + name;
    }
    /// PDF and .xlsx files tell when they were made: only their size and their last bytes are compared.
    static bool isNew(const TestFolder& folder, const std::string& name, const Files& whole)
    {
        const std::string found = contentOf(folder.file(name));
        const std::string& expected = whole.at(name);
        if (name.ends_with(".pdf"))
            return found.size() == expected.size() && found.ends_with("%%EOF\n");
        return name.ends_with(".xlsx") ? found.size() == expected.size() : found == expected;
    }
    static int oldOnes(const TestFolder& folder)
    {
        return static_cast<int>(std::ranges::count_if(
            GetParam().written, [&](const std::string& name) { return isOld(folder, name); }));
    }
    static int newOnes(const TestFolder& folder, const Files& whole)
    {
        return static_cast<int>(std::ranges::count_if(
            GetParam().written, [&](const std::string& name) { return isNew(folder, name, whole); }));
    }
    static std::string namesOf()
    {
        const std::set<std::string> sorted(GetParam().written.begin(), GetParam().written.end());
        std::string names;
        for (const std::string& name : sorted)
            names += (names.empty() ? "" : " ") + name;
        return names;
    }

    /// The files as a run without trouble writes them, and how many places it passes.
    static std::pair<Files, int> undisturbed()
    {
        const TestFolder folder, outside;
        putOld(folder);
        EXPECT_EQ(run(folder, 0, "fail", outside.file("count")), 0);
        Files files;
        for (const std::string& name : GetParam().written) {
            files[name] = contentOf(folder.file(name));
            EXPECT_FALSE(isOld(folder, name));
        }
        EXPECT_EQ(folder.content(), namesOf());
        return {files, std::atoi(contentOf(outside.file("count")).c_str())};
    }

private:
    inline static std::unique_ptr<TestFolder> s_given;
};

} // namespace

TEST_P(FilesTorture, AFailingCallLeavesAllOldOrAllNew)
{
    const auto [whole, places] = undisturbed();
    const int all = static_cast<int>(GetParam().written.size());
    ASSERT_GE(places, 5);
    int refused = 0;
    for (int place = 1; place <= places; ++place) {
        const TestFolder folder;
        putOld(folder);
        const int exitCode = run(folder, place, "fail");
        refused += exitCode;
        ASSERT_THAT(exitCode, testing::AnyOf(0, 1)) << place;
        EXPECT_EQ(exitCode == 0 ? newOnes(folder, whole) : oldOnes(folder), all) << place;
        EXPECT_EQ(folder.content(), namesOf()) << place;
    }
    EXPECT_GE(refused, 4) << "of " << places; // opening, writing, flushing and renaming at least
}

/// At one place, between the two renames of a pair, they part until the next run.
TEST_P(FilesTorture, AKillLeavesWholeFilesAndTheNextRunCleansUp)
{
    const auto [whole, places] = undisturbed();
    const int all = static_cast<int>(GetParam().written.size());
    int parted = 0;
    for (int place = 1; place <= places; ++place) {
        const TestFolder folder;
        putOld(folder);
        EXPECT_NE(run(folder, place, "kill"), 0) << place;
        const int former = oldOnes(folder);
        const int fresh = newOnes(folder, whole);
        EXPECT_EQ(former + fresh, all) << place;
        if (former > 0 && fresh > 0) { // any run into that folder finishes it
            EXPECT_EQ(ProgramRun("convert " + given("in.csv") + " " + folder.file("other.csv")).exitCode, 0);
            EXPECT_EQ(newOnes(folder, whole), all) << place;
            std::filesystem::remove(folder.file("other.csv"));
            EXPECT_EQ(folder.content(), namesOf()) << place;
        }
        parted += former > 0 && fresh > 0 ? 1 : 0;
        EXPECT_EQ(ProgramRun(commandIn(folder)).exitCode, 0) << place;
        EXPECT_EQ(newOnes(folder, whole), all) << place;
        EXPECT_EQ(folder.content(), namesOf()) << place;
    }
    EXPECT_LE(parted, all - 1) << "of " << places;
}

INSTANTIATE_TEST_SUITE_P(Commands, FilesTorture,
                         ::testing::Values(Command{"report",
                                                   "run 1 --db IN/demo.db --pdf OUT/a.pdf --csv OUT/a.csv",
                                                   {"a.pdf", "a.csv"}},
                                           Command{"ss7", "convert IN/in.csv OUT/a.ss7", {"a.ss7"}},
                                           Command{"xls", "convert IN/in.ss7 OUT/a.xls", {"a.xls"}},
                                           Command{"xlsx", "convert IN/in.ss7 OUT/a.xlsx", {"a.xlsx"}},
                                           Command{"csv", "convert IN/in.ss7 OUT/a.csv", {"a.csv"}},
                                           Command{"html", "convert IN/in.ss7 OUT/a.html", {"a.html"}}),
                         [](const auto& tested) { return tested.param.what; });
