#include "spreadsheet/functions/FunctionTable.h"
#include "tests/spreadsheet/functions/FormulaSheet.h"

#include <algorithm>
#include <chrono>
#include <random>

using namespace spreadsheet;

namespace {

/// Cells of every kind for arguments that are references.
FormulaSheet mixedCells()
{
    return {{"A1", "1"}, {"A2", "x"}, {"A3", "TRUE"}, {"A4", "40000"}, {"B1", "h"},
            {"B2", "3"}, {"B3", "4"}, {"C1", "k"},    {"C2", "=1/0"},  {"C3", "-7"}};
}

std::string callText(const FunctionDescriptor& function, const std::vector<std::string>& arguments)
{
    std::string text(function.name);
    for (std::size_t i = 0; i < arguments.size(); ++i)
        text += (i == 0 ? "(" : ",") + arguments[i];
    return text + (arguments.empty() ? "()" : ")");
}

/// What random arguments are drawn from: each kind, each limit.
const std::vector<std::string> samples{
    "1",          "0",     "-1",    "2.5",   "1E300",  "-1E300",       "1E-300",
    "2147483648", "TRUE",  "\"\"",  "\"x\"", "\"12\"", "\"2011-3-5\"", "\"3+4i\"",
    "A1",         "A1:A4", "B1:C3", "A:A",   "C:D",    "{1,2,3}",      "{\"a\",TRUE}",
    "1/0",        "",      "40000", "41000", "4",      "0.1",          "100"};

} // namespace

TEST(ArgumentKinds, EveryFunctionAnswersWhateverItIsHanded)
{
    FormulaSheet sheet = mixedCells();
    std::mt19937 random(20111231);
    const auto drawn = [&](std::size_t count) { return random() % count; };
    for (const FunctionDescriptor* function : allFunctions()) {
        const int most = std::min(function->maxArguments, function->minArguments + 3);
        for (int round = 0; round < 12; ++round) {
            const auto spread = static_cast<std::size_t>(most - function->minArguments + 1);
            std::vector<std::string> arguments(static_cast<std::size_t>(function->minArguments) +
                                               drawn(spread));
            for (std::string& argument : arguments)
                argument = samples[drawn(samples.size())];
            const std::string text = callText(*function, arguments);
            const auto begun = std::chrono::steady_clock::now();
            const std::string first = sheet.evaluate(text);
            const auto passed = std::chrono::steady_clock::now() - begun;
            EXPECT_LT(passed, std::chrono::seconds(5)) << text;
            if (!function->has(isVolatile)) {
                EXPECT_EQ(sheet.evaluate(text), first) << text;
            }
        }
    }
}

TEST(ArgumentKinds, AnErrorAsFirstValueIsHandedOn)
{
    // Those whose answer is about the error, or about the place where it stands, or about a column that there
    // is not.
    const std::vector<std::string_view> aboutErrors{
        "ERROR.TYPE", "IFERROR",  "IFNA",      "ISBLANK", "ISERR",     "ISERROR", "ISNA",
        "ISTEXT",     "ISNUMBER", "ISNONTEXT", "RTD",     "ISLOGICAL", "VLOOKUP", "HLOOKUP"};
    FormulaSheet sheet = mixedCells();
    for (const FunctionDescriptor* function : allFunctions()) {
        if (function->minArguments == 0 || function->kind(0) != 'v' ||
            std::ranges::find(aboutErrors, function->name) != aboutErrors.end())
            continue;
        std::vector<std::string> arguments(static_cast<std::size_t>(function->minArguments), "B2");
        arguments.front() = "NA()";
        EXPECT_EQ(sheet.evaluate(callText(*function, arguments)), "#N/A") << function->name;
        arguments.front() = "C2";
        EXPECT_EQ(sheet.evaluate(callText(*function, arguments)), "#DIV/0!") << function->name;
    }
}
