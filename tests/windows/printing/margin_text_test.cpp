#include "windows/printing/margin_text.h"

#include <gtest/gtest.h>

#include <tuple>

namespace selfreport {
namespace {

/// Keys: digits and points as typed, "<" erases before the cursor, ">" after it, "^" goes to the start.
std::string typed(std::string_view keys)
{
    MarginText field;
    for (const char key : keys) {
        if (key == '<')
            field.eraseBefore();
        else if (key == '>')
            field.eraseAfter();
        else if (key == '^')
            field.setCursor(0);
        else
            std::ignore = field.type(key); // what a refused key leaves is in the table
    }
    return field.text() + '@' + std::to_string(field.cursor());
}

TEST(MarginText, TypingFillsThePlaces)
{
    const struct {
        const char *keys, *text;
    } cases[] = {
        {"", "_.__@0"},      {"1", "1.__@1"},      {"12", "1.2_@3"},     {"1.25", "1.25@4"},
        {"125", "1.25@4"},   {"1259", "1.25@4"},   {".5", "_.5_@3"},     {"1..5", "1.5_@3"},
        {"10.5", "_.__@4"},  {"1.5.", "1.5_@3"},   {"a-1 ", "1.__@1"},   {"125<", "1.2_@3"},
        {"125<<", "1.__@2"}, {"125<<<", "_.__@0"}, {"125^>", "_.25@0"},  {"1^>7", "7.__@1"},
        {"125^7", "7.25@1"}, {"<", "_.__@0"},      {"125^.>", "1._5@2"},
    };
    for (const auto& [keys, text] : cases)
        EXPECT_EQ(typed(keys), text) << keys;
}

TEST(MarginText, PastedNumbersFitOrChangeNothing)
{
    const struct {
        const char *pasted, *text;
    } cases[] = {{"1.25", "1.25"}, {" 1.5\n", "1.50"}, {".5", "0.50"},  {"9.99", "9.99"}, {"0", "0.00"},
                 {"10.5", "7.__"}, {"1.234", "7.__"},  {"-1", "7.__"},  {"1e0", "7.__"},  {"1,5", "7.__"},
                 {"", "7.__"},     {"inf", "7.__"},    {"0x1", "7.__"}, {"1.2.", "7.__"}};
    for (const auto& [pasted, text] : cases) {
        MarginText field;
        ASSERT_TRUE(field.type('7'));
        EXPECT_EQ(field.paste(pasted), std::string(text) != "7.__") << pasted;
        EXPECT_EQ(field.text(), text) << pasted;
    }
}

TEST(MarginText, NumbersBecomeTextsWhereTheyFit)
{
    const struct {
        double inches;
        const char* text;
    } cases[] = {{0.6, "0.60"},   {0, "0.00"}, {9.99, "9.99"}, {9.994, "9.99"}, {0.125, "0.13"},
                 {1.005, "1.01"}, {9.995, ""}, {10, ""},       {-0.1, ""},      {-0.001, "0.00"}};
    for (const auto& [inches, text] : cases)
        EXPECT_EQ(marginText(inches).value_or(""), text) << inches;
    EXPECT_EQ(filledMargin("_.5_"), "0.50");
    EXPECT_EQ(marginInches("1.25"), 1.25);
}

} // namespace
} // namespace selfreport
