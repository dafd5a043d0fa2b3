// Two programs that save the same report and new ones, on whatever database the tests run.
#include "access/DatabaseAccess.h"
#include "reports/ReportStore.h"
#include "tests/torture/SavedReports.h"

#include <chrono>
#include <cstdlib>
#include <gtest/gtest.h>
#include <string_view>
#include <sys/wait.h>
#include <unistd.h>

namespace selfreport::torture {
namespace {

using Clock = std::chrono::steady_clock;

struct Counts {
    int counted = 0;  ///< steps on the common report
    int met = 0;      ///< steps that were not taken, as the other one had saved meanwhile
    int inserted = 0; ///< reports of its own
    int failed = 0;
};

/// Counts on in the first cell of report 1. False if the other program was quicker.
bool countOn(ReportStore& store)
{
    spreadsheet::Workbook workbook;
    RememberedReport remembered;
    const std::string name = store.load(1, workbook, remembered);
    const std::string text = workbook.sheet(1).displayText({1, 1});
    workbook.sheet(1).setText({1, 1}, std::to_string(text == "旧" ? 1 : std::stoi(text) + 1));
    return !store.replace(name, workbook, remembered);
}

Counts worked(const std::string& user, Clock::time_point end)
{
    Counts counts;
    DatabaseAccess database(gConnString);
    ReportStore store(database, user);
    while (Clock::now() < end) {
        try {
            ++(countOn(store) ? counts.counted : counts.met);
            RememberedReport fresh;
            store.insert("新表", spreadsheet::Workbook(), fresh, {});
            ++counts.inserted;
        } catch (const std::exception& error) {
            std::fprintf(stderr, "%s: %s\n", user.c_str(), error.what());
            ++counts.failed;
        }
    }
    return counts;
}

/// A program of its own, which does its work in a copy of this one.
class Program {
public:
    Program(const std::string& user, Clock::time_point end)
    {
        int ends[2]{};
        EXPECT_EQ(::pipe(ends), 0);
        m_process = ::fork();
        if (m_process == 0) {
            const Counts counts = worked(user, end);
            ::_exit(::write(ends[1], &counts, sizeof counts) == sizeof counts ? 0 : 1);
        }
        ::close(ends[1]);
        m_answer = ends[0];
    }
    Counts counts() const
    {
        Counts counts;
        EXPECT_EQ(::read(m_answer, &counts, sizeof counts), ssize_t{sizeof counts});
        ::close(m_answer);
        ::waitpid(m_process, nullptr, 0);
        return counts;
    }

private:
    pid_t m_process = 0;
    int m_answer = -1;
};

/// For longer: SELFREPORT_TEST_SECONDS=60.
TEST(TwoPrograms, SaveTheSameReportAndNewOnes)
{
    const char* const seconds = std::getenv("SELFREPORT_TEST_SECONDS");
    const SavedReports reports;
    closeIdleSessions(); // the copies must not share a session
    const auto end = Clock::now() + std::chrono::seconds(seconds ? std::atoi(seconds) : 4);
    const Program first("wang", end), second("li", end);
    const Counts one = first.counts(), other = second.counts();
    EXPECT_EQ(one.failed + other.failed, 0);
    EXPECT_GT(one.inserted, 0);
    EXPECT_GT(other.inserted, 0);
    EXPECT_GT(one.met + other.met, 0) << "they never met";
    const std::string stored = reports.stored();
    EXPECT_TRUE(stored.starts_with("1甲表:" + std::to_string(one.counted + other.counted) + " "))
        << stored.substr(0, 100);
    for (const char* count : {"select count(distinct noid) as n from tblCWSelfReport",
                              "select count(*) as n from tblCWSelfReport",
                              "select count(distinct fitemid) as n from tblsystemprivillenge where fnumber "
                              "like 'RSelf%'"})
        EXPECT_EQ(reports.ledger().query(count).integer(0, "n"), 1 + one.inserted + other.inserted) << count;
}

} // namespace
} // namespace selfreport::torture
