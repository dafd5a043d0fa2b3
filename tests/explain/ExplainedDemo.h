#pragma once
#include "demo/demo_reports.h"
#include "demo/ledger/demo_ledger.h"
#include "platform/database/Connection.h"
#include "platform/database/sqlite/sqlite_provider.h"
#include "tests/own_files.h"

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>

namespace selfreport::test {

/// How many of what is drawn at random are tried: more by hand, by a variable of the environment.
inline std::size_t manyBy(const char* variable, std::size_t usual)
{
    const char* const wanted = std::getenv(variable);
    return wanted ? static_cast<std::size_t>(std::atoll(wanted)) : usual;
}

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
    /// Another company, without reports.
    explicit ExplainedDemo(const DemoLedgerOptions& options)
        : m_file(freshFile())
    {
        createDemoLedger(file(), options);
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
