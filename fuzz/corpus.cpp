// Usage: fuzz_corpus FOLDER    Writes what each fuzz target starts from into a folder of its own there.
#include "spreadsheet/files/content/content.h"
#include "spreadsheet/files/content/content_frame.h"
#include "spreadsheet/files/exchange/header_codes.h"
#include "spreadsheet/files/ole2/CompoundFile.h"
#include "spreadsheet/files/xls/xls_write.h"
#include "spreadsheet/files/xlsx/Archive.h"
#include "spreadsheet/files/xlsx/xlsx_write.h"
#include "spreadsheet/functions/FunctionTable.h"
#include "tests/spreadsheet/files/sample_workbook.h"

#include <cstdio>
#include <filesystem>
#include <fstream>
#include <span>

namespace {

using spreadsheet::Workbook;

/// The inputs of one target, numbered.
class Inputs {
public:
    Inputs(const std::filesystem::path& folder, const std::string& target)
        : m_folder(folder / target)
    {
        std::filesystem::create_directories(m_folder);
    }
    void add(std::string_view text)
    {
        std::ofstream file(m_folder / std::to_string(++m_count), std::ios::binary);
        file.write(text.data(), static_cast<std::streamsize>(text.size()));
        file.close();
        if (!file)
            throw std::runtime_error("cannot write to " + m_folder.string());
    }
    void add(std::span<const std::byte> bytes)
    {
        add(std::string_view(reinterpret_cast<const char*>(bytes.data()), bytes.size()));
    }

private:
    std::filesystem::path m_folder;
    int m_count = 0;
};

void fillOneCell(Workbook& workbook)
{
    workbook.sheet(1).setNumber({1, 1}, 1);
    demand(workbook.sheet(1).setFormula({1, 2}, "A1*2"));
    workbook.recalculate();
}

void fillFormulas(Inputs inputs)
{
    for (const std::string& formula : spreadsheet::sampleFormulas())
        inputs.add(formula);
    for (const spreadsheet::FunctionDescriptor* function : spreadsheet::allFunctions()) {
        std::string call(function->name);
        for (int i = 0; i < std::max(function->minArguments, std::min(function->maxArguments, 3)); ++i)
            call += std::string(i == 0 ? "(" : ",") + (i % 2 == 0 ? "A1" : "{1,2}");
        inputs.add(call.ends_with("}") || call.ends_with("1") ? call + ")" : call + "()");
    }
}

/// A call of each function, plain and as an array formula, its arguments drawn by whatever follows.
void fillFunctions(Inputs inputs)
{
    const std::size_t count = spreadsheet::allFunctions().size();
    for (std::size_t function = 0; function < count; ++function) {
        std::string bytes{static_cast<char>(function % 2), static_cast<char>(function / 256),
                          static_cast<char>(function % 256)};
        for (int i = 0; i < 12; ++i)
            bytes += static_cast<char>((function + 1) * 37 % (29 + static_cast<std::size_t>(i)));
        inputs.add(bytes);
    }
}

void fillHeaders(Inputs inputs)
{
    for (const std::string_view codes :
         {"/fn\"宋体\"/fz\"12\"/fb1/fi0/fu1/fk0/c利润表/n/fn\"宋体\"/fz\"10.5\"/fb0/fi1/fu0/fk1/r/p/n",
          "/n/n/l编制单位：甲/r截止日期：2026/12/31/n", "/fz\"x\"/q/fb", "/c12 & 3/n"}) {
        inputs.add(codes);
        inputs.add(spreadsheet::writeForeignHeader(codes));
    }
    for (const std::string_view foreign :
         {"&L&\"宋体,Bold Italic\"&12报表&C第 &P 页 共 &N 页&R&D &T", "&P+1&A&F&Z&G&K00FF00x&U&E&S&&",
          "&10 2026&B&I\n&C\r\n&\"-,Regular\"甲"})
        inputs.add(foreign);
}

/// As .ss7 content, as .xls file and the stream inside it, as .xlsx file and its first sheet and styles.
void addWorkbook(const Workbook& workbook, Inputs& content, Inputs& xls, Inputs& xlsx)
{
    spreadsheet::Warnings warnings;
    content.add(spreadsheet::unpackContent(spreadsheet::saveContent(workbook)).view());

    const std::vector<std::byte> file = spreadsheet::writeXls(workbook, warnings);
    xls.add(file);
    xls.add(spreadsheet::CompoundFile(file).stream("workbook").value().bytes());

    const std::vector<std::byte> zipped = spreadsheet::writeXlsx(workbook, warnings);
    xlsx.add(zipped);
    spreadsheet::Archive archive(zipped);
    const auto sheet = archive.part("xl/worksheets/sheet1.xml").value();
    const auto styles = archive.part("xl/styles.xml").value();
    std::string parts(sheet.begin(), sheet.end());
    parts += '\0';
    parts.append(styles.begin(), styles.end());
    xlsx.add(parts);
}

} // namespace

int main(int count, char** arguments)
{
    if (count != 2) {
        std::fputs("Usage: fuzz_corpus FOLDER\n", stderr);
        return 2;
    }
    const std::filesystem::path folder = arguments[1];
    std::filesystem::remove_all(folder); // else an earlier generator's inputs would stay
    fillFormulas({folder, "formula"});
    fillFunctions({folder, "functions"});
    fillHeaders({folder, "header"});
    Inputs content(folder, "content"), xls(folder, "xls"), xlsx(folder, "xlsx");
    for (const auto fill : {fillOneCell, spreadsheet::fillSample}) {
        Workbook workbook;
        fill(workbook);
        addWorkbook(workbook, content, xls, xlsx);
    }
    return 0;
}
