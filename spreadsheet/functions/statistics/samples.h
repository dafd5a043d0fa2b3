#pragma once
#include "spreadsheet/calculation/Call.h"

namespace spreadsheet {

/// Two lists of numbers that belong together one by one.
struct PairedSample {
    std::vector<double> first;
    std::vector<double> second;

    double size() const { return static_cast<double>(first.size()); }
    /// Sum of the products of the distances from the two means.
    double crossDeviations() const;
};

/// Reads two arguments of the same number of cells, row by row. Pairs in which either is no number are
/// left out. The call fails with the first error, and with #N/A if the numbers of cells differ.
PairedSample pairedSample(Call& call, std::size_t first, std::size_t second);

} // namespace spreadsheet
