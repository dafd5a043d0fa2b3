-- The body of sp_GS_AcctProc; see there.
if object_id('sp_GS_SelfReportAmount') is null
  exec('create procedure sp_GS_SelfReportAmount as return 0')
go
alter procedure sp_GS_SelfReportAmount
  @strSql varchar(2000),
  @strField varchar(100),
  @currenct varchar(50),
  @fYear varchar(10),
  @fPeriod1 varchar(10),
  @fPeriod2 varchar(10)
as
begin
  set nocount on
  declare @key varchar(50), @currency int, @year int, @first int, @last int

  select @key=ltrim(rtrim(fKey)) from tblSelfReportFieldKey where fKey=ltrim(rtrim(@strField))
  -- What a key sums: the amount in base and in original currency; the periods, F the first, L the last, A all of
  -- the range; whether it is signed by the account's direction; one side only of each account and combination.
  declare @amount nvarchar(50), @original nvarchar(50), @periods char(1), @signed int, @side int
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

  if ltrim(rtrim(@currenct))<>''
  begin
    select @currency=fitemid from tblCurrency where fnumber=ltrim(rtrim(@currenct))
    if @currency is null
      return 0
    set @amount=@original
  end

  -- A year or period that is no number is an error of the call.
  set @year=case when ltrim(rtrim(@fYear))='' then (select max(fYear) from tblAccountBal) else cast(@fYear as int) end
  set @first=case when ltrim(rtrim(@fPeriod1))='' then 1 else cast(@fPeriod1 as int) end
  set @last=case when ltrim(rtrim(@fPeriod2))='' then
    isnull((select max(fPeriod) from tblAccountBal where fYear=@year),1) else cast(@fPeriod2 as int) end

  -- Only the text of a report's call is understood: a known beginning, then conditions on codes. The statement is put
  -- together anew from them. So nothing of the text is run, and what stands between quotes becomes a parameter, that
  -- one plan may serve all codes. Six of them have names, more are pieces of one parameter. Texts are compared as
  -- bytes: a collation may take other characters for equal to a quote.
  declare @from nvarchar(max), @rest nvarchar(2000), @head nvarchar(2000), @quote int, @end int, @tail nvarchar(20),
    @column nvarchar(10), @compare nvarchar(20), @table nvarchar(200), @text nvarchar(2000), @value nvarchar(max),
    @handed nvarchar(2000), @codes nvarchar(2000), @texts int, @isRange int, @isOne int, @isUnderstood int,
    @accounts nvarchar(max), @rows nvarchar(max),
    @p1 varchar(2000), @p2 varchar(2000), @p3 varchar(2000), @p4 varchar(2000), @p5 varchar(2000), @p6 varchar(2000)
  set @from=N' from tblAccountBal as a left outer join tblAccount as b on a.faccountid=b.fitemid '
    +N' left outer join tblQtyBalance as d on (a.fAccountId=d.fAccountId and a.fYear=d.fYear and '
    +N' a.fPeriod=d.fPeriod and a.fDetailId=d.fDetailid and a.fCurrencyid=d.fCurrencyid ) '
    +N' left outer join tblProfitAndLoss as e on (a.fAccountId=e.fAccountId and a.fYear=e.fYear and '
    +N' a.fPeriod=e.fPeriod and a.fDetailId=e.fDetailid and a.fCurrencyid=e.fCurrencyid ) '
  select @head=@from+N' where  1=1  ', @rows=N' and a.fDetailId=0'
  select @handed=@strSql, @codes=N''
  if charindex(@head collate Latin1_General_BIN2, @handed)<>1
    select @head=@from+N' left outer join tblItemDetailV as c on c.fdetailId=a.fDetailId   where a.fDetailId<>0 ',
      @rows=N' and a.fDetailId<>0'
  select @isUnderstood=case when charindex(@head collate Latin1_General_BIN2, @handed)=1 then 1 else 0 end,
    @rest=substring(@handed, len(@head+N'.'), 2000), @texts=0, @tail=N'', @isRange=0, @isOne=0, @accounts=N''
  set @quote=charindex(N'''' collate Latin1_General_BIN2, @rest)
  while @isUnderstood=1 and @quote>0
  begin
    set @end=charindex(N'''' collate Latin1_General_BIN2, @rest, @quote+1)
    while @end>0 and substring(@rest, @end+1, 1)=N'''' collate Latin1_General_BIN2 -- doubled
      set @end=charindex(N'''' collate Latin1_General_BIN2, @rest, @end+2)
    select @text=ltrim(rtrim(replace(substring(@rest, @quote+1, @end-@quote-1) collate Latin1_General_BIN2, N'''''',
      N''''))), @head=left(@rest, @quote-1), @texts=@texts+1
    set @rest=substring(@rest, @end+1, 2000)
    set @quote=charindex(N'''' collate Latin1_General_BIN2, @rest)
    if @texts=1 set @p1=@text
    else if @texts=2 set @p2=@text
    else if @texts=3 set @p3=@text
    else if @texts=4 set @p4=@text
    else if @texts=5 set @p5=@text
    else if @texts=6 set @p6=@text
    set @value=case when @texts<=6 then N'@p'+cast(@texts as nvarchar(2)) else N'cast(substring(@codes,'
      +cast(len(@codes+N'.') as nvarchar(4))+N','+cast(len(@text+N'.')-1 as nvarchar(4))+N') as varchar(2000))' end
    if @texts>6 set @codes=@codes+@text

    -- before the quote: the tail of the condition before, then the head of this one
    if left(@head, len(@tail+N'.')-1)<>@tail collate Latin1_General_BIN2
      set @isUnderstood=0
    set @head=substring(@head, len(@tail+N'.'), 2000)
    if @isRange=0
    begin
      if left(@head, 15)=N' and (b.fNumber' collate Latin1_General_BIN2 and @texts=1
        select @column=N'b.fNumber', @compare=substring(@head, 16, 20)
      else
      begin
        select @end=charindex(N'  where 1=1  and (fNumber' collate Latin1_General_BIN2, @head), @table=null
        select @table=case when fitemtable collate Latin1_General_BIN2 like '%[^A-Za-z0-9_.]%'
            then quotename(fitemtable) else fitemtable end
          from tblItemClass where fitemtable=substring(@head, 41, @end-41)
            and left(@head, 40)=N' and c.fitemid in ( select fitemid from ' collate Latin1_General_BIN2
        select @column=N'i.fNumber', @compare=substring(@head, @end+25, 20),
          @rows=@rows+N' and a.fDetailId in(select v.fdetailId from tblItemDetailV as v join '+@table
            +N' as i on i.fitemid=v.fitemid where 1=1'
      end
      select @isRange=case @compare when N'>=' then 1 else 0 end
      if @rows is null or @compare collate Latin1_General_BIN2 not in (N'=', N' like ', N'>=')
        set @isUnderstood=0
    end
    else
      select @compare=N'<=', @isRange=0
    set @value=N' and '+@column+@compare+@value
    if @column=N'b.fNumber'
      select @accounts=@accounts+@value, @isOne=case @compare when N'=' then 1 else 0 end,
        @tail=case @isRange when 1 then N' and b.fNumber<=' else N')' end
    else
      select @rows=@rows+@value+case @isRange when 1 then N'' else N')' end,
        @tail=case when @isRange=1 then N' and fNumber<=' when @compare=N'<=' then N'))' else N' ))' end
  end
  if @isUnderstood=0 or @rest<>@tail collate Latin1_General_BIN2 or len(@rest+N'.')<>len(@tail+N'.')
  begin
    raiserror(N'取数条件不是报表取数的写法', 16, 1)
    return -1
  end

  set @rows=@rows+N' and a.fYear=@year'
    +case @periods when 'F' then N' and a.fPeriod=@first' when 'L' then N' and a.fPeriod=@last'
      else N' and a.fPeriod>=@first and a.fPeriod<=@last' end
    +case when @currency is null then N'' else N' and a.fCurrencyid=@currency' end

  -- The rows of the matched accounts. One of several accounts is left out if another that stands above it has rows too:
  -- it is in that one's amount already.
  set @value=N'select b.fitemid as account,b.fParentId as above,a.fDetailId as detail,'
    +case @signed when 1 then N'case when b.fDirection<0 then -'+@amount+N' else '+@amount+N' end' else @amount end
    +N' as amount from tblAccount as b join tblAccountBal as a on a.faccountid=b.fitemid'
    +case left(@amount, 1) when N'd' then N' left join tblQtyBalance as d on d.fAccountId=a.faccountid and '
      +N'd.fYear=a.fYear and d.fPeriod=a.fPeriod and d.fDetailid=a.fDetailId and d.fCurrencyid=a.fCurrencyid'
      when N'e' then N' left join tblProfitAndLoss as e on e.fAccountId=a.faccountid and '
      +N'e.fYear=a.fYear and e.fPeriod=a.fPeriod and e.fDetailid=a.fDetailId and e.fCurrencyid=a.fCurrencyid' else N'' end
    +N' where 1=1'+@accounts+@rows
  if @isOne=1
    select @head=N'', @from=N' from ('+@value+N') as r'
  else
    select @head=N'with r as ('+@value+N'),u as (select distinct account,above,1 as step from r union all select '
      +N'u.account,b.fParentId,u.step+1 from u join tblAccount as b on b.fitemid=u.above where u.step<50) ',
      @from=N' from r where account not in (select u.account from u where u.above in (select account from r))'
  set @value=@head+case @side when 0 then N'select sum(amount) as f'+@from+N' having count(amount)>0'
    else N'select sum(case when s.amount'+case @side when 1 then N'>0 then s.amount' else N'<0 then -s.amount' end
      +N' else 0 end) as f from (select sum(amount) as amount'
      +@from+N' group by account,detail) as s having count(s.amount)>0' end
  exec sp_executesql @value, N'@year int,@first int,@last int,@currency int,@p1 varchar(2000),
    @p2 varchar(2000),@p3 varchar(2000),@p4 varchar(2000),@p5 varchar(2000),@p6 varchar(2000),@codes nvarchar(2000)',
    @year=@year, @first=@first, @last=@last, @currency=@currency,
    @p1=@p1, @p2=@p2, @p3=@p3, @p4=@p4, @p5=@p5, @p6=@p6, @codes=@codes
  return 1
end
go
