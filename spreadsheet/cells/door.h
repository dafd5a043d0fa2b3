#pragma once
// Where everything stands: cells by column in shared blocks, pools of styles and texts, settings, and `Book`,
// which holds the sheets with their formulas and names. Plain data: nothing is refused, kept for undo or
// computed. What other rooms may include:
#include "spreadsheet/cells/Book.h"
#include "spreadsheet/cells/BookSheet.h"
#include "spreadsheet/cells/CellBlock.h"
#include "spreadsheet/cells/changed_cells.h"
#include "spreadsheet/cells/Column.h"
#include "spreadsheet/cells/LiftedCells.h"
#include "spreadsheet/cells/papers.h"
#include "spreadsheet/cells/SheetSettings.h"
#include "spreadsheet/cells/stored_value.h"
#include "spreadsheet/cells/StylePool.h"
#include "spreadsheet/cells/TextPool.h"
