#pragma once
#include "explain/DrillTree.h"

#include <string>

namespace selfreport {

/// The open part of a tree, a line for each row, its level by its indent: factor, amount, share, item, basis.
std::string drillText(const DrillHead& head, const DrillNode& root);

/// The same for programs: one object, rows within rows.
std::string drillJson(const DrillHead& head, const DrillNode& root);

/// What a row adds to the one above it.
double contribution(const DrillNode& node);

/// A part of the sum that it stands in: "12.5%"; "" of a sum of 0.
std::string shareText(const DrillNode& node, double sum);

/// An item or name in one line.
std::string oneLine(const std::string& text);

} // namespace selfreport
