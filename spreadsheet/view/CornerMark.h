#pragma once
#include <cstdint>

namespace spreadsheet {

/// A small red mark in the upper right corner of a cell. Each has a shape of its own, so that they are told
/// apart without colours.
enum class CornerMark : std::uint8_t { none, triangle, hollowTriangle, bar, square };

} // namespace spreadsheet
