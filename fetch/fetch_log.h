#pragma once
#include "fetch/diagnostics.h"
#include "fetch/ledger_fetch.h"

#include <algorithm>
#include <set>
#include <vector>

namespace selfreport {

/// A ledger fetch that failed, gave no amount, or left a condition out.
struct DoubtfulFetch {
    spreadsheet::CallPlace place;
    LedgerArguments arguments;
    LedgerAnswer answer;
    bool isReferenced = false; ///< made for the cell that this one refers to
};

/// What the fetches of one recalculation leave behind to be explained after it.
struct FetchLog {
    std::set<spreadsheet::CallPlace> evaluated; ///< cells whose calls were made
    std::vector<CellDiagnostic> known;          ///< reasons that need no further question
    std::vector<DoubtfulFetch> doubtful;

    void add(spreadsheet::CallPlace place, const LedgerArguments& arguments, const LedgerAnswer& answer)
    {
        if (!answer.amount || !answer.unknownClasses.empty() || !answer.failure.empty())
            doubtful.push_back({place, arguments, answer, false});
    }
    /// The first doubtful fetch of a cell; null if all of its fetches gave what was asked for.
    const DoubtfulFetch* doubtfulAt(spreadsheet::CallPlace place) const
    {
        const auto found = std::ranges::find(doubtful, place, &DoubtfulFetch::place);
        return found == doubtful.end() ? nullptr : &*found;
    }
};

} // namespace selfreport
