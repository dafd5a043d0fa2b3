#pragma once
// The functions of the language, a folder for each family with a table of rows; `findFunction` knows them
// all. What other rooms may include:
#include "spreadsheet/functions/function_reference.h"
#include "spreadsheet/functions/FunctionTable.h"
