#include "fetch/formula_text.h"

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

TEST(FormulaText, CallsAreReadBackWhateverTheirBlanks)
{
    using Texts = std::array<std::string, 6>;
    for (const Texts& texts : {Texts{"1001", "1", "0", "2009", "1", "3"}, Texts{},
                               Texts{" 1|部门|01:05 ", "a\"\"b", ",", ")", "(", "'"}})
        EXPECT_EQ(acctArguments(acctFormula(texts)), texts);
    EXPECT_EQ(acctArguments(R"( = acct ( "1","2" ,"3","4","5","6" ) )"),
              (Texts{"1", "2", "3", "4", "5", "6"}));
    EXPECT_EQ(refArguments(R"(ref_f("表","B2",""))"), (std::array<std::string, 3>{"表", "B2", ""}));
    for (const char* other :
         {"", "=", "Acct()", R"(Acct("1","2","3","4","5"))", R"(Acct("1","2","3","4","5","6","7"))",
          R"(Acct("1","2","3","4","5",A1))", R"(Acct("1","2","3","4","5","6)",
          R"(Acct("1","2","3","4","5","6")+1)", R"(Acct("1" "2","3","4","5","6"))",
          R"(Acct("a"b","2","3","4","5","6"))", R"(REF_F("表","B2",""))"})
        EXPECT_FALSE(acctArguments(other)) << other;
}

TEST(FormulaText, AQuoteIsDoubledOnceAndReadOnce)
{
    const struct {
        const char* typed;
        const char* written;
        const char* read;
    } texts[] = {
        {"", "", ""},
        {"1001", "1001", "1001"},
        {"6\"管", "6\"\"管", "6\"管"},
        {"6\"\"管", "6\"\"管", "6\"管"},
        {"\"", "\"\"", "\""},
        {"\"a\"\"b", "\"\"a\"\"\"\"b", "\"a\"\"b"}, // one alone: none of them is written for a formula yet
    };
    for (const auto& [typed, written, read] : texts) {
        EXPECT_EQ(withQuotesDoubled(typed), written) << typed;
        EXPECT_EQ(withQuotesRead(typed), read) << typed;
    }
}

} // namespace
} // namespace selfreport
