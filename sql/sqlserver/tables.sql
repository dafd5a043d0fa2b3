-- The tables of the suite that self-made reports read or write. What stands in the database already is left as it is.
-- Balances are debit-positive: closing = opening + debit - credit. Names ending in For hold the original
-- currency, the others base currency. Parents hold the totals of their children, fDetailId 0 the total of all
-- item combinations.

if object_id('tblAccountBal') is null
begin
  create table tblAccountBal(
    faccountid int not null, fDetailId int not null, fYear int not null, fPeriod int not null, fCurrencyid int not null,
    fBeginBalFor decimal(18,2) not null default 0,
    fBeginBal decimal(18,2) not null default 0,
    fDebitFor decimal(18,2) not null default 0,
    fDebit decimal(18,2) not null default 0,
    fCreditFor decimal(18,2) not null default 0,
    fCredit decimal(18,2) not null default 0,
    fYtdDebitFor decimal(18,2) not null default 0,
    fYtdDebit decimal(18,2) not null default 0,
    fYtdCreditFor decimal(18,2) not null default 0,
    fYtdCredit decimal(18,2) not null default 0,
    fEndBalFor decimal(18,2) not null default 0,
    fEndBal decimal(18,2) not null default 0,
    primary key(faccountid,fDetailId,fYear,fPeriod,fCurrencyid));
  create index ixBalanceMovement on tblAccountBal(faccountid,fYear,fDetailId,fPeriod,fCurrencyid,fDebit,fCredit);
  create index ixBalanceYear on tblAccountBal(fYear,fPeriod); -- the latest ones stand at its end
end
go
if object_id('tblQtyBalance') is null
  create table tblQtyBalance(
    fAccountId int not null, fDetailid int not null, fYear int not null, fPeriod int not null, fCurrencyid int not null,
    fBeginQty decimal(18,4) not null default 0,
    fDebitQty decimal(18,4) not null default 0,
    fCreditQty decimal(18,4) not null default 0,
    fYtdDebitQty decimal(18,4) not null default 0,
    fYtdCreditQty decimal(18,4) not null default 0,
    fEndQty decimal(18,4) not null default 0,
    primary key(fAccountId,fDetailid,fYear,fPeriod,fCurrencyid))
go
if object_id('tblProfitAndLoss') is null
  create table tblProfitAndLoss(
    fAccountId int not null, fDetailid int not null, fYear int not null, fPeriod int not null, fCurrencyid int not null,
    fAmountFor decimal(18,2) not null default 0,
    fAmount decimal(18,2) not null default 0,
    fYtdAmountFor decimal(18,2) not null default 0,
    fYtdAmount decimal(18,2) not null default 0,
    primary key(fAccountId,fDetailid,fYear,fPeriod,fCurrencyid))
go
if object_id('tblAccount') is null
begin
  create table tblAccount(
    fitemid int not null primary key,
    fNumber varchar(50) collate Chinese_PRC_CI_AS not null unique,
    fName varchar(100) collate Chinese_PRC_CI_AS not null,
    fParentId int not null default 0,
    fLevel int not null default 1,
    fIsDetail int not null default 1,
    fDirection int not null default 1 check(fDirection in (1,-1))) -- 1 debit, -1 credit;
  create index ixAccountParent on tblAccount(fParentId);
end
go
if object_id('tblAccountHSDetail') is null
  create table tblAccountHSDetail( -- item classes of an account; fDetailId is its fitemid
    fDetailId int not null, fitemclassid int not null,
    primary key(fDetailId,fitemclassid))
go
if object_id('tblCurrency') is null
  create table tblCurrency(
    fitemid int not null primary key,
    fnumber varchar(50) collate Chinese_PRC_CI_AS not null unique,
    fname varchar(50) collate Chinese_PRC_CI_AS not null)
go
if object_id('tblItemClass') is null
  create table tblItemClass(
    fitemclassid int not null primary key,
    fItemname varchar(50) collate Chinese_PRC_CI_AS not null unique,
    fitemtable varchar(50) collate Chinese_PRC_CI_AS not null)
