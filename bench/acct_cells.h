#pragma once
#include "fetch/ledger_fetch.h"
#include "spreadsheet/workbook/Workbook.h"

#include <stdexcept>
#include <string>
#include <vector>

/// Closing balances, movements and openings over ranges, patterns and single accounts of two years of the
/// demo company: 400 different ones. @param digits  of the customers' codes
inline std::vector<selfreport::LedgerArguments> fetchesOfAReport(std::size_t digits)
{
    const std::string zeros(digits - 1, '0');
    const std::string pattern = "1122|客户|0" + std::string(digits - 1, '*');
    const std::string range = "1122|客户|" + zeros + "1:" + std::string(digits - 3, '0') + "100";
    constexpr std::size_t distinctFetches = 400;
    std::vector<selfreport::LedgerArguments> fetches;
    for (const char* year : {"2025", "2024"})
        for (const char* kind : {"2", "3", "4", "1"})
            for (const std::string& account : {std::string("1001:1901"), pattern, std::string("66**"),
                                               std::string("****"), range, std::string("1001")})
                for (const char* period : {"1", "2", "3", "4", "5", "6", "7", "8", "9", "10"})
                    if (fetches.size() < distinctFetches)
                        fetches.push_back({account, kind, "", year, "1", period});
    return fetches;
}

/// Column A of the first sheet: the fetches again and again.
inline void putAcctCells(spreadsheet::Workbook& workbook,
                         const std::vector<selfreport::LedgerArguments>& fetches, int cells)
{
    for (int row = 1; row <= cells; ++row) {
        const selfreport::LedgerArguments& f = fetches[static_cast<std::size_t>(row - 1) % fetches.size()];
        const std::string formula = "Acct(\"" + f.account + "\",\"" + f.fetchType + "\",\"" + f.currency +
                                    "\",\"" + f.year + "\",\"" + f.firstPeriod + "\",\"" + f.lastPeriod +
                                    "\")";
        if (workbook.sheet(1).setFormula({1, row}, formula))
            throw std::runtime_error("refused: " + formula);
    }
}
