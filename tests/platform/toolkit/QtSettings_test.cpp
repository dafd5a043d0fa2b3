#include "platform/toolkit/QtSettings.h"

#include <fstream>
#include <gtest/gtest.h>
#include <QSettings>
#include <QTemporaryDir>

namespace selfreport {
namespace {

TEST(QtSettings, ReadsTheUsersFileAnewForEveryValue)
{
    const QTemporaryDir folder;
    QSettings::setPath(QSettings::IniFormat, QSettings::UserScope, folder.path());
    const std::string file = folder.filePath("QnCW.ini").toStdString();
    const QtSettings settings;
    EXPECT_EQ(settings.value("ParamValue", "Value1"), ""); // no file yet
    std::ofstream(file) << "[ParamValue]\nValue1=2026/12/31\nValue2=\"甲公司 '分'\"\nValue3=王,李\nValue4=\n"
                           "[Other]\nValue1=不对\n";
    EXPECT_EQ(settings.value("ParamValue", "Value1"), "2026/12/31");
    EXPECT_EQ(settings.value("ParamValue", "Value2"), "甲公司 '分'");
    EXPECT_EQ(settings.value("ParamValue", "Value3"), "王,李");
    EXPECT_EQ(settings.value("ParamValue", "Value4"), "");
    EXPECT_EQ(settings.value("ParamValue", "Value5"), "");
    std::ofstream(file) << "[ParamValue]\nValue1=2027/1/31, 晚\n";
    EXPECT_EQ(settings.value("ParamValue", "Value1"), "2027/1/31,晚");
}

} // namespace
} // namespace selfreport
