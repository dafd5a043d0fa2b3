-- Fetches an amount of the general ledger for self-made reports. What it means is written down in docs/ledger.md.
--
-- @strSql    " from tblAccountBal as a left outer join ... where ..." as a report's call hands it over
-- @strField  fetch type, a fKey of tblSelfReportFieldKey
-- @currenct  currency code: original amounts of that currency; blank: base amounts of all currencies
-- @fYear     blank: the latest year of the ledger
-- @fPeriod1  first period; blank: 1
-- @fPeriod2  last period; blank: the last one with balances in that year
--
-- Returns 1 and a row set with column f, empty if no row of the ledger matches; 0 without a row set for an unknown
-- fetch type or currency.
--
-- A procedure of that name that is not ours, which a suite's own database has, is left alone. To put ours in its
-- place run "create table #replaceAcctProc(yes int)" before, in the same session. Rights that were granted stay.
if object_id('sp_GS_AcctProc') is not null and object_id('tempdb..#replaceAcctProc') is null
    and not exists(select 1 from sys.sql_modules where object_id=object_id('sp_GS_AcctProc')
      and (definition like '%self-report ledger procedure, version [0-9]%'
        or definition like '%and a.fDetailId in ( select v.fdetailId from %')) -- version 1
  raiserror(N'sp_GS_AcctProc 已存在，且不是本模块的过程，没有改动', 16, 1)
else
begin
  if object_id('sp_GS_AcctProc') is null
    exec('create procedure sp_GS_AcctProc as return 0')
  exec(N'alter procedure sp_GS_AcctProc
  @strSql varchar(2000), @strField varchar(100), @currenct varchar(50), @fYear varchar(10), @fPeriod1 varchar(10),
  @fPeriod2 varchar(10)
as
begin -- self-report ledger procedure, version 2
  set nocount on
  declare @returned int
  exec @returned=sp_GS_SelfReportAmount @strSql, @strField, @currenct, @fYear, @fPeriod1, @fPeriod2
  return @returned
end')
end
go
