#include "spreadsheet/files/xls/FormulaReader.h"
#include "spreadsheet/files/xls/XlsLinks.h"

#include <fstream>
#include <gtest/gtest.h>
#include <map>
#include <regex>
#include <set>
#include <sstream>

namespace spreadsheet {
namespace {

const std::string root = TEST_DATA_FOLDER "/../../";

std::string textOf(const std::string& file)
{
    std::ifstream stream(root + file);
    std::stringstream text;
    text << stream.rdbuf();
    return text.str();
}

/// What docs/xls.md says to each number; `digits` tells records (4) from tokens (2).
std::map<int, std::string> documented(int digits)
{
    const std::string page = textOf("docs/xls.md");
    const std::regex row("\\| 0x([0-9A-F]{" + std::to_string(digits) + "}) \\| [^|]* \\| ([^|]*) \\|");
    std::map<int, std::string> result;
    for (std::sregex_iterator match(page.begin(), page.end(), row), end; match != end; ++match)
        result[std::stoi((*match)[1], nullptr, 16)] = (*match)[2];
    return result;
}

std::set<int> published(char kind)
{
    std::istringstream lines(textOf("tests/data/xls_numbers.txt"));
    std::set<int> numbers;
    for (std::string line; std::getline(lines, line);) {
        if (!line.empty() && line[0] == kind)
            numbers.insert(std::stoi(line.substr(2), nullptr, 16));
    }
    return numbers;
}

/// Numbers of the enumeration's constants that any source of the folder uses in a case or a call.
std::set<int> inCode()
{
    const std::string header = textOf("spreadsheet/files/xls/records.h");
    const std::regex constant("\\b([a-zA-Z0-9]+) = 0x([0-9A-F]{4}),");
    std::string sources;
    for (const char* name : {"RecordStream", "RecordWriter", "SheetReader", "SheetReader_cells",
                             "SheetReader_settings", "xls_read", "SheetWriter", "SheetWriter_cells",
                             "write_notes", "xls_write", "XlsStyles", "list_checks", "LinkTable"})
        sources += textOf("spreadsheet/files/xls/" + std::string(name) + ".cpp");
    std::set<int> numbers;
    const std::string records = header.substr(0, header.find("version5"));
    for (std::sregex_iterator match(records.begin(), records.end(), constant), end; match != end; ++match) {
        EXPECT_NE(sources.find("xls::" + std::string((*match)[1])), std::string::npos) << (*match)[1];
        numbers.insert(std::stoi((*match)[2], nullptr, 16));
    }
    return numbers;
}

TEST(XlsNumbers, EveryRecordIsReadOrNamedAsLeftOut)
{
    const auto rows = documented(4);
    const std::set<int> code = inCode();
    EXPECT_GT(published('r').size(), 330U);
    for (const int number : published('r'))
        EXPECT_TRUE(rows.contains(number)) << std::hex << number;
    for (const auto& [number, status] : rows)
        EXPECT_EQ(status != "left out", code.contains(number)) << std::hex << number << " " << status;
    for (const int number : code)
        EXPECT_TRUE(rows.contains(number)) << std::hex << number;
}

TEST(XlsNumbers, EveryTokenIsReadOrNamedAsLeftOut)
{
    const auto rows = documented(2);
    const std::set<int> numbers = published('t');
    EXPECT_EQ(numbers.size(), rows.size());
    for (const int number : numbers)
        EXPECT_TRUE(rows.contains(number)) << std::hex << number;
    const XlsLinks links;
    FormulaReader reader(links);
    for (const auto& [number, status] : rows) {
        if (number <= 2) // cells of shared formulas and tables: asked for before a formula is read
            continue;
        for (const int shift : {0, 0x20, 0x40}) {
            const auto token = static_cast<std::byte>(number + (number < 0x20 ? 0 : shift));
            reader.read(Bytes(&token, 1), {}, {1, 1}); // stops at the operand that is missing
            EXPECT_EQ(reader.problem() == "公式记号不认识", status == "left out") << std::hex << number;
        }
    }
}

} // namespace
} // namespace spreadsheet
