#pragma once
#include "demo/ledger/TradingCompany.h"

namespace selfreport::demo {

inline constexpr Fen dollarRate = 710; ///< fen of base currency for 100 cents

/// A voucher being written. Lines of no amount are left out.
class TradingCompany::Draft {
public:
    Draft(TradingCompany& company, int day, std::string_view explanation)
        : m_company(company)
    {
        m_voucher.period = company.m_period;
        m_voucher.day = day;
        m_voucher.explanation = explanation;
    }

    Draft& debit(std::string_view code, Fen amount, int detail = 0, std::int64_t quantity = 0)
    {
        VoucherEntry entry = start(code, detail);
        entry.debitFor = entry.debit = amount;
        entry.debitQuantity = quantity;
        return add(entry);
    }

    Draft& credit(std::string_view code, Fen amount, int detail = 0, std::int64_t quantity = 0)
    {
        VoucherEntry entry = start(code, detail);
        entry.creditFor = entry.credit = amount;
        entry.creditQuantity = quantity;
        return add(entry);
    }

    Draft& debitDollars(std::string_view code, Fen cents, int detail = 0)
    {
        VoucherEntry entry = start(code, detail);
        entry.currency = dollars;
        entry.debitFor = cents;
        entry.debit = cents * dollarRate / 100;
        return add(entry);
    }

    Draft& creditDollars(std::string_view code, Fen cents, int detail = 0)
    {
        VoucherEntry entry = start(code, detail);
        entry.currency = dollars;
        entry.creditFor = cents;
        entry.credit = cents * dollarRate / 100;
        return add(entry);
    }

    /// Takes the line's balance and quantity to zero.
    Fen clear(const LedgerLine& line)
    {
        VoucherEntry entry;
        entry.account = line.account;
        entry.detail = line.detail;
        entry.currency = line.currency;
        if (line.balance > 0) {
            entry.creditFor = line.balanceFor;
            entry.credit = line.balance;
            entry.creditQuantity = line.quantity;
        } else {
            entry.debitFor = -line.balanceFor;
            entry.debit = -line.balance;
            entry.debitQuantity = -line.quantity;
        }
        add(entry);
        return line.balance;
    }

    Draft& carryingOver()
    {
        m_voucher.carriesOver = true;
        return *this;
    }

    void post()
    {
        if (m_voucher.entries.empty())
            return;
        m_company.m_book.post(m_voucher);
        m_company.m_vouchers.push_back(std::move(m_voucher));
    }

private:
    VoucherEntry start(std::string_view code, int detail) const
    {
        VoucherEntry entry;
        entry.account = m_company.m_book.idOf(code);
        entry.detail = detail;
        return entry;
    }

    Draft& add(const VoucherEntry& entry)
    {
        if (entry.debit != 0 || entry.credit != 0)
            m_voucher.entries.push_back(entry);
        return *this;
    }

    TradingCompany& m_company;
    Voucher m_voucher;
};

} // namespace selfreport::demo
