#include "demo/ledger/LedgerBook.h"

#include "demo/ledger/chart_of_accounts.h"

#include <algorithm>
#include <tuple>

namespace selfreport::demo {

namespace {

std::uint64_t keyOf(int account, int detail, int currency)
{
    return static_cast<std::uint64_t>(account) << 40U | static_cast<std::uint64_t>(detail) << 8U |
           static_cast<std::uint64_t>(currency);
}

PeriodMovement& movementIn(LedgerLine& line, int period)
{
    if (line.movements.empty() || line.movements.back().period != period)
        line.movements.emplace_back().period = period;
    return line.movements.back();
}

} // namespace

LedgerBook::LedgerBook()
{
    for (const ChartAccount& row : chartOfAccounts()) {
        BookAccount account{.id = static_cast<int>(m_accounts.size()) + 1,
                            .code = row.code,
                            .name = row.name,
                            .direction = row.direction,
                            .items = row.items,
                            .quantities = row.quantities};
        if (row.code.size() > 4) {
            account.parent = m_idOfCode.at(row.code.substr(0, row.code.size() - 2));
            BookAccount& parent = m_accounts[static_cast<std::size_t>(account.parent) - 1];
            parent.isLeaf = false;
            account.level = parent.level + 1;
            account.direction = parent.direction;
            account.items = parent.items;
        }
        m_idOfCode.emplace(account.code, account.id);
        m_accounts.push_back(account);
    }
    m_linesOf.resize(m_accounts.size());
}

LedgerLine& LedgerBook::lineFor(int account, int detail, int currency)
{
    const auto [found, isNew] = m_lines.try_emplace(keyOf(account, detail, currency));
    if (isNew) {
        found->second.account = account;
        found->second.detail = detail;
        found->second.currency = currency;
        m_linesOf[static_cast<std::size_t>(account) - 1].push_back(&found->second);
    }
    return found->second;
}

template <typename Work>
void LedgerBook::forEachLine(const VoucherEntry& entry, const Work& work)
{
    for (int id = entry.account; id != 0; id = account(id).parent) {
        work(lineFor(id, 0, entry.currency));
        if (entry.detail != 0)
            work(lineFor(id, entry.detail, entry.currency));
    }
}

void LedgerBook::open(const VoucherEntry& entry)
{
    forEachLine(entry, [&](LedgerLine& line) {
        line.openingFor += entry.debitFor - entry.creditFor;
        line.opening += entry.debit - entry.credit;
        line.openingQuantity += entry.debitQuantity - entry.creditQuantity;
        line.balanceFor = line.openingFor;
        line.balance = line.opening;
        line.quantity = line.openingQuantity;
    });
}

void LedgerBook::post(const Voucher& voucher)
{
    for (const VoucherEntry& entry : voucher.entries)
        forEachLine(entry, [&](LedgerLine& line) {
            PeriodMovement& movement = movementIn(line, voucher.period);
            movement.debitFor += entry.debitFor;
            movement.debit += entry.debit;
            movement.creditFor += entry.creditFor;
            movement.credit += entry.credit;
            movement.debitQuantity += entry.debitQuantity;
            movement.creditQuantity += entry.creditQuantity;
            line.balanceFor += entry.debitFor - entry.creditFor;
            line.balance += entry.debit - entry.credit;
            line.quantity += entry.debitQuantity - entry.creditQuantity;
            if (voucher.carriesOver)
                return;
            movement.earnedFor += entry.debitFor - entry.creditFor;
            movement.earned += entry.debit - entry.credit;
        });
}

const LedgerLine* LedgerBook::line(int account, int detail, int currency) const
{
    const auto found = m_lines.find(keyOf(account, detail, currency));
    return found == m_lines.end() ? nullptr : &found->second;
}

Fen LedgerBook::balanceOf(int account) const
{
    Fen balance = 0;
    for (const int currency : {baseCurrency, dollars})
        if (const LedgerLine* total = line(account, 0, currency))
            balance += total->balance;
    return balance;
}

std::vector<const LedgerLine*> LedgerBook::sortedLines() const
{
    std::vector<const LedgerLine*> lines;
    lines.reserve(m_lines.size());
    for (const auto& [key, line] : m_lines)
        lines.push_back(&line);
    std::ranges::sort(lines, {}, [](const LedgerLine* line) {
        return std::tuple(line->account, line->detail, line->currency);
    });
    return lines;
}

std::vector<const LedgerLine*> LedgerBook::leafLines(int id) const
{
    std::vector<const LedgerLine*> lines;
    const bool byItems = account(id).items != noItems;
    for (const LedgerLine* line : m_linesOf[static_cast<std::size_t>(id) - 1])
        if ((line->detail != 0) == byItems)
            lines.push_back(line);
    std::ranges::sort(lines, {},
                      [](const LedgerLine* line) { return std::tuple(line->detail, line->currency); });
    return lines;
}

} // namespace selfreport::demo
