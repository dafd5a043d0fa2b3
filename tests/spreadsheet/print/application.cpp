#include <QApplication>

#include <gtest/gtest.h>

namespace {

/// One application object for all tests of this program: fonts and pictures need it.
class Application : public testing::Environment {
public:
    void SetUp() override
    {
        if (!qEnvironmentVariableIsSet("QT_QPA_PLATFORM"))
            qputenv("QT_QPA_PLATFORM", "offscreen");
        if (!qApp)
            m_application = new QApplication(m_count, m_arguments);
    }
    void TearDown() override { delete m_application; }

private:
    char m_name[12] = "print_tests";
    char* m_arguments[2] = {m_name, nullptr};
    int m_count = 1;
    QApplication* m_application = nullptr;
};

const auto* const application = testing::AddGlobalTestEnvironment(new Application);

} // namespace
