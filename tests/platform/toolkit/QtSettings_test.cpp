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
    std::ofstream(file) << "[ParamValue]\nValue1=2027/1/31\n";
    EXPECT_EQ(settings.value("ParamValue", "Value1"), "2027/1/31");
}

TEST(QtSettings, TakesTextsWholeAndKeysInAnyCase)
{
    const QTemporaryDir folder;
    QSettings::setPath(QSettings::IniFormat, QSettings::UserScope, folder.path());
    const std::string file = folder.filePath("QnCW.ini").toStdString();
    const struct {
        const char *line, *value;
    } cases[] = {
        {"Value1=2027/1/31, 晚", "2027/1/31, 晚"},
        {"VALUE1 = 甲  乙 ", "甲  乙"},
        {"value1=a;b=c", "a;b=c"},
        {R"(Value1="a, \"b\" \\ c")", R"(a, "b" \ c)"},
        {R"(Value1=\x7532\x516c\x53f8)", "甲公司"},
        {R"(Value1=" 两端 ")", " 两端 "},
        {"Value1=", ""},
        {"Value11=别的", ""},
        {";Value1=注释", ""},
    };
    const QtSettings settings;
    for (const auto& c : cases) {
        std::ofstream(file) << "[paramvalue]\n" << c.line << "\r\n[Other]\nValue1=不对\n";
        EXPECT_EQ(settings.value("ParamValue", "Value1"), c.value) << c.line;
    }
}

TEST(QtSettings, ReadsWhatItWroteOverAKeyInAnotherCase)
{
    const QTemporaryDir folder;
    QSettings::setPath(QSettings::IniFormat, QSettings::UserScope, folder.path());
    std::ofstream(folder.filePath("QnCW.ini").toStdString()) << "[ParamValue]\nvalue1=旧\nVALUE1=更旧\n";
    QtSettings settings;
    for (const char* const text :
         {"甲公司, '分' & \"部\"", " 空格 ", "a;b,c", "\\x41", "一行\n二行", "%40", "𠀀", ""}) {
        settings.write("ParamValue", "Value1", text);
        EXPECT_EQ(settings.value("ParamValue", "Value1"), text);
    }
}

} // namespace
} // namespace selfreport
