#pragma once
#include "explain/DrillTree.h"

#include <string>

namespace selfreport {

inline constexpr const char* ledgerHasChangedText = "账已变动：计算之后有人记了账";

/// The open part of a tree, a line for each row, its level by its indent: factor, amount, share, item, basis.
std::string drillText(const DrillHead& head, const DrillNode& root);

/// The same for programs: one object, rows within rows.
std::string drillJson(const DrillHead& head, const DrillNode& root);

/// What a row adds to the one above it.
double contribution(const DrillNode& node);

/// A part of the sum that it stands in: "12.5%"; "" of a sum of 0.
std::string shareText(const DrillNode& node, double sum);

/// Which page of its vouchers an open row has: "第 1 页，共 3 页，这里只有这一页".
std::string pageText(const DrillNode& node);

/// An item or name in one line.
std::string oneLine(const std::string& text);

} // namespace selfreport
