#include "formula/formula_text.h"

#include <gtest/gtest.h>

namespace selfreport {
namespace {

TEST(FormulaText, KeepsEveryBlankAndEveryCharacterOfTheBoxes)
{
    EXPECT_EQ(acctFormula({"1001", "1", "0", "2009", "1", "3"}),
              R"(Acct("1001" ,"1" , "0", "2009","1","3"))");
    EXPECT_EQ(acctFormula({}), R"(Acct("" ,"" , "", "","",""))");
    EXPECT_EQ(acctFormula({" 10**|部门|01:05 ", "a\"b", "'", ",", ")", "|"}),
              R"=(Acct(" 10**|部门|01:05 " ,"a"b" , "'", ",",")","|"))=");
    EXPECT_EQ(refFormula({"利润表", "B12", ""}), R"(REF_F("利润表" ,"B12" , ""))");
}

} // namespace
} // namespace selfreport
