#pragma once
// How a value looks: styles and cell types, number format codes, codes of headers and footers. A function of
// value and style, of nothing else. What other rooms may include:
#include "spreadsheet/display/cell_indent.h"
#include "spreadsheet/display/cell_types.h"
#include "spreadsheet/display/CellStyle.h"
#include "spreadsheet/display/display_text.h"
#include "spreadsheet/display/header_fields.h"
#include "spreadsheet/display/header_footer.h"
#include "spreadsheet/display/number_format.h"
#include "spreadsheet/display/number_format_code.h"
