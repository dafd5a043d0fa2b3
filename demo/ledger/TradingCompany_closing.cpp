#include "demo/ledger/TradingCompany.h"

#include "demo/ledger/voucher_draft.h"

#include <algorithm>

namespace selfreport::demo {

/// Last month's wages are paid, this month's are set down.
void TradingCompany::payWages()
{
    const Fen owed = -m_book.balanceOf(m_book.idOf("221101"));
    const Fen tax = std::max<Fen>(owed, 0) * 3 / 100;
    Draft(*this, 10, "发放工资")
        .debit("221101", owed)
        .credit("222106", tax)
        .credit("10020101", owed - tax)
        .post();
    const Fen taxOwed = -m_book.balanceOf(m_book.idOf("222106"));
    Draft(*this, 15, "缴纳个人所得税").debit("222106", taxOwed).credit("10020101", taxOwed).post();
    for (const DemoDepartment& department : m_items.departments) {
        const Fen wages = department.staff * m_random.between(6000, 9000) * yuan;
        const Fen pension = wages * 16 / 100;
        const Fen health = wages * 8 / 100;
        const Fen housing = wages * 7 / 100;
        const bool sells = department.sells;
        Draft draft(*this, lastDay, "计提工资");
        draft.debit(sells ? "660101" : "660201", wages, department.detail)
            .debit(sells ? "660103" : "660203", pension + health, department.detail)
            .debit(sells ? "660102" : "660204", housing, department.detail);
        draft.credit("221101", wages).credit("22110301", pension).credit("22110302", health);
        draft.credit("221104", housing).post();
    }
    Draft insurance(*this, lastDay, "缴纳社会保险和公积金");
    Fen paid = 0;
    for (const char* code : {"22110301", "22110302", "221104"}) {
        const Fen due = -m_book.balanceOf(m_book.idOf(code));
        insurance.debit(code, due);
        paid += due;
    }
    insurance.credit("10020101", paid).post();
}

/// Depreciation and amortisation by the straight line.
void TradingCompany::writeOff()
{
    struct Row {
        const char* asset;
        const char* written;
        int months;
    };
    static constexpr Row rows[] = {{"160101", "160201", 240},
                                   {"160102", "160202", 120},
                                   {"160103", "160203", 60},
                                   {"160104", "160204", 60},
                                   {"160105", "160205", 60}};
    for (const Row& row : rows) {
        const Fen month = m_book.balanceOf(m_book.idOf(row.asset)) / row.months;
        const Fen share = month / static_cast<Fen>(m_items.departments.size());
        Draft draft(*this, lastDay, "计提折旧");
        for (const DemoDepartment& department : m_items.departments)
            draft.debit(department.sells ? "660108" : "660208", share, department.detail);
        draft.credit(row.written, share * static_cast<Fen>(m_items.departments.size())).post();
    }
    const int office = m_items.departments[4].detail;
    Draft(*this, lastDay, "摊销无形资产")
        .debit("660209", 13000 * yuan, office)
        .credit("170201", 10000 * yuan)
        .credit("170202", 3000 * yuan)
        .post();
}

void TradingCompany::payInterest()
{
    const Fen loans = -m_book.balanceOf(m_book.idOf("2001")) - m_book.balanceOf(m_book.idOf("2501"));
    Draft(*this, 20, "计提利息")
        .debit("660301", loans * 36 / 10000)
        .credit("2231", loans * 36 / 10000)
        .post();
    const Fen earned = std::max<Fen>(m_book.balanceOf(m_book.idOf("100201")), 0) / 3000;
    Draft(*this, 21, "存款利息").debit("10020101", earned).credit("660302", earned).post();
    const Fen charge = m_random.between(20000, 90000);
    Draft(*this, 22, "银行手续费").debit("660303", charge).credit("10020102", charge).post();
    if (m_period % 3 == 2) {
        const Fen due = -m_book.balanceOf(m_book.idOf("2231"));
        Draft(*this, 22, "支付利息").debit("2231", due).credit("10020101", due).post();
    }
    if (m_random.oneIn(3)) {
        const Fen rent = m_random.between(500000, 2000000);
        Draft(*this, 18, "租金收入").debit("10020301", rent).credit("605102", rent).post();
    }
    if (m_random.oneIn(6))
        Draft(*this, 19, "政府补助").debit("10020101", 50000 * yuan).credit("630101", 50000 * yuan).post();
    if (m_random.oneIn(8))
        Draft(*this, 19, "捐赠支出").debit("671102", 20000 * yuan).credit("10020101", 20000 * yuan).post();
}

/// Pays last month's taxes, then takes this month's value added tax and what is levied on it.
void TradingCompany::settleTaxes()
{
    for (const char* code : {"222102", "222104", "222105", "222107"}) {
        const Fen due = -m_book.balanceOf(m_book.idOf(code));
        if (due > 0)
            Draft(*this, 15, "缴纳税费").debit(code, due).credit("10020101", due).post();
    }
    const Fen added = -m_book.balanceOf(m_book.idOf("222101"));
    if (added <= 0)
        return; // more tax was paid than taken: it stays to be set off
    Draft(*this, lastDay, "转出未交增值税").debit("22210103", added).credit("222102", added).post();
    const Fen city = added * 7 / 100;
    const Fen school = added * 3 / 100;
    const Fen local = added * 2 / 100;
    Draft draft(*this, lastDay, "计提税金及附加");
    draft.debit("640301", city).debit("640302", school).debit("640303", local);
    draft.credit("222104", city).credit("222105", school).credit("222107", local).post();
}

/// A quarter of the profit, taken at the end of each quarter and paid in the next.
void TradingCompany::takeIncomeTax()
{
    if (m_period % 3 == 0) {
        const Fen due = -m_book.balanceOf(m_book.idOf("222103"));
        if (due > 0)
            Draft(*this, 15, "缴纳所得税").debit("222103", due).credit("10020101", due).post();
    }
    if (m_period % 3 != 2)
        return;
    // The year's profit before tax: what was carried over, what this month adds, and the tax taken so far.
    Fen profit = m_incomeTaxTaken - m_book.balanceOf(m_book.idOf("4103"));
    for (const BookAccount& account : m_book.accounts())
        if (account.level == 1 && account.code.starts_with('6'))
            profit -= m_book.balanceOf(account.id);
    const Fen tax = std::max<Fen>(profit / 4 - m_incomeTaxTaken, 0);
    Draft(*this, lastDay, "计提所得税").debit("6801", tax).credit("222103", tax).post();
    m_incomeTaxTaken += tax;
}

void TradingCompany::carryOver()
{
    Draft draft(*this, lastDay, "结转本期损益");
    draft.carryingOver();
    Fen result = 0; // debit-positive: a loss
    for (const BookAccount& account : m_book.accounts()) {
        if (!account.isLeaf || !account.code.starts_with('6'))
            continue;
        for (const LedgerLine* line : m_book.leafLines(account.id))
            if (line->balance != 0)
                result += draft.clear(*line);
    }
    if (result > 0)
        draft.debit("4103", result);
    else
        draft.credit("4103", -result);
    draft.post();
}

void TradingCompany::closeYear()
{
    m_incomeTaxTaken = 0;
    const Fen profit = -m_book.balanceOf(m_book.idOf("4103"));
    Draft draft(*this, lastDay, "结转本年利润");
    if (profit > 0)
        draft.debit("4103", profit).credit("410403", profit);
    else
        draft.credit("4103", -profit).debit("410403", -profit);
    draft.post();
    if (profit <= 0)
        return;
    const Fen reserve = profit / 10;
    Draft(*this, lastDay, "提取盈余公积").debit("410401", reserve).credit("410101", reserve).post();
    Draft(*this, lastDay, "结转利润分配").debit("410403", reserve).credit("410401", reserve).post();
}

} // namespace selfreport::demo
