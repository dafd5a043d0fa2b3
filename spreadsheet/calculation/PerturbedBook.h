#pragma once
#include "spreadsheet/calculation/linear_form.h"
#include "spreadsheet/cells/Book.h"
#include "spreadsheet/values/CellAddress.h"

#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace spreadsheet {

class Recalculation;

/// A copy of a computed book that is computed anew, as often as asked, with the answer of one call changed:
/// what the figures then are shows how much of the call is in them. Custom functions are not called; a call
/// that some formula only makes then has the answer of an equal one, #N/A if there is none.
class PerturbedBook {
public:
    /// Computes the copy once as it is. The book is not kept.
    /// @param answers  of the last calculation of the book
    PerturbedBook(const Book& book, const CallAnswers& answers);
    ~PerturbedBook();
    PerturbedBook(const PerturbedBook&) = delete;
    PerturbedBook& operator=(const PerturbedBook&) = delete;

    /// All with another answer of one call, of none of the others.
    /// @param call  which of the calls that the cell makes, from 0
    void compute(const CallPlace& cell, int call, Value answer);

    Value value(const CallPlace& cell) const;

    struct Made {
        CallPlace cell;
        int call; ///< which of the cell's
        Value answer;
    };
    /// The calls that the copy made as it is, in the order in which it made them.
    std::vector<Made> calls() const;

private:
    struct Asked {
        std::string question; ///< function and parameters
        Made made;
    };
    void answer(FunctionCall& call);
    const Asked* known(const std::string& question) const;

    std::unique_ptr<Book> m_book;
    std::unique_ptr<Recalculation> m_recalculation;
    std::vector<Asked> m_asked; ///< as it is
    CallAnswers m_answers;      ///< while it is computed as it is
    CallPlace m_cell;           ///< that makes calls now
    int m_call = 0;             ///< how many it has made
    std::optional<Made> m_changed;
};

} // namespace spreadsheet
