#pragma once
#include <span>
#include <string_view>

namespace spreadsheet {

/// A kind of paper that reports are printed on.
struct Paper {
    const char* name;    ///< as print services name it; empty: they know it by its size alone
    const char* caption; ///< UTF-8
    double millimetresWide, millimetresHigh; ///< of the upright sheet
    int number;                              ///< by which workbook files name it; 0: they have none

    int width() const; ///< twips
    int height() const;
};

/// All that are offered, the usual ones first.
std::span<const Paper> papers();

/// The paper of a size in twips, a millimetre more or less; null if it is none of them.
const Paper* paperOfSize(int width, int height);
const Paper* paperOfNumber(int number);
const Paper* paperOfName(std::string_view name);

int twipsOfMillimetres(double millimetres);

} // namespace spreadsheet
