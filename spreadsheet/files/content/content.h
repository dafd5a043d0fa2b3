#pragma once
#include "spreadsheet/files/placing/ContentError.h"

#include <cstddef>
#include <span>
#include <string>
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
/// @return formulas and names that could not be read, one Chinese sentence each; cells keep their values
/// @throws ContentError if the bytes are damaged or of a newer version; the workbook is as it was then
std::vector<std::string> loadContent(Workbook& workbook, std::span<const std::byte> content);

} // namespace spreadsheet
