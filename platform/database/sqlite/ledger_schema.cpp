#include "platform/database/sqlite/ledger_schema.h"

#include "platform/database/dialect/acct_kinds.h"

namespace selfreport {

namespace {

// Balances are debit-positive: closing = opening + debit - credit. Names ending in For hold the original
// currency, the others base currency. Their keys begin with account and item combination: an account's total
// for a year is one run of rows, and so is a customer's. Fetches over thousands of items have narrow indexes
// of their own that hold all that they read: the balances of one period lie side by side, and of the
// movements only those that are not 0, which most items do not have in most periods.
constexpr const char* balanceTables = R"sql(
create table tblAccountBal(
  faccountid integer not null, fDetailId integer not null, fYear integer not null, fPeriod integer not null,
  fCurrencyid integer not null,
  fBeginBalFor decimal(18,2) not null default 0, fBeginBal decimal(18,2) not null default 0,
  fDebitFor decimal(18,2) not null default 0, fDebit decimal(18,2) not null default 0,
  fCreditFor decimal(18,2) not null default 0, fCredit decimal(18,2) not null default 0,
  fYtdDebitFor decimal(18,2) not null default 0, fYtdDebit decimal(18,2) not null default 0,
  fYtdCreditFor decimal(18,2) not null default 0, fYtdCredit decimal(18,2) not null default 0,
  fEndBalFor decimal(18,2) not null default 0, fEndBal decimal(18,2) not null default 0,
  primary key(faccountid,fDetailId,fYear,fPeriod,fCurrencyid)) without rowid;
create index ixBalanceMovement on tblAccountBal(faccountid,fYear,fDetailId,fPeriod,fCurrencyid,fDebit,fCredit)
  where fDebit<>0 or fCredit<>0;
create index ixBalanceOfPeriod on tblAccountBal(
  faccountid,fYear,fPeriod,fDetailId,fCurrencyid,fBeginBal,fEndBal,fYtdDebit,fYtdCredit);
create table tblQtyBalance(
  fAccountId integer not null, fDetailid integer not null, fYear integer not null, fPeriod integer not null,
  fCurrencyid integer not null,
  fBeginQty decimal(18,4) not null default 0, fDebitQty decimal(18,4) not null default 0,
  fCreditQty decimal(18,4) not null default 0, fYtdDebitQty decimal(18,4) not null default 0,
  fYtdCreditQty decimal(18,4) not null default 0, fEndQty decimal(18,4) not null default 0,
  primary key(fAccountId,fDetailid,fYear,fPeriod,fCurrencyid)) without rowid;
create table tblProfitAndLoss(
  fAccountId integer not null, fDetailid integer not null, fYear integer not null, fPeriod integer not null,
  fCurrencyid integer not null,
  fAmountFor decimal(18,2) not null default 0, fAmount decimal(18,2) not null default 0,
  fYtdAmountFor decimal(18,2) not null default 0, fYtdAmount decimal(18,2) not null default 0,
  primary key(fAccountId,fDetailid,fYear,fPeriod,fCurrencyid)) without rowid;
)sql";

constexpr const char* accountTables = R"sql(
create table tblAccount(
  fitemid integer primary key, fNumber varchar(50) not null collate chinese,
  fName varchar(100) not null collate chinese, fParentId integer not null default 0,
  fLevel integer not null default 1, fIsDetail integer not null default 1,
  fDirection integer not null default 1 check(fDirection in (1,-1)));
create unique index ixAccountNumber on tblAccount(fNumber);
create index ixAccountParent on tblAccount(fParentId);
create table tblAccountHSDetail(
  fDetailId integer not null, fitemclassid integer not null, primary key(fDetailId,fitemclassid)) without rowid;
create table tblCurrency(
  fitemid integer primary key, fnumber varchar(50) not null collate chinese,
  fname varchar(50) not null collate chinese);
create unique index ixCurrencyNumber on tblCurrency(fnumber);
)sql";

