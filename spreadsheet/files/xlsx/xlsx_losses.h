#pragma once
#include "spreadsheet/files/exchange/Warnings.h"

#include <pugixml.hpp>
#include <string>

namespace spreadsheet {

class Archive;
class Relations;

/// Counts what a worksheet holds and our sheets cannot: rules of formatting, links, filters and the like.
void countSheetLosses(pugi::xml_node worksheet, Warnings& warnings);

/// Counts pictures, charts, pivot tables and other things that stand in parts of their own.
/// @param relations  of the sheet
void countDrawingLosses(Archive& archive, const Relations& relations, Warnings& warnings);

/// Counts what belongs to the workbook as a whole.
/// @param relations  of the workbook
void countBookLosses(const Relations& relations, Warnings& warnings);

} // namespace spreadsheet