go
if object_id('tblItemDetailV') is null
begin
  create table tblItemDetailV( -- the items of each combination
    fdetailId int not null, fitemclassid int not null, fitemid int not null,
    primary key(fdetailId,fitemid));
  create index ixItemDetailItem on tblItemDetailV(fitemid,fdetailId);
end
go
if object_id('tblDepartment') is null
  create table tblDepartment(
    fitemid int not null primary key,
    fNumber varchar(50) collate Chinese_PRC_CI_AS not null unique,
    fName varchar(100) collate Chinese_PRC_CI_AS not null)
go
if object_id('tblCustomer') is null
  create table tblCustomer(
    fitemid int not null primary key,
    fNumber varchar(50) collate Chinese_PRC_CI_AS not null unique,
    fName varchar(100) collate Chinese_PRC_CI_AS not null)
go
if object_id('tblSupplier') is null
  create table tblSupplier(
    fitemid int not null primary key,
    fNumber varchar(50) collate Chinese_PRC_CI_AS not null unique,
    fName varchar(100) collate Chinese_PRC_CI_AS not null)
go
if object_id('tblGoods') is null
  create table tblGoods(
    fitemid int not null primary key,
    fNumber varchar(50) collate Chinese_PRC_CI_AS not null unique,
    fName varchar(100) collate Chinese_PRC_CI_AS not null)
go
if object_id('tblVoucher') is null
begin
  create table tblVoucher(
    fvoucherid int not null primary key, fYear int not null, fPeriod int not null, fdate datetime not null,
    fnumber varchar(50) collate Chinese_PRC_CI_AS not null,
    fexplanation varchar(200) collate Chinese_PRC_CI_AS,
    fcarryover int not null default 0); -- 1: carries profit and loss over, so its amounts are no income or cost
  create index ixVoucherPeriod on tblVoucher(fYear,fPeriod);
end
go
if object_id('tblVoucherEntry') is null
begin
  create table tblVoucherEntry(
    fvoucherid int not null, fentryid int not null, faccountid int not null, fDetailId int not null default 0,
    fCurrencyid int not null,
    fDebitFor decimal(18,2) not null default 0,
    fDebit decimal(18,2) not null default 0,
    fCreditFor decimal(18,2) not null default 0,
    fCredit decimal(18,2) not null default 0,
    fDebitQty decimal(18,4) not null default 0,
    fCreditQty decimal(18,4) not null default 0,
    primary key(fvoucherid,fentryid));
  create index ixVoucherEntryAccount on tblVoucherEntry(faccountid,fvoucherid);
end
go
if object_id('tbluser') is null
  create table tbluser(
    fuserid varchar(50) collate Chinese_PRC_CI_AS not null primary key,
    fusername varchar(50) collate Chinese_PRC_CI_AS not null)
go
if object_id('tblSelfReportFieldKey') is null
  create table tblSelfReportFieldKey(
    noid int not null primary key,
    fKey varchar(50) collate Chinese_PRC_CI_AS not null unique,
    fKeyName varchar(50) collate Chinese_PRC_CI_AS not null)
go
if object_id('tblsystemprivillenge') is null
begin
  create table tblsystemprivillenge(
    fitemid int not null primary key,
    fnumber varchar(50) collate Chinese_PRC_CI_AS not null,
    fname varchar(100) collate Chinese_PRC_CI_AS,
    fisdetail int not null default 1,
    fparentid int not null default 0);
  create index ixPrivilegeNumber on tblsystemprivillenge(fnumber);
end
go
if object_id('tblCWSelfReport') is null
begin
  create table tblCWSelfReport(
    noid int not null primary key,
    fname varchar(100) collate Chinese_PRC_CI_AS,
    fdate datetime,
    fisshow smallint,
    fbillerid varchar(50) collate Chinese_PRC_CI_AS,
    fTop decimal(18,4), fBottom decimal(18,4), fLeft decimal(18,4), fRight decimal(18,4), -- inches
    fDirection int,
    fHeader varchar(2000) collate Chinese_PRC_CI_AS,
    fFooter varchar(2000) collate Chinese_PRC_CI_AS,
    fFileContent image);
  create index ixReportName on tblCWSelfReport(fname);
end
go
