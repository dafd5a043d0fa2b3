#include "platform/toolkit/file_filter.h"

#include <gtest/gtest.h>

namespace selfreport {
namespace {

TEST(FileFilter, ReadsBothWaysOfWriting)
{
    const struct {
        const char* filter;
        QStringList names;
        const char* suffix; // of the first
    } cases[] = {
        {"ss7 files|(*.ss7)", {"ss7 files (*.ss7)"}, "ss7"},
        {"报表文件(*.ss7)|*.ss7", {"报表文件 (*.ss7)"}, "ss7"},
        {"图(旧)|*.png; *.jpg|所有文件|*.*", {"图 (*.png *.jpg)", "所有文件 (*.*)"}, "png"},
        {"所有文件|*.*", {"所有文件 (*.*)"}, ""},
        {"归档|*.tar.gz", {"归档 (*.tar.gz)"}, "tar.gz"},
        {"没有模式", {}, ""},
        {"空|", {}, ""},
        {"", {}, ""},
    };
    for (const auto& [filter, names, suffix] : cases) {
        const QStringList read = nameFilters(QString::fromUtf8(filter));
        EXPECT_EQ(read, names) << filter;
        EXPECT_EQ(suffixOf(read.value(0)), suffix) << filter;
    }
}

} // namespace
} // namespace selfreport
