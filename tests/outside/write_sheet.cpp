// Writes the workbook of one request, as sheet-eval reads it from standard input, to a file: write_sheet
// FILE.
#include "spreadsheet/files/FileFormats.h"
#include "tools/sheet_eval/SheetCase.h"

#include <iostream>
#include <nlohmann/json.hpp>

int main(int count, char** arguments)
{
    if (count != 2) {
        std::cerr << "write_sheet FILE < REQUEST\n";
        return 2;
    }
    try {
        spreadsheet::SheetCase sheets(nlohmann::json::parse(std::cin), std::cerr);
        sheets.workbook().recalculate();
        for (const std::string& warning :
             spreadsheet::saveWorkbook(sheets.workbook(), arguments[1], spreadsheet::fileFormat(".xlsx")))
            std::cerr << warning << '\n';
        return 0;
    } catch (const std::exception& failure) {
        std::cerr << failure.what() << '\n';
        return 1;
    }
}
