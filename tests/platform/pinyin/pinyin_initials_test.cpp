#include "platform/pinyin/pinyin_initials.h"

#include <gtest/gtest.h>
#include <QStringList>

namespace selfreport {
namespace {

TEST(PinyinInitials, AreWhatAnAccountantTypes)
{
    const struct {
        const char *name, *typed;
    } cases[] = {
        {"库存现金", "kcxj"},
        {"银行存款", "yhck"}, // 行 is read hang here, though xing is what it is alone
        {"执行费", "zxf"},
        {"长期借款", "cqjk"},
        {"应交税费-未交增值税", "yjsfwjzzs"},
        {"会计差错调整", "kjcctz"},
        {"A产品 (Ｂ型)2号", "acpbx2h"}, // full-width letters are letters
        {"重庆分公司", "cqfgs"},
        {"単", ""}, // not in every table: no fault
        {"", ""},
    };
    for (const auto& [name, typed] : cases) {
        const QStringList spellings = pinyinInitials(QString::fromUtf8(name)).split('\n');
        EXPECT_TRUE(*typed == '\0' || spellings.contains(typed))
            << name << ": " << spellings[0].toStdString();
    }
}

TEST(PinyinInitials, ManyReadingsStayBounded)
{
    const QString many = QString("行").repeated(200);
    const QStringList spellings = pinyinInitials(many).split('\n');
    EXPECT_EQ(spellings.size(), 16);
    EXPECT_EQ(spellings[0].size(), 200);
}

} // namespace
} // namespace selfreport
