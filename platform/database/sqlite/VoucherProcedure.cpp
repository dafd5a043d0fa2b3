#include "platform/database/sqlite/VoucherProcedure.h"

#include "platform/database/session/DatabaseError.h"
#include "platform/database/sqlite/procedure_parameters.h"
#include "platform/database/sqlite/tsql_rewriter.h"
#include "text/ascii.h"

#include <algorithm>

namespace selfreport {

namespace {

constexpr std::int64_t linesOnPage = 200;

/// The account and all below it: vouchers are posted to the last level.
constexpr std::string_view below =
    "with recursive below(id) as (select fitemid from tblAccount where fNumber=?1 union select b.fitemid "
    "from below cross join tblAccount as b on b.fParentId=below.id) ";

constexpr std::string_view lineColumns =
    "select substr(v.fdate,1,10) as fdate,v.fPeriod,v.fnumber,e.fentryid as fline,b.fNumber as "
    "faccount,c.fnumber as fcurrency,v.fexplanation as ftext,e.fDebit,e.fCredit,e.fDebitFor,e.fCreditFor,"
    "e.fDebitQty,e.fCreditQty,v.fcarryover";

constexpr std::string_view totalColumns =
    "select v.fcarryover,count(*) as fcount,round(sum(e.fDebit),4) as fDebit,round(sum(e.fCredit),4) as "
    "fCredit,round(sum(e.fDebitFor),4) as fDebitFor,round(sum(e.fCreditFor),4) as fCreditFor,"
    "round(sum(e.fDebitQty),4) as fDebitQty,round(sum(e.fCreditQty),4) as fCreditQty";

std::string_view takePiece(std::string_view& text, char separator)
{
    const std::size_t end = std::min(text.find(separator), text.size());
    const std::string_view piece = text.substr(0, end);
    text.remove_prefix(std::min(end + 1, text.size()));
    return piece;
}

std::string numberOf(SqliteStatement& statement)
{
    std::string number = statement.step() ? statement.text(0) : std::string();
    statement.reset();
    return number;
}

/// A table's name as it may stand in a statement.
std::string asName(const std::string& table)
{
    const bool isPlain =
        table.find_first_not_of("abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789_.") ==
        std::string::npos;
    std::string quoted = "\"";
    for (const char c : table)
        quoted += c == '"' ? "\"\"" : std::string(1, c);
    return isPlain ? table : quoted + '"';
}

/// Adds a value and gives its place in the statement.
std::string place(std::vector<SqlValue>& values, SqlValue value)
{
    values.push_back(std::move(value));
    return "?" + std::to_string(values.size());
}

/// The condition of one class on a code: one code, a pattern or a range.
std::string codeCondition(std::string_view codes, std::vector<SqlValue>& values)
{
    const auto next = [&] { return place(values, std::string(ascii::trimmed(takePiece(codes, ':'), " "))); };
    if (codes.find(':') != std::string_view::npos) {
        const std::string first = next();
        return "i.fNumber>=" + first + " and i.fNumber<=" + next();
    }
    std::string code(ascii::trimmed(codes, " "));
    const bool isPattern = code.find('*') != std::string::npos;
    std::ranges::replace(code, '*', '_');
    return (isPattern ? "i.fNumber like " : "i.fNumber=") + place(values, std::move(code));
}

std::string ofPeriods(const std::string& voucher, const std::string& year, const std::string& first,
                      const std::string& last)
{
    return " and " + voucher + ".fYear=" + year + " and " + voucher + ".fPeriod>=" + first + " and " +
           voucher + ".fPeriod<=" + last;
}

} // namespace

VoucherProcedure::VoucherProcedure(const SqliteDatabase& database)
    : m_statements(database, toEmbeddedSql)
{
}

/// Ledgers of earlier versions have other tables of vouchers, or none.
bool VoucherProcedure::hasVouchers()
{
    SqliteStatement& tables =
        m_statements.statement("select 1 from pragma_table_info('tblVoucher') where name='fcarryover'");
    if (numberOf(tables).empty())
        return false;
    return !numberOf(m_statements.statement("select 1 from tblVoucher limit 1")).empty();
}

/// Which combinations count. A class that is unknown or has no codes narrows nothing.
std::string VoucherProcedure::itemConditions(std::string_view items, std::vector<SqlValue>& values)
{
    if (items.empty())
        return {};
    std::string conditions = " and e.fDetailId<>0";
    while (!items.empty()) {
        const SqlValue className = std::string(ascii::trimmed(takePiece(items, '|'), " "));
        const std::string_view codes = takePiece(items, '|');
        if (codes.empty())
            continue;
        SqliteStatement& tables =
            m_statements.statement("select fitemtable from tblItemClass where fItemname=?");
        tables.bind({&className, 1});
        const std::string table = numberOf(tables);
        if (table.empty())
            continue;
        conditions += " and e.fDetailId in (select x.fdetailId from tblItemDetailV as x join " +
                      asName(table) + " as i on i.fitemid=x.fitemid where " + codeCondition(codes, values) +
                      ")";
    }
    return conditions;
}

ProcedureResult VoucherProcedure::run(const ProcedureCall& call)
{
    ProcedureResult result{.returnValue = 0};
    if (!hasVouchers())
        return result;
    std::vector<SqlValue> values{std::string(trimmedParameter(call, "account"))};
    std::string rows =
        " from below cross join tblVoucherEntry as e on e.faccountid=below.id cross join "
        "tblVoucher as v on v.fvoucherid=e.fvoucherid left join tblAccount as b on "
        "b.fitemid=e.faccountid left join tblCurrency as c on c.fitemid=e.fCurrencyid where 1=1";
    if (const std::string code(trimmedParameter(call, "currenct")); !code.empty()) {
        const SqlValue bound = code;
        SqliteStatement& currencies =
            m_statements.statement("select fitemid from tblCurrency where fnumber=?");
        currencies.bind({&bound, 1});
        const std::string currency = numberOf(currencies);
        if (currency.empty())
            return result;
        rows += " and e.fCurrencyid=" + currency;
    }
    const auto year = wholeNumber(call, "fYear");
    const auto last = wholeNumber(call, "fPeriod2");
    const std::string latestYear = "(select max(fYear) from tblAccountBal)";
    const std::string ofYear = year ? place(values, *year) : latestYear;
    const std::string first = place(values, wholeNumber(call, "fPeriod1").value_or(1));
    const std::string until =
        last ? place(values, *last)
             : "(select ifnull(max(fPeriod),1) from tblAccountBal where fYear=" + ofYear + ")";
    rows += ofPeriods("v", ofYear, first, until);
    // Vouchers are numbered about as they are posted, so most lines of other periods are not even looked at.
    const std::string bound =
        "(fvoucherid) from tblVoucher as p where 1=1" + ofPeriods("p", ofYear, first, until);
    rows += " and e.fvoucherid>=(select min" + bound + ") and e.fvoucherid<=(select max" + bound + ")";
    rows += itemConditions(trimmedParameter(call, "items"), values);
    result.returnValue = 1;
    SqliteStatement& totals = m_statements.statement(std::string(below) + std::string(totalColumns) + rows +
                                                     " group by v.fcarryover order by v.fcarryover");
    totals.bind(values);
    result.moreRows.push_back(totals.rows());
    const std::int64_t page = wholeNumber(call, "page").value_or(1);
    const std::string offset = place(values, page < 1 ? std::int64_t{-1} : (page - 1) * linesOnPage);
    SqliteStatement& lines =
        m_statements.statement(std::string(below) + std::string(lineColumns) + rows +
                               " order by v.fdate,v.fvoucherid,e.fentryid limit case when " + offset +
                               "<0 then 0 else " + std::to_string(linesOnPage) + " end offset " + offset);
    lines.bind(values);
    result.rows = lines.rows();
    return result;
}

} // namespace selfreport
