#pragma once
#include "spreadsheet/files/exchange/Warnings.h"

#include <string>
#include <string_view>

namespace spreadsheet {

/// What holds where a header says nothing.
struct HeaderSurroundings {
    std::string family = "宋体"; ///< font of a run that names none
    double points = 10;
};

/// Our code string ("/fn…/l…/n") for a header or footer of a workbook file ("&L&\"宋体\"&10…&C&P").
/// Paths and pictures have no code of ours and are left out with a warning.
std::string readForeignHeader(std::string_view foreign, const HeaderSurroundings& surroundings,
                              Warnings& warnings);

/// The reverse, from our code string.
std::string writeForeignHeader(std::string_view codes);

} // namespace spreadsheet
