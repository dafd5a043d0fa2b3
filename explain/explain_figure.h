#pragma once
#include "explain/DrillTree.h"

#include <cstdint>
#include <functional>
#include <string>
#include <string_view>

namespace selfreport {

struct Explained {
    DrillHead head;
    DrillNode root;
};

/// Runs a stored report and takes one of its figures apart, each row by the first of its ways.
/// @param cell   "Sheet1!B7"; without a sheet one of the first
/// @param depth  levels, from 1: the calls of the formula
/// @throws ReportRunError also if there is no such cell
Explained explainFigure(const std::string& connectionString, std::int32_t reportId, const std::string& cell,
                        int depth, const std::function<void(std::string_view)>& progress = {});

/// Opens rows by the first of their ways, down to a level. @throws WorkCancelled
void openLevels(DrillTree& tree, DrillNode& node, DatabaseAccess& database, int levels);

/// The first difference or unknown amount, as a sentence; "" without one.
std::string firstFault(const DrillNode& node);

} // namespace selfreport
