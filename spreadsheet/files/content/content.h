#pragma once
#include "spreadsheet/files/placing/ContentError.h"

#include <cstddef>
#include <span>
#include <vector>

namespace spreadsheet {

class Workbook;

/// The workbook as the bytes of an .ss7 file: values, formulas, looks, settings and names.
/// Undo history and registered functions stay behind. The file has the smallest version that holds all.
/// @throws ContentError if the workbook is larger than a file can hold (1 GiB before compression)
std::vector<std::byte> saveContent(const Workbook& workbook);

/// Replaces everything that the workbook holds by the content of an .ss7 file. Registered functions,
/// the prepare hook and the undo setting stay; the undo history goes. Nothing is recalculated: cells
/// show the stored values.
/// @throws ContentError if the bytes are damaged or of a newer version; the workbook is as it was then
void loadContent(Workbook& workbook, std::span<const std::byte> content);

} // namespace spreadsheet
