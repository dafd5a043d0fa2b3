#pragma once
#include <string>

namespace selfreport {

/// What a print stamp tells an auditor.
struct PrintStamp {
    std::string time;      ///< "2026-12-31 08:05:09"
    std::string operator_; ///< who printed
    std::string ledger;
    int diagnostics = 0; ///< cells whose fetch failed or found nothing
};

/// One line; parts that are not known are left out.
std::string stampText(const PrintStamp& stamp);

/// The stamp of a printing now: operator and ledger from run parameters and shared state.
PrintStamp stampNow(int diagnostics);

} // namespace selfreport
