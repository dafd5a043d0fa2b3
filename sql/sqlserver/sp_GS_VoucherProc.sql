-- The body of sp_GS_VoucherProc; see below.
if object_id('sp_GS_SelfReportVoucher') is null
  exec('create procedure sp_GS_SelfReportVoucher as return 0')
go
alter procedure sp_GS_SelfReportVoucher
  @account varchar(50),
  @items varchar(2000),
  @fYear varchar(10),
  @fPeriod1 varchar(10),
  @fPeriod2 varchar(10),
  @currenct varchar(50),
  @page varchar(10)
as
begin
  set nocount on
  declare @currency int, @year int, @first int, @last int, @before int
  if not exists(select 1 from tblVoucher)
    return 0
  if ltrim(rtrim(@currenct))<>''
  begin
    select @currency=fitemid from tblCurrency where fnumber=ltrim(rtrim(@currenct))
    if @currency is null
      return 0
  end
  set @year=case when ltrim(rtrim(@fYear))='' then (select max(fYear) from tblAccountBal) else cast(@fYear as int) end
  set @first=case when ltrim(rtrim(@fPeriod1))='' then 1 else cast(@fPeriod1 as int) end
  set @last=case when ltrim(rtrim(@fPeriod2))='' then
    isnull((select max(fPeriod) from tblAccountBal where fYear=@year),1) else cast(@fPeriod2 as int) end
  set @before=case when ltrim(rtrim(@page))='' then 0 else (cast(@page as int)-1)*200 end

  -- The account and all below it: vouchers are posted to the last level.
  create table #account(id int not null)
  declare @step int
  insert into #account select fitemid from tblAccount where fNumber=ltrim(rtrim(@account))
  set @step=@@rowcount
  while @step>0
  begin
    insert into #account select b.fitemid from tblAccount as b where b.fParentId in (select id from #account)
      and b.fitemid not in (select id from #account)
    set @step=@@rowcount
  end

  -- The combinations that hold an item of each class with codes. A class that is unknown narrows nothing.
  create table #held(detail int not null)
  declare @rest nvarchar(2000), @class nvarchar(2000), @codes nvarchar(2000), @table nvarchar(200), @end int,
    @sql nvarchar(1000), @code varchar(2000), @other varchar(2000)
  set @rest=ltrim(rtrim(@items))
  if @rest<>N''
    insert into #held select distinct fdetailId from tblItemDetailV where fdetailId<>0
  while @rest<>N''
  begin
    set @end=charindex(N'|', @rest+N'|')
    select @class=left(@rest, @end-1), @rest=substring(@rest, @end+1, 2000)
    set @end=charindex(N'|', @rest+N'|')
    select @codes=left(@rest, @end-1), @rest=substring(@rest, @end+1, 2000), @table=null, @other=''
    if @codes=N''
      continue
    select @table=case when fitemtable collate Latin1_General_BIN2 like '%[^A-Za-z0-9_.]%' then quotename(fitemtable)
      else fitemtable end from tblItemClass where fItemname=@class
    if @table is null
      continue
    set @end=charindex(N':', @codes)
    set @code=ltrim(rtrim(case when @end>0 then left(@codes, @end-1) else replace(@codes, N'*', N'_') end))
    if @end>0 -- what stands behind a second colon means nothing
    begin
      set @codes=substring(@codes, @end+1, 2000)
      set @other=ltrim(rtrim(left(@codes, charindex(N':', @codes+N':')-1)))
    end
    set @sql=N'delete from #held where detail not in (select v.fdetailId from tblItemDetailV as v join '+@table
      +N' as i on i.fitemid=v.fitemid where i.fNumber'
      +case when @end>0 then N'>=@code and i.fNumber<=@other)' when charindex(N'*', @codes)>0 then N' like @code)'
        else N'=@code)' end
    exec sp_executesql @sql, N'@code varchar(2000),@other varchar(2000)', @code=@code, @other=@other
  end

  select v.fvoucherid, e.fentryid, row_number() over (order by v.fdate,v.fvoucherid,e.fentryid) as fplace
    into #line
    from tblVoucherEntry as e join tblVoucher as v on v.fvoucherid=e.fvoucherid
    where e.faccountid in (select id from #account) and v.fYear=@year and v.fPeriod>=@first and v.fPeriod<=@last
      and (@currency is null or e.fCurrencyid=@currency)
      and (ltrim(rtrim(@items))='' or e.fDetailId in (select detail from #held))
  select convert(varchar(10), v.fdate, 120) as fdate, v.fPeriod, v.fnumber, e.fentryid as fline, b.fNumber as faccount,
      c.fnumber as fcurrency, v.fexplanation as ftext, e.fDebit, e.fCredit, e.fDebitFor, e.fCreditFor, e.fDebitQty,
      e.fCreditQty, v.fcarryover
    from #line as l join tblVoucher as v on v.fvoucherid=l.fvoucherid
    join tblVoucherEntry as e on e.fvoucherid=l.fvoucherid and e.fentryid=l.fentryid
    left join tblAccount as b on b.fitemid=e.faccountid left join tblCurrency as c on c.fitemid=e.fCurrencyid
    where l.fplace>@before and l.fplace<=@before+200
    order by l.fplace
  select v.fcarryover, count(*) as fcount, sum(e.fDebit) as fDebit, sum(e.fCredit) as fCredit,
      sum(e.fDebitFor) as fDebitFor, sum(e.fCreditFor) as fCreditFor, sum(e.fDebitQty) as fDebitQty,
      sum(e.fCreditQty) as fCreditQty
    from #line as l join tblVoucher as v on v.fvoucherid=l.fvoucherid
    join tblVoucherEntry as e on e.fvoucherid=l.fvoucherid and e.fentryid=l.fentryid
    group by v.fcarryover order by v.fcarryover
  return 1
end
go
-- The voucher lines behind an amount of the general ledger. What it means is written down in docs/ledger.md.
--
-- @account   code of one account; the lines of all accounts below it count
-- @items     "class|codes|class|codes" as in a report's call; blank: whatever the items
-- @fYear, @fPeriod1, @fPeriod2, @currenct  as sp_GS_AcctProc takes them; blank currency: the lines of all
-- @page      200 lines each, from 1; blank: the first
--
-- Returns 1 with two row sets, the page's lines in the order of date, voucher and line, and the totals of all lines,
-- one row for those that carry profit and loss over and one for the others; 0 without row sets for an unknown currency
-- and where there are no vouchers at all.
--
-- A procedure of that name that is not ours is left alone; "create table #replaceVoucherProc(yes int)" before, in the
-- same session, tells to put ours in its place. Rights that were granted stay.
if object_id('sp_GS_VoucherProc') is not null and object_id('tempdb..#replaceVoucherProc') is null
    and not exists(select 1 from sys.sql_modules where object_id=object_id('sp_GS_VoucherProc')
      and definition like '%self-report voucher procedure, version [0-9]%')
  raiserror(N'sp_GS_VoucherProc 已存在，且不是本模块的过程，没有改动', 16, 1)
else
begin
  if object_id('sp_GS_VoucherProc') is null
    exec('create procedure sp_GS_VoucherProc as return 0')
  exec(N'alter procedure sp_GS_VoucherProc
  @account varchar(50), @items varchar(2000), @fYear varchar(10), @fPeriod1 varchar(10), @fPeriod2 varchar(10),
  @currenct varchar(50), @page varchar(10)
as
begin -- self-report voucher procedure, version 1
  set nocount on
  declare @returned int
  exec @returned=sp_GS_SelfReportVoucher @account, @items, @fYear, @fPeriod1, @fPeriod2, @currenct, @page
  return @returned
end')
end
go
