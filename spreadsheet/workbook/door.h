#pragma once
// The model that all else works on: sheets that can be edited, with refusals, structure and undo, above a
// `Book`. What other rooms may include:
#include "spreadsheet/workbook/cell_borders.h"
#include "spreadsheet/workbook/CellMove.h"
#include "spreadsheet/workbook/Sheet.h"
#include "spreadsheet/workbook/sheet_name.h"
#include "spreadsheet/workbook/TallCells.h"
#include "spreadsheet/workbook/typed_text.h"
#include "spreadsheet/workbook/UndoJournal.h"
#include "spreadsheet/workbook/Workbook.h"
