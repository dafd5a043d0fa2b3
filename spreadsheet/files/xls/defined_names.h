#pragma once
#include "spreadsheet/files/exchange/Warnings.h"
#include "spreadsheet/files/xls/XlsLinks.h"
#include "spreadsheet/workbook/Workbook.h"

#include <string>
#include <vector>

namespace spreadsheet {

/// A NAME record: a name that somebody defined, or one of the format's own (print area, print titles).
struct DefinedName {
    static constexpr int none = -1, printArea = 6, printTitles = 7;

    std::string name;
    int builtIn = none;   ///< number of the format's own name
    int tab = 0;          ///< counted from 1; 0: valid on all sheets
    bool isMacro = false; ///< stands for a function or command, not for cells
    Bytes tokens, extra;
};

DefinedName readDefinedName(const XlsRecord& record);

/// A name of ours as such a file has it, and the reverse. Where sheets end at IV65536 "NOV8" is a name; here
/// it is a cell, and "_NOV8" stands for it.
std::string xlsName(const std::string& ours);
std::string nameOfXls(const std::string& name);

/// Gives each name, and what formulas find under its number, the name that it has here.
void takeNames(std::vector<DefinedName>& names, XlsLinks& links, Warnings& warnings);

/// Defines what the names stand for in the workbook, whose sheets must be there.
void defineNames(const std::vector<DefinedName>& names, const XlsLinks& links, Workbook& workbook,
                 Warnings& warnings);

/// Print areas, and rows and columns that are repeated on each page.
void applyPrintNames(const std::vector<DefinedName>& names, const XlsLinks& links, Workbook& workbook,
                     Warnings& warnings);

} // namespace spreadsheet
