#include "spreadsheet/functions/FunctionTable.h"
#include "tests/spreadsheet/functions/FormulaSheet.h"

#include <cctype>
#include <filesystem>
#include <fstream>
#include <set>
#include <sstream>

using namespace spreadsheet;

namespace {

std::string contentOf(const std::filesystem::path& file)
{
    std::ostringstream text;
    text << std::ifstream(file).rdbuf();
    return text.str();
}

/// The names of the checked-in list, one a line, "#" before comments.
std::vector<std::string> publishedNames()
{
    std::istringstream lines(contentOf(TEST_DATA_FOLDER "/function_table.txt"));
    std::vector<std::string> names;
    for (std::string line; std::getline(lines, line);) {
        if (!line.empty() && line[0] != '#')
            names.push_back(line);
    }
    return names;
}

/// Every name before a bracket in the tests of functions, which is where their rows of values stand.
std::set<std::string> calledInTests()
{
    const auto belongs = [](char c) { return std::isupper(c) || std::isdigit(c) || c == '.'; };
    std::set<std::string> names;
    const std::filesystem::path folder = TEST_DATA_FOLDER "/../spreadsheet/functions";
    for (const auto& entry : std::filesystem::recursive_directory_iterator(folder)) {
        const std::string text = contentOf(entry.path());
        for (std::size_t at = 0; (at = text.find('(', at)) != text.npos; ++at) {
            std::size_t begin = at;
            while (begin > 0 && belongs(text[begin - 1]))
                --begin;
            if (begin < at)
                names.insert(text.substr(begin, at - begin));
        }
    }
    return names;
}

/// A call with as few arguments as the function takes.
std::string shortestCall(const FunctionDescriptor& function)
{
    std::string call(function.name);
    for (int i = 0; i < function.minArguments; ++i)
        call += i == 0 ? "(1" : ",1";
    return call + (function.minArguments == 0 ? "()" : ")");
}

} // namespace

TEST(PublishedTable, EveryEntryIsComputed)
{
    const std::vector<std::string> names = publishedNames();
    ASSERT_GT(names.size(), 450u);
    FormulaSheet sheet;
    for (const std::string& name : names) {
        const FunctionDescriptor* function = findFunction(name);
        ASSERT_NE(function, nullptr) << name;
        const std::string value = sheet.evaluate(shortestCall(*function));
        EXPECT_NE(value, "#NAME?") << name;
        EXPECT_FALSE(value.starts_with("refused")) << name << ": " << value;
    }
}

TEST(PublishedTable, EveryFunctionHasARowOfValues)
{
    const std::set<std::string> called = calledInTests();
    for (const FunctionDescriptor* function : allFunctions())
        EXPECT_TRUE(called.contains(std::string(function->name))) << function->name;
}
