#pragma once
#include "spreadsheet/formula/CustomFunction.h"
#include "spreadsheet/values/Value.h"

#include <functional>
#include <string>
#include <vector>

namespace spreadsheet {

struct Book;

/// What a call of a custom function handed back in the last calculation.
/// @param cell  whose formula made the call; of an array formula its first cell
/// @param call  which of the calls that the formula made, from 0 in their order
/// @return  #N/A if it is not known
using CallAnswers = std::function<Value(const CallPlace& cell, int call)>;

/// k · call: what one call of a custom function adds to a figure.
struct LinearTerm {
    CallPlace cell; ///< whose formula makes the call, as for `CallAnswers`
    int call = 0;   ///< which of its calls
    double coefficient = 1;
    /// It counts, or counts so, only because of what some call came to: it stands in a branch that was taken,
    /// was the largest, or its parameters depend on calls.
    bool isByCondition = false;
};

/// What functions that round changed in all.
struct LinearRounding {
    double step = 0; ///< they round to multiples of it: 0.01 for two digits, 1000 for -3
    double amount = 0;
};

/// The value of a cell as a sum over the calls of custom functions that it is made of:
///
///     value = Σ coefficient · answer + constant + Σ amount of roundings
///
/// An answer counts as the number that it is, a text as the number that it reads as. Each part is found for
/// itself, none as what is left of the value, so that the sum proves it.
struct LinearForm {
    /// By sheet, column, row and call, each once. Those that cancel are there, with the coefficient 0. If the
    /// form is not linear: the calls that the figure is made of, and their coefficients mean nothing.
    std::vector<LinearTerm> terms;
    double constant = 0;
    std::vector<LinearRounding> roundings; ///< by step, each once
    bool isLinear = true;
    /// Of one that is not: the function or operator ("SQRT", "*") that takes it out of the sum, the one
    /// nearest to the cell. "" if the cell holds no number.
    std::string nonlinearFunction;
};

/// The form of a cell's value as it was last computed. Nothing is computed anew or fetched: branches are
/// taken as the cells' values say. A cell without a formula is a constant.
/// @param cell  that lies on a sheet of the book
LinearForm linearForm(const Book& book, const CallPlace& cell, const CallAnswers& answers);

/// How much is wrong with a call: 0 nothing, more is worse.
using CallSeverity = std::function<int(const CallPlace& cell, int call)>;

struct CarriedSeverity {
    CallPlace cell;
    int severity; ///< the worst among the calls of its form; more than 0
};

/// The cells of the book with something wrong among the calls of their form, also where these cancel. A
/// branch that is not taken, and what only decides which one is, leaves a cell clean.
std::vector<CarriedSeverity> carriedSeverities(const Book& book, const CallAnswers& answers,
                                               const CallSeverity& severity);

} // namespace spreadsheet
