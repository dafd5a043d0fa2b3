-- Fetches an amount of the general ledger for self-made reports.
--
-- @strSql    " from tblAccountBal as a left outer join ... where ..." over the aliases
--            a balances, b accounts, d quantities, e profit and loss, c items of a combination
-- @strField  fetch type, a fKey of tblSelfReportFieldKey
-- @currenct  currency code: original amounts of that currency; empty: base amounts of all currencies
-- @fYear     empty: the latest year of the ledger
-- @fPeriod1  first period; empty: 1
-- @fPeriod2  last period; empty: the last one with balances
--
-- Returns 1 and a row set with column f, empty if no row of the ledger matches; 0 without a row set for an unknown
-- fetch type or currency.
if object_id('sp_GS_AcctProc') is not null
  drop procedure sp_GS_AcctProc
go
create procedure sp_GS_AcctProc
  @strSql varchar(2000),
  @strField varchar(100),
  @currenct varchar(50),
  @fYear varchar(10),
  @fPeriod1 varchar(10),
  @fPeriod2 varchar(10)
as
begin
  set nocount on
  declare @text nvarchar(max), @amount nvarchar(50), @original nvarchar(50), @side int, @signed int
  declare @periods char(1) -- F first, L last, A all of the range
  declare @key varchar(50), @currency int, @year int, @first int, @last int

  select @key=rtrim(fKey) from tblSelfReportFieldKey where fKey=@strField
  if @key is null
    return 0
  select @amount=k.amount, @original=k.original, @periods=k.periods, @signed=k.signed, @side=k.side
  from (
    select '1' as fKey, N'a.fBeginBal' as amount, N'a.fBeginBalFor' as original, 'F' as periods, 1 as signed, 0 as side
    union all select '2', N'a.fEndBal', N'a.fEndBalFor', 'L', 1, 0
    union all select '3', N'a.fDebit', N'a.fDebitFor', 'A', 0, 0
    union all select '4', N'a.fCredit', N'a.fCreditFor', 'A', 0, 0
    union all select '5', N'a.fYtdDebit', N'a.fYtdDebitFor', 'L', 0, 0
    union all select '6', N'a.fYtdCredit', N'a.fYtdCreditFor', 'L', 0, 0
    union all select '7', N'e.fAmount', N'e.fAmountFor', 'A', 0, 0
    union all select '8', N'e.fYtdAmount', N'e.fYtdAmountFor', 'L', 0, 0
    union all select '9', N'd.fBeginQty', N'd.fBeginQty', 'F', 1, 0
    union all select '10', N'd.fEndQty', N'd.fEndQty', 'L', 1, 0
    union all select '11', N'd.fDebitQty', N'd.fDebitQty', 'A', 0, 0
    union all select '12', N'd.fCreditQty', N'd.fCreditQty', 'A', 0, 0
    union all select '13', N'a.fEndBal', N'a.fEndBalFor', 'L', 0, 1
    union all select '14', N'a.fEndBal', N'a.fEndBalFor', 'L', 0, -1
  ) as k
  where k.fKey=@key
  if @amount is null
    return 0

  if @currenct<>''
  begin
    select @currency=fitemid from tblCurrency where fnumber=@currenct
    if @currency is null
      return 0
    set @amount=@original
  end

  -- A text that is no number is an error of the call.
  set @year=case when ltrim(rtrim(@fYear))='' then (select max(fYear) from tblAccountBal) else cast(@fYear as int) end
  set @first=case when ltrim(rtrim(@fPeriod1))='' then 1 else cast(@fPeriod1 as int) end
  set @last=case when ltrim(rtrim(@fPeriod2))='' then
    isnull((select max(fPeriod) from tblAccountBal where fYear=@year),1) else cast(@fPeriod2 as int) end

  -- A condition on an item means that the combination holds such an item. So two classes narrow each other, and
  -- each balance counts once.
  declare @itemJoin nvarchar(100)
  set @itemJoin=N' left outer join tblItemDetailV as c on c.fdetailId=a.fDetailId  '
  set @text=@strSql
  set @text=replace(@text, N' and c.fitemid in ( select fitemid from ',
    N' and a.fDetailId in ( select v.fdetailId from tblItemDetailV as v inner join ')
  set @text=replace(@text, N'  where 1=1 ', N' as i on i.fitemid=v.fitemid where 1=1 ')
  if charindex(@itemJoin, @text)>0
    set @text=replace(@text, @itemJoin, N' ')
  else
    set @text=@text+N' and a.fDetailId=0'

  set @text=@text+N' and a.fYear=@year'
    +case @periods when 'F' then N' and a.fPeriod=@first' when 'L' then N' and a.fPeriod=@last'
      else N' and a.fPeriod>=@first and a.fPeriod<=@last' end
    +case when @currency is null then N'' else N' and a.fCurrencyid=@currency' end

  -- An account whose parent is matched too is in the parent's amount already.
  set @text=N'select b.fitemid as account,b.fParentId as parent,a.fDetailId as detail,'+@amount
    +case @signed when 1 then N'*b.fDirection' else N'' end+N' as amount into #fetched '+@text
    +case @side when 0 then N' select sum(r.amount) as f from #fetched as r where not exists(select 1 from #fetched '
      +N'as p where p.account=r.parent) having count(r.amount)>0'
      else N' select sum(case when s.amount*@side>0 then s.amount*@side else 0 end) as f from (select sum(r.amount) '
      +N'as amount from #fetched as r where not exists(select 1 from #fetched as p where p.account=r.parent) '
      +N'group by r.account,r.detail) as s having count(*)>0' end
  exec sp_executesql @text, N'@year int,@first int,@last int,@currency int,@side int',
    @year=@year, @first=@first, @last=@last, @currency=@currency, @side=@side
  return 1
end
go
