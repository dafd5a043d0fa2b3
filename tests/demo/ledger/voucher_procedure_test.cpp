// The vouchers of the demo company behind its balances: what sp_GS_VoucherProc lists adds up to what the
// tables of balances hold, asked of these by statements of their own.
#include "tests/platform/database/database_folder.h"

#include "demo/ledger/demo_ledger.h"

#include <cmath>

namespace selfreport {
namespace {

ProcedureCall voucherCall(const std::string& account, const std::string& items, int year, int first, int last,
                          const std::string& currency, int page = 1)
{
    ProcedureCall call{"sp_GS_VoucherProc", {}};
    call.append("account", 50, account)
        .append("items", 2000, items)
        .append("fYear", 10, std::to_string(year));
    call.append("fPeriod1", 10, std::to_string(first)).append("fPeriod2", 10, std::to_string(last));
    call.append("currenct", 50, currency).append("page", 10, std::to_string(page));
    return call;
}

/// In hundredths, which whole numbers compare.
std::int64_t fen(double amount)
{
    return std::llround(amount * 100);
}

struct Movement {
    std::int64_t debit = 0, credit = 0, debitFor = 0, creditFor = 0, income = 0;
    friend bool operator==(const Movement&, const Movement&) = default;
    friend void PrintTo(const Movement& m, std::ostream* out)
    {
        *out << m.debit << ' ' << m.credit << ' ' << m.debitFor << ' ' << m.creditFor << ' ' << m.income;
    }
};

class DemoVouchers : public ::testing::Test {
protected:
    DemoVouchers()
    {
        createDemoLedger(folder.file());
        connection = openConnection(folder.connectionString());
    }

    Movement listed(const ProcedureCall& call, std::int64_t direction)
    {
        const ProcedureResult result = connection->call(call);
        Movement movement;
        for (std::size_t row = 0; row < result.moreRows.at(0).rowCount(); ++row) {
            const Recordset& totals = result.moreRows[0];
            movement.debit += fen(totals.number(row, "fDebit"));
            movement.credit += fen(totals.number(row, "fCredit"));
            movement.debitFor += fen(totals.number(row, "fDebitFor"));
            movement.creditFor += fen(totals.number(row, "fCreditFor"));
            if (totals.integer(row, "fcarryover") == 0)
                movement.income +=
                    direction * (fen(totals.number(row, "fDebit")) - fen(totals.number(row, "fCredit")));
        }
        return movement;
    }

    /// @param condition  on the rows of balances, for the alias a
    Movement stored(const std::string& condition)
    {
        const Recordset rows = connection->query(
            "select sum(a.fDebit) as fDebit,sum(a.fCredit) as fCredit,sum(a.fDebitFor) as fDebitFor,"
            "sum(a.fCreditFor) as fCreditFor,sum(p.fAmount) as fAmount from tblAccountBal as a left join "
            "tblProfitAndLoss as p on p.fAccountId=a.faccountid and p.fDetailid=a.fDetailId and "
            "p.fYear=a.fYear "
            "and p.fPeriod=a.fPeriod and p.fCurrencyid=a.fCurrencyid where " +
            condition);
        return {fen(rows.number(0, "fDebit")), fen(rows.number(0, "fCredit")),
                fen(rows.number(0, "fDebitFor")), fen(rows.number(0, "fCreditFor")),
                fen(rows.number(0, "fAmount"))};
    }

    const testing::DatabaseFolder folder;
    std::unique_ptr<Connection> connection;
};

TEST_F(DemoVouchers, AddUpToTheMovementsOfEveryAccount)
{
    const Recordset accounts =
        connection->query("select fitemid,fNumber,fDirection from tblAccount order by fNumber");
    int moved = 0;
    for (std::size_t row = 0; row < accounts.rowCount(); ++row) {
        const std::string code = accounts.text(row, "fNumber");
        const bool earns = code.starts_with('6'); // only these have rows of profit and loss
        for (const auto& [year, first, last, currency] :
             {std::tuple(2024, 1, 12, ""), std::tuple(2025, 3, 7, ""), std::tuple(2025, 12, 12, "USD")}) {
            Movement wanted =
                stored("a.fDetailId=0 and a.faccountid=" + accounts.text(row, "fitemid") +
                       " and a.fYear=" + std::to_string(year) + " and a.fPeriod>=" + std::to_string(first) +
                       " and a.fPeriod<=" + std::to_string(last) + (*currency ? " and a.fCurrencyid=2" : ""));
            Movement given = listed(voucherCall(code, "", year, first, last, currency),
                                    accounts.integer(row, "fDirection"));
            if (!earns)
                wanted.income = given.income = 0;
            EXPECT_EQ(given, wanted) << code << ' ' << year << ' ' << first << ' ' << last << ' ' << currency;
            moved += given.debit != 0 ? 1 : 0;
        }
    }
    EXPECT_GT(moved, 100) << "else there was nothing to compare";
}

TEST_F(DemoVouchers, AddUpToTheMovementsOfItems)
{
    const Recordset customers = connection->query("select fitemid,fNumber from tblCustomer order by fNumber");
    const std::string ofBoth = " and d.fitemid in (select fitemid from tblDepartment where fNumber<='03')";
    int moved = 0;
    for (std::size_t row = 0; row < customers.rowCount(); ++row) {
        const std::string held =
            "a.faccountid=(select fitemid from tblAccount where fNumber='1122') and "
            "a.fYear=2025 and a.fDetailId in (select c.fdetailId from tblItemDetailV as c, "
            "tblItemDetailV as d where d.fdetailId=c.fdetailId and c.fitemid=" +
            customers.text(row, "fitemid");
        const std::string code = "客户|" + customers.text(row, "fNumber");
        const Movement given = listed(voucherCall("1122", code, 2025, 1, 12, ""), 1);
        Movement wanted = stored(held + ")");
        wanted.income = given.income;
        EXPECT_EQ(given, wanted) << code;
        const Movement narrowed = listed(voucherCall("1122", code + "|部门|00:03", 2025, 1, 12, ""), 1);
        wanted = stored(held + ofBoth + ")");
        wanted.income = narrowed.income;
        EXPECT_EQ(narrowed, wanted) << code;
        moved += given.debit != 0 ? 1 : 0;
    }
    EXPECT_GT(moved, 10);
}

TEST_F(DemoVouchers, ComeInPagesOfTwoHundred)
{
    std::int64_t sum = 0, count = 0, rows = 0;
    std::string before;
    for (int page = 1;; ++page) {
        const ProcedureResult result = connection->call(voucherCall("1002", "", 2025, 1, 12, "", page));
        const Recordset& lines = *result.rows;
        for (std::size_t row = 0; row < lines.rowCount(); ++row) {
            sum += fen(lines.number(row, "fDebit"));
            EXPECT_LE(before, lines.text(row, "fdate"));
            before = lines.text(row, "fdate");
        }
        rows += static_cast<std::int64_t>(lines.rowCount());
        count = result.moreRows.at(0).integer(0, "fcount");
        if (lines.rowCount() < 200)
            break;
        EXPECT_EQ(lines.rowCount(), 200U);
    }
    EXPECT_EQ(rows, count);
    EXPECT_GT(rows, 400);
    EXPECT_EQ(sum, listed(voucherCall("1002", "", 2025, 1, 12, ""), 1).debit);
}

} // namespace
} // namespace selfreport
