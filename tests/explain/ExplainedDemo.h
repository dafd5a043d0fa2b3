#pragma once
#include "demo/demo_reports.h"
#include "demo/ledger/demo_ledger.h"
#include "platform/database/Connection.h"
#include "platform/database/sqlite/sqlite_provider.h"
#include "tests/own_files.h"

#include <filesystem>
#include <fstream>
#include <string>

namespace selfreport::test {

/// A smaller demo company with its reports in a file of the test's own. It is made once; each test has a
/// copy.
class ExplainedDemo {
public:
    ExplainedDemo()
        : m_file(freshFile())
    {
        static const Template made;
        std::filesystem::copy_file(made.file, m_file, std::filesystem::copy_options::overwrite_existing);
    }
    ~ExplainedDemo()
    {
        closeIdleSessions();
        std::filesystem::remove(m_file);
    }
    ExplainedDemo(const ExplainedDemo&) = delete;
    ExplainedDemo& operator=(const ExplainedDemo&) = delete;

    std::string connectionString() const { return fileConnectionString(m_file.string()); }
    std::string file() const { return m_file.string(); }
    std::unique_ptr<Connection> open() const { return openConnection(connectionString()); }

private:
    static std::filesystem::path freshFile()
    {
        static int count = 0;
        return ownFile("explained-" + std::to_string(++count) + ".db");
    }
    struct Template {
        Template()
            : file(freshFile())
        {
            createDemoLedger(file.string(),
                             {.customers = 12, .suppliers = 6, .goods = 10, .salesPerPeriod = 60});
            storeDemoReports(fileConnectionString(file.string()));
            closeIdleSessions();
        }
        ~Template() { std::filesystem::remove(file); }
        std::filesystem::path file;
    };
    std::filesystem::path m_file;
};

} // namespace selfreport::test
