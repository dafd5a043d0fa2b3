#include "fetch/voucher_fetch.h"

#include "failures/failure_text.h"
#include "platform/database/Connection.h"

namespace selfreport {

namespace {

VoucherAmounts amountsOf(const Recordset& rows, std::size_t row)
{
    return {rows.number(row, "fDebit"),     rows.number(row, "fCredit"),   rows.number(row, "fDebitFor"),
            rows.number(row, "fCreditFor"), rows.number(row, "fDebitQty"), rows.number(row, "fCreditQty")};
}

void add(VoucherAmounts& sum, const VoucherAmounts& amounts)
{
    sum.debit += amounts.debit;
    sum.credit += amounts.credit;
    sum.debitFor += amounts.debitFor;
    sum.creditFor += amounts.creditFor;
    sum.debitQuantity += amounts.debitQuantity;
    sum.creditQuantity += amounts.creditQuantity;
}

VoucherLine lineOf(const Recordset& rows, std::size_t row)
{
    return {.date = rows.text(row, "fdate"),
            .number = rows.text(row, "fnumber"),
            .line = rows.integer(row, "fline"),
            .account = rows.text(row, "faccount"),
            .currency = rows.text(row, "fcurrency"),
            .text = rows.text(row, "ftext"),
            .amounts = amountsOf(rows, row),
            .carriesOver = rows.integer(row, "fcarryover") != 0};
}

VoucherPage refused(const DatabaseError& error)
{
    VoucherPage page;
    page.reason = failures::sentenceOf(error);
    if (error.number == procedureMissing) {
        page.state = VoucherPage::State::noProcedure;
        page.reason = "数据库中没有存储过程 sp_GS_VoucherProc，只能追溯到科目、项目和期间";
    } else if (error.number == permissionDenied) {
        page.state = VoucherPage::State::noRight;
        page.reason = "没有执行 sp_GS_VoucherProc 或读取凭证的权限，请数据库管理员授权";
    }
    return page;
}

void readPage(VoucherPage& page, const ProcedureResult& result)
{
    for (std::size_t row = 0; row < result.rows->rowCount(); ++row)
        page.lines.push_back(lineOf(*result.rows, row));
    const Recordset& totals = result.moreRows.front();
    for (std::size_t row = 0; row < totals.rowCount(); ++row) {
        const VoucherAmounts amounts = amountsOf(totals, row);
        add(page.total, amounts);
        if (totals.integer(row, "fcarryover") != 0)
            add(page.carried, amounts);
        page.count += totals.integer(row, "fcount");
    }
    page.state = VoucherPage::State::read;
}

} // namespace

VoucherPage fetchVouchers(Connection& connection, const VoucherArguments& arguments, std::int64_t page)
{
    ProcedureCall call{"sp_GS_VoucherProc", {}};
    call.append("account", 50, arguments.account)
        .append("items", 2000, arguments.items)
        .append("fYear", 10, arguments.year)
        .append("fPeriod1", 10, arguments.firstPeriod)
        .append("fPeriod2", 10, arguments.lastPeriod)
        .append("currenct", 50, arguments.currency)
        .append("page", 10, std::to_string(page));
    const ProcedureResult result = connection.call(call);
    if (result.error)
        return refused(*result.error);
    VoucherPage read;
    if (result.returnValue != 1 || !result.rows || result.moreRows.empty()) {
        read.state = VoucherPage::State::none;
        read.reason = "账套中没有可读的凭证，只能追溯到科目、项目和期间";
        return read;
    }
    try {
        readPage(read, result);
    } catch (const DatabaseError& error) { // another procedure of that name
        read = {};
        read.reason = "sp_GS_VoucherProc 给出的凭证读不出：" + failures::sentenceOf(error);
    }
    return read;
}

} // namespace selfreport
