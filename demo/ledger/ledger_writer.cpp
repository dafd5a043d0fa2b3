#include "demo/ledger/ledger_writer.h"

#include "platform/database/Connection.h"

#include <array>
#include <utility>

namespace selfreport::demo {

namespace {

/// Fen as units of the currency. Both parts of the division are exact, so the nearest double is stored.
SqlValue money(Fen fen)
{
    if (fen % 100 == 0)
        return fen / 100;
    return static_cast<double>(fen) / 100.0;
}

std::string insertInto(const char* table, int values)
{
    std::string sql = std::string("insert into ") + table + " values(?";
    for (int value = 1; value < values; ++value)
        sql += ",?";
    return sql + ")";
}

SqlDateTime dayOf(const Voucher& voucher, int firstYear)
{
    return {firstYear + voucher.period / periodsPerYear,
            voucher.period % periodsPerYear + 1,
            voucher.day,
            0,
            0,
            0};
}

/// A line of the ledger in one year: its balances as the periods go by.
class YearOfLine {
public:
    YearOfLine(Connection& connection, const LedgerBook& book, const LedgerLine& line)
        : m_connection(connection)
        , m_account(book.account(line.account))
        , m_line(line)
        , m_balanceFor(line.openingFor)
        , m_balance(line.opening)
        , m_quantity(line.openingQuantity)
    {
    }

    void writeYear(int firstPeriod, int year)
    {
        m_toDate = {};
        bool stirred = m_balanceFor != 0 || m_balance != 0 || m_quantity != 0;
        for (int period = firstPeriod; period < firstPeriod + periodsPerYear; ++period) {
            const bool moves = m_next < m_line.movements.size() && m_line.movements[m_next].period == period;
            stirred = stirred || moves;
            if (!stirred)
                continue;
            const PeriodMovement movement = moves ? m_line.movements[m_next++] : PeriodMovement{};
            addToDate(movement);
            writePeriod(movement, year, period - firstPeriod + 1);
            m_balanceFor += movement.debitFor - movement.creditFor;
            m_balance += movement.debit - movement.credit;
            m_quantity += movement.debitQuantity - movement.creditQuantity;
        }
    }

private:
    void addToDate(const PeriodMovement& movement)
    {
        m_toDate.debitFor += movement.debitFor;
        m_toDate.debit += movement.debit;
        m_toDate.creditFor += movement.creditFor;
        m_toDate.credit += movement.credit;
        m_toDate.debitQuantity += movement.debitQuantity;
        m_toDate.creditQuantity += movement.creditQuantity;
        m_toDate.earnedFor += movement.earnedFor;
        m_toDate.earned += movement.earned;
    }

    void writePeriod(const PeriodMovement& movement, int year, int period)
    {
        static const std::string balanceSql = insertInto("tblAccountBal", 17);
        static const std::string quantitySql = insertInto("tblQtyBalance", 11);
        static const std::string profitSql = insertInto("tblProfitAndLoss", 9);
        const std::array key{integer(m_line.account), integer(m_line.detail), integer(year), integer(period),
                             integer(m_line.currency)};
        m_connection.execute(balanceSql,
                             {key[0], key[1], key[2], key[3], key[4], money(m_balanceFor), money(m_balance),
                              money(movement.debitFor), money(movement.debit), money(movement.creditFor),
                              money(movement.credit), money(m_toDate.debitFor), money(m_toDate.debit),
                              money(m_toDate.creditFor), money(m_toDate.credit),
                              money(m_balanceFor + movement.debitFor - movement.creditFor),
                              money(m_balance + movement.debit - movement.credit)});
        if (m_account.quantities)
            m_connection.execute(quantitySql,
                                 {key[0], key[1], key[2], key[3], key[4], integer(m_quantity),
                                  integer(movement.debitQuantity), integer(movement.creditQuantity),
                                  integer(m_toDate.debitQuantity), integer(m_toDate.creditQuantity),
                                  integer(m_quantity + movement.debitQuantity - movement.creditQuantity)});
        if (m_account.code.starts_with('6')) {
            const int sign = m_account.direction; // income counts positive as well as cost
            m_connection.execute(profitSql,
                                 {key[0], key[1], key[2], key[3], key[4], money(sign * movement.earnedFor),
                                  money(sign * movement.earned), money(sign * m_toDate.earnedFor),
                                  money(sign * m_toDate.earned)});
        }
    }

    Connection& m_connection;
    const BookAccount& m_account;
    const LedgerLine& m_line;
    Fen m_balanceFor;
    Fen m_balance;
    std::int64_t m_quantity;
    PeriodMovement m_toDate;
    std::size_t m_next = 0; ///< movement
};

} // namespace

void writeVouchers(Connection& connection, const std::vector<Voucher>& vouchers, int firstYear)
{
    const std::string voucherSql = insertInto("tblVoucher", 7);
    const std::string entrySql = insertInto("tblVoucherEntry", 11);
    std::int64_t id = 0, number = 0;
    int period = -1;
    for (const Voucher& voucher : vouchers) {
        const SqlDateTime day = dayOf(voucher, firstYear);
        number = std::exchange(period, voucher.period) == voucher.period ? number + 1 : 1;
        connection.execute(voucherSql, {integer(++id), integer(day.year), integer(day.month), day,
                                        "记-" + std::to_string(number), std::string(voucher.explanation),
                                        integer(voucher.carriesOver ? 1 : 0)});
        std::int64_t line = 0;
        for (const VoucherEntry& entry : voucher.entries)
            connection.execute(entrySql,
                               {integer(id), integer(++line), integer(entry.account), integer(entry.detail),
                                integer(entry.currency), money(entry.debitFor), money(entry.debit),
                                money(entry.creditFor), money(entry.credit), integer(entry.debitQuantity),
                                integer(entry.creditQuantity)});
    }
}

void writeBalances(Connection& connection, const LedgerBook& book, int firstYear, int years)
{
    for (const LedgerLine* line : book.sortedLines()) {
        YearOfLine writer(connection, book, *line);
        for (int year = 0; year < years; ++year)
            writer.writeYear(year * periodsPerYear, firstYear + year);
    }
}

} // namespace selfreport::demo
