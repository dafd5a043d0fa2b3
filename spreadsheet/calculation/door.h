#pragma once
// What formulas come to: the machine that runs them (`Evaluator`, and `Call` for functions), and which ones
// in which order after a change (`Recalculation`). It works on a `Book`. How the order is found and kept is
// nobody else's business. What other rooms may include:
#include "spreadsheet/calculation/Aggregates.h"
#include "spreadsheet/calculation/Call.h"
#include "spreadsheet/calculation/criteria.h"
#include "spreadsheet/calculation/Effort.h"
#include "spreadsheet/calculation/Evaluator.h"
#include "spreadsheet/calculation/linear_form.h"
#include "spreadsheet/calculation/LookupIndexes.h"
#include "spreadsheet/calculation/operators.h"
#include "spreadsheet/calculation/PerturbedBook.h"
#include "spreadsheet/calculation/Recalculation.h"
#include "spreadsheet/calculation/RecalculationReport.h"
#include "spreadsheet/calculation/wildcards.h"
