#include "spreadsheet/values/chinese_order.h"

#include "spreadsheet/values/folding.h"

#include <algorithm>
#include <gtest/gtest.h>
#include <string>
#include <vector>

using namespace spreadsheet;

TEST(ChineseOrder, PlacesOfTexts)
{
    const std::vector<std::string> ascending{
        "",     " x",   "-",    "_",    "0",        "10",   "2",  "a",    "A1",   "ab",   "à",
        "e",    "é",    "ê",    "ea",   "f",        "Œ",    "阿", "安徽", "北京", "长沙", "重庆",
        "财务", "现金", "银行", "应收", "中国银行", "张三", "亍", "々",   "㐀",   "龥"};
    // By pinyin: 阿 a, 安 an, 北 bei, 财 cai, 长 chang, 现 xian, 银 yin, 应 ying, 张 zhang, 中 zhong, 重
    // zhong.
    std::vector<std::string> sorted = ascending;
    std::ranges::sort(sorted, [](const auto& a, const auto& b) { return compareTexts(a, b) < 0; });
    const std::vector<std::string> byRule{"",     " x",   "-",        "_",    "0",    "10",   "2",    "a",
                                          "à",    "A1",   "ab",       "e",    "é",    "ê",    "ea",   "f",
                                          "Œ",    "阿",   "安徽",     "北京", "财务", "长沙", "现金", "银行",
                                          "应收", "张三", "中国银行", "重庆", "亍",   "㐀",   "龥",   "々"};
    EXPECT_EQ(sorted, byRule);
}

/// Neither an order between texts that "=" takes for one, nor none between others.
TEST(ChineseOrder, IsAnOrderOfWhatDiffers)
{
    const std::vector<std::string> texts{"",
                                         "a",
                                         "A",
                                         "ａ",
                                         "a ",
                                         "é",
                                         "É",
                                         "e\u0301",
                                         "ﾞ",
                                         "゛",
                                         "カ",
                                         "ｶ",
                                         "ß",
                                         "ss",
                                         "现金",
                                         "现金 ",
                                         "￥",
                                         "¥",
                                         "\xFF",
                                         "ÿ",
                                         "一",
                                         "丂",
                                         "\xF0\x9F\x98\x80",
                                         "1",
                                         "１",
                                         "-1",
                                         "－1"};
    for (const std::string& a : texts) {
        for (const std::string& b : texts) {
            EXPECT_EQ(compareTexts(a, b) == 0, foldedText(a) == foldedText(b)) << a << "|" << b;
            EXPECT_EQ(compareTexts(a, b), -compareTexts(b, a)) << a << "|" << b;
            for (const std::string& c : texts) {
                if (compareTexts(a, b) <= 0 && compareTexts(b, c) <= 0) {
                    EXPECT_LE(compareTexts(a, c), 0) << a << "|" << b << "|" << c;
                }
            }
        }
    }
}