constexpr const char* itemTables = R"sql(
create table tblItemClass(
  fitemclassid integer primary key, fItemname varchar(50) not null collate chinese,
  fitemtable varchar(50) not null collate chinese);
create unique index ixItemClassName on tblItemClass(fItemname);
create table tblItemDetailV(
  fdetailId integer not null, fitemclassid integer not null, fitemid integer not null,
  primary key(fdetailId,fitemid)) without rowid;
create index ixItemDetailItem on tblItemDetailV(fitemid,fdetailId);
)sql";

// Lines are found by their account, in the order in which they were posted.
constexpr const char* voucherTables = R"sql(
create table tblVoucher(
  fvoucherid integer primary key, fYear integer not null, fPeriod integer not null, fdate datetime not null,
  fnumber varchar(50) not null collate chinese, fexplanation varchar(200) collate chinese,
  fcarryover integer not null default 0);
create index ixVoucherPeriod on tblVoucher(fYear,fPeriod);
create table tblVoucherEntry(
  fvoucherid integer not null, fentryid integer not null, faccountid integer not null,
  fDetailId integer not null default 0, fCurrencyid integer not null,
  fDebitFor decimal(18,2) not null default 0, fDebit decimal(18,2) not null default 0,
  fCreditFor decimal(18,2) not null default 0, fCredit decimal(18,2) not null default 0,
  fDebitQty decimal(18,4) not null default 0, fCreditQty decimal(18,4) not null default 0,
  primary key(fvoucherid,fentryid)) without rowid;
create index ixVoucherEntryAccount on tblVoucherEntry(faccountid,fvoucherid);
)sql";

std::string itemTable(const std::string& name)
{
    return "create table " + name +
           "(fitemid integer primary key, fNumber varchar(50) not null collate chinese,"
           " fName varchar(100) not null collate chinese);"
           "create unique index ix" +
           name + " on " + name + "(fNumber);";
}

// The content is the last column: it spills over many pages that the others do without.
constexpr const char* suiteTables = R"sql(
create table tbluser(
  fuserid varchar(50) not null primary key collate chinese, fusername varchar(50) not null collate chinese);
create table tblSelfReportFieldKey(
  noid integer primary key, fKey varchar(50) not null collate chinese,
  fKeyName varchar(50) not null collate chinese);
create unique index ixFieldKey on tblSelfReportFieldKey(fKey);
create table tblsystemprivillenge(
  fitemid integer primary key, fnumber varchar(50) not null collate chinese,
  fname varchar(100) collate chinese, fisdetail integer not null default 1, fparentid integer not null default 0);
create index ixPrivilegeNumber on tblsystemprivillenge(fnumber);
create table tblCWSelfReport(
  noid integer primary key, fname varchar(100) collate chinese, fdate datetime, fisshow smallint,
  fbillerid varchar(50) collate chinese,
  fTop decimal(18,4) check(typeof(fTop)<>'text'), fBottom decimal(18,4) check(typeof(fBottom)<>'text'),
  fLeft decimal(18,4) check(typeof(fLeft)<>'text'), fRight decimal(18,4) check(typeof(fRight)<>'text'),
  fDirection integer check(typeof(fDirection)<>'text'),
  fHeader varchar(2000) collate chinese, fFooter varchar(2000) collate chinese, fFileContent image);
create index ixReportName on tblCWSelfReport(fname);
)sql";

std::string fieldKeyRows()
{
    std::string rows;
    for (const AcctKind& kind : acctKinds)
        rows += "insert into tblSelfReportFieldKey values(" + std::string(kind.key) + ",'" +
                std::string(kind.key) + "','" + std::string(kind.name) + "');";
    return rows;
}

} // namespace

std::string ledgerSchemaScript()
{
    std::string script =
        std::string(balanceTables) + accountTables + itemTables + voucherTables + suiteTables;
    for (const char* name : {"tblDepartment", "tblCustomer", "tblSupplier", "tblGoods"})
        script += itemTable(name);
    return script + fieldKeyRows();
}

} // namespace selfreport
