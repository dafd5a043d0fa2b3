#include "spreadsheet/functions/FunctionTable.h"

#include "spreadsheet/functions/function_reference.h"

#include <algorithm>
#include <fstream>
#include <gtest/gtest.h>
#include <string>

using namespace spreadsheet;

namespace {

bool isChinese(std::string_view text)
{
    return std::ranges::any_of(text, [](char c) { return static_cast<unsigned char>(c) >= 0xE4; });
}

/// Argument names of a row; "[…]" repeats what stands before it.
std::size_t namedArguments(std::string_view arguments)
{
    if (arguments.empty())
        return 0;
    return static_cast<std::size_t>(std::ranges::count(arguments, ',')) + 1;
}

} // namespace

TEST(FunctionTable, NamesAreSortedUniqueAndFoundInEitherCase)
{
    const auto all = allFunctions();
    ASSERT_GE(all.size(), 100u);
    for (std::size_t i = 1; i < all.size(); ++i)
        EXPECT_LT(all[i - 1]->name, all[i]->name);
    EXPECT_EQ(findFunction("vLookUp"), findFunction("VLOOKUP"));
    EXPECT_NE(findFunction("error.type"), nullptr);
    EXPECT_EQ(findFunction("VLOOKU"), nullptr);
    EXPECT_EQ(findFunction(""), nullptr);
}

TEST(FunctionTable, RowsAreComplete)
{
    for (const FunctionDescriptor* function : allFunctions()) {
        SCOPED_TRACE(function->name);
        EXPECT_TRUE(isChinese(function->help));
        EXPECT_EQ(function->help.find('\n'), std::string_view::npos);
        EXPECT_FALSE(familyName(function->family).empty());
        EXPECT_TRUE(function->evaluate || function->has(branches));
        EXPECT_LE(function->minArguments, function->maxArguments);
        EXPECT_EQ(function->kinds.find_first_not_of("vrca"), std::string_view::npos);
        EXPECT_EQ(function->arguments.empty(), function->maxArguments == 0);
        const bool manyMore = function->maxArguments == manyArguments;
        if (manyMore) {
            EXPECT_GE(static_cast<int>(function->kinds.size()), function->repeat);
            EXPECT_NE(function->arguments.find("…"), std::string_view::npos);
        } else {
            EXPECT_EQ(static_cast<int>(function->kinds.size()), function->maxArguments);
            EXPECT_EQ(static_cast<int>(namedArguments(function->arguments)), function->maxArguments);
        }
    }
}

TEST(FunctionTable, KindsRepeatTheirLastLetters)
{
    const FunctionDescriptor* sumIfs = findFunction("SUMIFS");
    std::string kinds;
    for (std::size_t argument = 0; argument < 7; ++argument)
        kinds += sumIfs->kind(argument);
    EXPECT_EQ(kinds, "ccvcvcv");
    EXPECT_EQ(findFunction("SUM")->kind(200), 'r');
    EXPECT_EQ(findFunction("TEXTJOIN")->kind(9), 'r');
}

TEST(FunctionTable, ReferenceInTheDocumentsIsUpToDate)
{
    std::ifstream file(TEST_DATA_FOLDER "/../../docs/functions.md");
    const std::string written{std::istreambuf_iterator<char>(file), {}};
    EXPECT_TRUE(written == functionReference()) << "run: selfreport functions > docs/functions.md";
}
