-- Many calls of sp_GS_AcctProc at once, for reports that make hundreds. The caller fills two tables:
--
--   create table #selfReportText(id int, strSql varchar(2000) collate database_default)
--   create table #selfReportCall(ordinal int, textId int, strField varchar(100) collate database_default,
--     currenct varchar(50) collate database_default, fYear varchar(10) collate database_default,
--     fPeriod1 varchar(10) collate database_default, fPeriod2 varchar(10) collate database_default)
--
-- One row set: callOrdinal, callReturn, the amount f, and n, which is 0 if the call's own row set is empty. A call that
-- has no row here is to be made alone: one that fails, or is written in an uncommon way. The caller looks whether
-- sp_GS_AcctProc is ours and of the same version: it knows when it looked last, and looking costs some servers more than
-- the calls. What a call means is written down in docs/ledger.md.
if object_id('sp_GS_SelfReportAmounts') is null
  exec('create procedure sp_GS_SelfReportAmounts as return 0')
go
alter procedure sp_GS_SelfReportAmounts
as
begin -- self-report ledger procedure, version 2
  set nocount on

  -- The working tables are made from the columns that they are compared with: so they have their collations, whatever
  -- the database's own is.
  select cast(0 as int) as ordinal, cast(0 as int) as textId, cast(k.fKey as varchar(100)) as fKey,
      cast(c.fnumber as varchar(50)) as currenct, cast(null as int) as kind, cast(0 as int) as original,
      cast(null as int) as currencyId, cast(null as int) as fYear, cast(null as int) as firstPeriod,
      cast(null as int) as lastPeriod, cast(0 as int) as side, cast(0 as int) as returned
    into #call from tblSelfReportFieldKey as k cross join tblCurrency as c where 1=0
  select cast(0 as int) as textId, cast(0 as int) as part, cast(0 as int) as isAccount,
      cast(k.fitemtable as varchar(200)) as itemTable, cast(N'' as nvarchar(20)) as compare,
      cast(b.fNumber as varchar(2000)) as low, cast(b.fNumber as varchar(2000)) as high
    into #part from tblItemClass as k cross join tblAccount as b where 1=0

  -- The texts: a known beginning, then conditions on codes, of which all are read in step. Doubled quotes are marked
  -- while the closing one is looked for. Compared as bytes, so that only a quote is one.
  declare @from nvarchar(1000), @plain nvarchar(1000), @joined nvarchar(1000), @step int, @q nvarchar(1), @mark nvarchar(1),
    @where nvarchar(30), @itemTable varchar(200), @name nvarchar(300), @sql nvarchar(max),
    @rows nvarchar(max), @amount nvarchar(max), @latest int
  set @from=N' from tblAccountBal as a left outer join tblAccount as b on a.faccountid=b.fitemid '
    +N' left outer join tblQtyBalance as d on (a.fAccountId=d.fAccountId and a.fYear=d.fYear and '
    +N' a.fPeriod=d.fPeriod and a.fDetailId=d.fDetailid and a.fCurrencyid=d.fCurrencyid ) '
    +N' left outer join tblProfitAndLoss as e on (a.fAccountId=e.fAccountId and a.fYear=e.fYear and '
    +N' a.fPeriod=e.fPeriod and a.fDetailId=e.fDetailid and a.fCurrencyid=e.fCurrencyid ) '
  select @plain=@from+N' where  1=1  ', @q=N'''', @mark=nchar(7), @step=0, @where=N'  where 1=1  and (fNumber',
    @joined=@from+N' left outer join tblItemDetailV as c on c.fdetailId=a.fDetailId   where a.fDetailId<>0 '
  select t.id, cast(case t.beginning when 1 then 0 else 1 end as int) as joins,
      cast(case t.beginning when 0 then 0 else 1 end as int) as isKnown,
      cast(substring(t.strSql, case t.beginning when 1 then len(@plain+N'.') else len(@joined+N'.') end, 2000)
        as nvarchar(2000)) collate Latin1_General_BIN2 as rest,
      cast(N'' as nvarchar(2000)) collate Latin1_General_BIN2 as head,
      cast(N'' as nvarchar(2000)) collate Latin1_General_BIN2 as inside,
      cast(N'' as nvarchar(2000)) as code, cast(N'' as nvarchar(20)) as tail, cast(N'' as nvarchar(20)) as compare,
      cast(null as nvarchar(200)) as itemTable,
      cast(0 as int) as codes, cast(0 as int) as part, cast(0 as int) as isAccount, cast(0 as int) as isRange
    into #text from (select id, strSql, case when charindex(@plain collate Latin1_General_BIN2, strSql)=1 then 1
        when charindex(@joined collate Latin1_General_BIN2, strSql)=1 then 2 else 0 end as beginning
      from #selfReportText) as t
  update #text set isKnown=0 where charindex(@mark, rest)>0
  while 1=1
  begin
    set @step=@step+1
    update #text set codes=@step, head=left(rest, charindex(@q, rest)-1),
        inside=replace(substring(rest, charindex(@q, rest)+1, 2000), @q+@q, @mark)
      where isKnown=1 and charindex(@q, rest)>0
    if @@rowcount=0
      break
    update #text set code=ltrim(rtrim(replace(left(inside, charindex(@q, inside+@q)-1), @mark, @q))),
        rest=replace(substring(inside, charindex(@q, inside+@q)+1, 2000), @mark, @q+@q),
        isKnown=case when charindex(@q, inside)>0 and left(head, len(tail+N'.')-1)=tail then 1 else 0 end,
        head=substring(head, len(tail+N'.'), 2000)
      where codes=@step
    update #text set isAccount=case when codes=1 and left(head, 15)=N' and (b.fNumber' then 1 else 0 end, part=codes,
        itemTable=case when left(head, 40)=N' and c.fitemid in ( select fitemid from ' and charindex(@where, head)>41
          then substring(head, 41, charindex(@where, head)-41) end,
        compare=case when codes=1 and left(head, 15)=N' and (b.fNumber' then substring(head, 16, 20)
          else substring(head, charindex(@where, head)+25, 20) end
      where codes=@step and isKnown=1 and isRange=0
    update #text set isKnown=case when isAccount=0 and (itemTable is null or joins=0) then 0
          when isRange=1 or compare in (N'=', N' like ', N'>=') then 1 else 0 end,
        tail=case when isRange=0 and compare=N'>=' and isAccount=1 then N' and b.fNumber<='
          when isRange=0 and compare=N'>=' then N' and fNumber<=' when isAccount=1 then N')'
          when isRange=1 then N'))' else N' ))' end
      where codes=@step and isKnown=1
    insert into #part(textId, part, isAccount, itemTable, compare, low)
      select id, part, isAccount, itemTable, ltrim(rtrim(compare)), code from #text
      where codes=@step and isKnown=1 and isRange=0
    update p set high=t.code from #part as p join #text as t on t.id=p.textId and t.part=p.part
      where t.codes=@step and t.isKnown=1 and t.isRange=1
    update #text set isRange=case when isRange=0 and compare=N'>=' then 1 else 0 end where codes=@step and isKnown=1
  end
  update #text set isKnown=0 where rest<>tail or len(rest+N'.')<>len(tail+N'.')
    or id in (select p.textId from #part as p where p.isAccount=0
      and not exists(select 1 from tblItemClass as k where k.fitemtable=p.itemTable))
  delete from #part where textId in (select id from #text where isKnown=0)
  update #text set joins=2 where id in (select textId from #part where isAccount=0)

  -- What the calls name. A year or period that is not all digits is left to the call alone.
  insert into #call(ordinal, textId, fKey, currenct, original, fYear, firstPeriod, lastPeriod, side, returned)
    select c.ordinal, c.textId, ltrim(rtrim(c.strField)), ltrim(rtrim(c.currenct)),
      case when ltrim(rtrim(c.currenct))='' then 0 else 1 end,
      case when ltrim(rtrim(c.fYear))='' then null else cast(ltrim(rtrim(c.fYear)) as int) end,
      case when ltrim(rtrim(c.fPeriod1))='' then 1 else cast(ltrim(rtrim(c.fPeriod1)) as int) end,
      case when ltrim(rtrim(c.fPeriod2))='' then null else cast(ltrim(rtrim(c.fPeriod2)) as int) end, 0, 0
    from #selfReportCall as c join #text as t on t.id=c.textId
    where t.isKnown=1 and (ltrim(rtrim(c.fYear))+ltrim(rtrim(c.fPeriod1))+ltrim(rtrim(c.fPeriod2)))
        collate Latin1_General_BIN2 not like '%[^0-9]%'
      and len(ltrim(rtrim(c.fYear)))<10 and len(ltrim(rtrim(c.fPeriod1)))<10 and len(ltrim(rtrim(c.fPeriod2)))<10
  update c set kind=case ltrim(rtrim(k.fKey)) when '1' then 1 when '2' then 2 when '3' then 3 when '4' then 4
      when '5' then 5 when '6' then 6 when '7' then 7 when '8' then 8 when '9' then 9 when '10' then 10
      when '11' then 11 when '12' then 12 when '13' then 13 when '14' then 14 end
    from #call as c join tblSelfReportFieldKey as k on k.fKey=c.fKey
  update c set currencyId=k.fitemid from #call as c join tblCurrency as k on k.fnumber=c.currenct where c.original=1
  update #call set returned=1, side=case kind when 13 then 1 when 14 then -1 else 0 end
    where kind is not null and (original=0 or currencyId is not null)
  if exists(select 1 from #call where returned=1 and fYear is null)
  begin
    select @latest=max(fYear) from tblAccountBal
    update #call set fYear=@latest where fYear is null
  end
  if exists(select 1 from #call where returned=1 and lastPeriod is null)
    update c set lastPeriod=isnull(y.fPeriod,1) from #call as c join (select n.fYear, max(a.fPeriod) as fPeriod
        from (select distinct fYear from #call where lastPeriod is null) as n
        left join tblAccountBal as a on a.fYear=n.fYear group by n.fYear) as y on y.fYear=c.fYear
      where c.lastPeriod is null
  -- only the periods that its kind counts: first, last, or all between
  update #call set firstPeriod=case when kind in (2,5,6,8,10,13,14) then lastPeriod else firstPeriod end,
    lastPeriod=case when kind in (1,9) then firstPeriod else lastPeriod end

  -- The accounts of each text, and those above them.
  select t.id as textId, b.fitemid as account, b.fParentId as above, b.fDirection as direction
    into #account from #text as t join #part as p on p.textId=t.id and p.isAccount=1 and p.compare=N'='
    join tblAccount as b on b.fNumber=p.low
  insert into #account
    select p.textId, b.fitemid, b.fParentId, b.fDirection from #part as p join tblAccount as b on b.fNumber like p.low
      where p.isAccount=1 and p.compare=N'like'
    union all select p.textId, b.fitemid, b.fParentId, b.fDirection from #part as p
      join tblAccount as b on b.fNumber>=p.low and b.fNumber<=p.high where p.isAccount=1 and p.compare=N'>='
    union all select t.id, b.fitemid, b.fParentId, b.fDirection from #text as t cross join tblAccount as b
      where t.isKnown=1 and not exists(select 1 from #part as p where p.textId=t.id and p.isAccount=1);
  with u as (select distinct account, above, 1 as step from #account where textId not in
      (select textId from #part where isAccount=1 and compare=N'=')
    union all select u.account, b.fParentId, u.step+1 from u join tblAccount as b on b.fitemid=u.above where u.step<50)
  select account, above into #above from u where above<>0

  -- The combinations of items that meet all conditions of a text.
  create table #held(textId int, part int, detail int)
  select @itemTable=min(itemTable) from #part where isAccount=0
  while @itemTable is not null
  begin
    select @name=case when fitemtable collate Latin1_General_BIN2 like '%[^A-Za-z0-9_.]%'
        then quotename(fitemtable) else fitemtable end
      from tblItemClass where fitemtable=@itemTable
    set @sql=N'select cast(0 as int) as textId, cast(0 as int) as part, cast(N'''' as nvarchar(20)) as compare, '
      +N'cast(fNumber as varchar(2000)) as low, cast(fNumber as varchar(2000)) as high into #code from '+@name+N' where 1=0
      insert into #code select textId, part, compare, low, high from #part where isAccount=0 and itemTable=@itemTable
      insert into #held select distinct m.textId, m.part, v.fdetailId from (
        select k.textId, k.part, i.fitemid from #code as k join '+@name+N' as i on i.fNumber=k.low where k.compare=N''=''
        union all select k.textId, k.part, i.fitemid from #code as k join '+@name
      +N' as i on i.fNumber like k.low where k.compare=N''like'' union all select k.textId, k.part, i.fitemid '
      +N'from #code as k join '+@name+N' as i on i.fNumber>=k.low and i.fNumber<=k.high where k.compare=N''>='') as m
        join tblItemDetailV as v on v.fitemid=m.fitemid'
    exec sp_executesql @sql, N'@itemTable varchar(200)', @itemTable=@itemTable
    select @itemTable=min(itemTable) from #part where isAccount=0 and itemTable>@itemTable
  end
  select h.textId, h.detail into #detail from #held as h
    join (select textId, count(*) as parts from #part where isAccount=0 group by textId) as p on p.textId=h.textId
    group by h.textId, h.detail, p.parts having count(*)=p.parts

  -- The rows that count, summed by account, and by combination where one side of each is asked for.
  select cast(0 as int) as ordinal, cast(0 as int) as account, cast(0 as int) as detail, cast(0 as int) as side,
      sum(coalesce(a.fEndBal,d.fEndQty,e.fAmount)) as amount, cast(0 as int) as n
    into #row from tblAccountBal as a cross join tblQtyBalance as d cross join tblProfitAndLoss as e where 1=0
  select @amount=N'case c.kind when 1 then a.fBeginBal? when 3 then a.fDebit? when 4 then a.fCredit? when 5 then '
      +N'a.fYtdDebit? when 6 then a.fYtdCredit? when 7 then e.fAmount? when 8 then e.fYtdAmount? when 9 then d.fBeginQty '
      +N'when 10 then d.fEndQty when 11 then d.fDebitQty when 12 then d.fCreditQty else a.fEndBal? end'
  set @amount=N'case c.original when 1 then '+replace(@amount, N'?', N'For')+N' else '+replace(@amount, N'?', N'')+N' end'
  set @sql=N'insert into #row select c.ordinal,m.account,case c.side when 0 then 0 else a.fDetailId end,c.side,sum(case when '
    +N'c.kind in (1,2,9,10) and m.direction<0 then -('+@amount+N') else '+@amount+N' end),count('+@amount+N') from #call as c '
    +N'join #text as t on t.id=c.textId join #account as m on m.textId=c.textId ! join tblAccountBal as a on '
    +N'a.faccountid=m.account and a.fYear=c.fYear and a.fPeriod>=c.firstPeriod and a.fPeriod<=c.lastPeriod and ? '
    +N'left join tblQtyBalance as d on c.kind in (9,10,11,12) and d.fAccountId=a.faccountid and d.fYear=a.fYear and '
    +N'd.fPeriod=a.fPeriod and d.fDetailid=a.fDetailId and d.fCurrencyid=a.fCurrencyid left join tblProfitAndLoss as e '
    +N'on c.kind in (7,8) and e.fAccountId=a.faccountid and e.fYear=a.fYear and e.fPeriod=a.fPeriod and '
    +N'e.fDetailid=a.fDetailId and e.fCurrencyid=a.fCurrencyid where c.returned=1 and (c.original=0 or '
    +N'a.fCurrencyid=c.currencyId) and t.joins=~ group by c.ordinal,m.account,case c.side when 0 then 0 else a.fDetailId end,'
    +N'c.side'
  set @rows=replace(replace(replace(@sql, N'?', N'a.fDetailId=0'), N'~', N'0'), N'!', N'')
  exec sp_executesql @rows
  if exists(select 1 from #part where isAccount=0)
  begin
    set @rows=replace(replace(replace(@sql, N'?', N'a.fDetailId=k.detail'), N'~', N'2'),
      N'!', N'join #detail as k on k.textId=c.textId')
    exec sp_executesql @rows
  end
  if exists(select 1 from #text where joins=1)
  begin
    set @rows=replace(replace(replace(@sql, N'?', N'a.fDetailId<>0'), N'~', N'1'), N'!', N'')
    exec sp_executesql @rows
  end

  -- Of sides the other one is nothing. An account is left out if another that stands above it has rows too.
  update #row set amount=-amount where side=-1
  update #row set amount=0 where side<>0 and amount<0
  select r.ordinal, sum(r.amount) as amount, sum(r.n) as n into #sum from #row as r
    where not exists(select 1 from #above as u join #row as o on o.account=u.above
      where u.account=r.account and o.ordinal=r.ordinal) group by r.ordinal
  select c.ordinal as callOrdinal, c.returned as callReturn, s.amount as f, isnull(s.n,0) as n
    from #call as c left join #sum as s on s.ordinal=c.ordinal
  return 1
end
go
