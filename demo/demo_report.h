#pragma once
#include "spreadsheet/workbook/Workbook.h"

#include <memory>
#include <span>
#include <string>
#include <vector>

namespace selfreport::demo {

/// A report that is built but not stored.
struct DemoReport {
    std::string name;
    std::unique_ptr<spreadsheet::Workbook> workbook;
    bool isLandscape = false;
};

/// An account or item of the ledger.
struct LedgerName {
    std::string code, name;
};

DemoReport balanceSheet(int year);
DemoReport incomeStatement(int year);

/// Costs of the year: a row for each account, a column for each department.
DemoReport departmentCosts(int year, std::span<const LedgerName> accounts,
                           std::span<const LedgerName> departments);
DemoReport customerAnalysis(int year, std::span<const LedgerName> customers);
DemoReport goodsTurnover(int year, std::span<const LedgerName> goods);

/// Two sheets that read the reports above by reference; the reports serve to find the cells.
DemoReport financialSummary(int year, const DemoReport& balance, const DemoReport& income,
                            const DemoReport& costs, const DemoReport& customers, const DemoReport& goods);

/// An empty report with one sheet of that name.
DemoReport startReport(const std::string& name, const std::string& sheet, bool isLandscape);

} // namespace selfreport::demo
