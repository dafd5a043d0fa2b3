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

/// The operator of the run parameters, else the user.
std::string operatorName(const std::string& user);

/// The stamp of a printing now.
/// @param user    the operator, if the run parameters name none
/// @param ledger  what the windows are titled with
PrintStamp stampNow(const std::string& user, const std::string& ledger, int diagnostics);

} // namespace selfreport
