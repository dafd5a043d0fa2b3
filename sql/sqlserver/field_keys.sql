-- The fetch types that sp_GS_AcctProc knows. Formulas of stored reports hold fKey: never renumber. Rows that a suite has
-- already keep their numbers and names.
insert into tblSelfReportFieldKey(noid,fKey,fKeyName)
select k.place+(select isnull(max(noid),0) from tblSelfReportFieldKey), k.fKey, k.fKeyName from (
  select 0 as place,'' as fKey,N'' as fKeyName
  union all select 1,'1',N'期初余额'
  union all select 2,'2',N'期末余额'
  union all select 3,'3',N'借方发生额'
  union all select 4,'4',N'贷方发生额'
  union all select 5,'5',N'借方累计发生额'
  union all select 6,'6',N'贷方累计发生额'
  union all select 7,'7',N'损益发生额'
  union all select 8,'8',N'损益累计发生额'
  union all select 9,'9',N'期初数量'
  union all select 10,'10',N'期末数量'
  union all select 11,'11',N'收入数量'
  union all select 12,'12',N'发出数量'
  union all select 13,'13',N'期末借方余额'
  union all select 14,'14',N'期末贷方余额'
) as k where k.place>0 and not exists(select 1 from tblSelfReportFieldKey as t where t.fKey=k.fKey)
go
