-- The fetch types that sp_GS_AcctProc knows. Formulas of stored reports hold fKey: never renumber.
insert into tblSelfReportFieldKey(noid,fKey,fKeyName) select 1,'1',N'期初余额'
  where not exists(select 1 from tblSelfReportFieldKey where fKey='1')
insert into tblSelfReportFieldKey(noid,fKey,fKeyName) select 2,'2',N'期末余额'
  where not exists(select 1 from tblSelfReportFieldKey where fKey='2')
insert into tblSelfReportFieldKey(noid,fKey,fKeyName) select 3,'3',N'借方发生额'
  where not exists(select 1 from tblSelfReportFieldKey where fKey='3')
insert into tblSelfReportFieldKey(noid,fKey,fKeyName) select 4,'4',N'贷方发生额'
  where not exists(select 1 from tblSelfReportFieldKey where fKey='4')
insert into tblSelfReportFieldKey(noid,fKey,fKeyName) select 5,'5',N'借方累计发生额'
  where not exists(select 1 from tblSelfReportFieldKey where fKey='5')
insert into tblSelfReportFieldKey(noid,fKey,fKeyName) select 6,'6',N'贷方累计发生额'
  where not exists(select 1 from tblSelfReportFieldKey where fKey='6')
insert into tblSelfReportFieldKey(noid,fKey,fKeyName) select 7,'7',N'损益发生额'
  where not exists(select 1 from tblSelfReportFieldKey where fKey='7')
insert into tblSelfReportFieldKey(noid,fKey,fKeyName) select 8,'8',N'损益累计发生额'
  where not exists(select 1 from tblSelfReportFieldKey where fKey='8')
insert into tblSelfReportFieldKey(noid,fKey,fKeyName) select 9,'9',N'期初数量'
  where not exists(select 1 from tblSelfReportFieldKey where fKey='9')
insert into tblSelfReportFieldKey(noid,fKey,fKeyName) select 10,'10',N'期末数量'
  where not exists(select 1 from tblSelfReportFieldKey where fKey='10')
insert into tblSelfReportFieldKey(noid,fKey,fKeyName) select 11,'11',N'收入数量'
  where not exists(select 1 from tblSelfReportFieldKey where fKey='11')
insert into tblSelfReportFieldKey(noid,fKey,fKeyName) select 12,'12',N'发出数量'
  where not exists(select 1 from tblSelfReportFieldKey where fKey='12')
insert into tblSelfReportFieldKey(noid,fKey,fKeyName) select 13,'13',N'期末借方余额'
  where not exists(select 1 from tblSelfReportFieldKey where fKey='13')
insert into tblSelfReportFieldKey(noid,fKey,fKeyName) select 14,'14',N'期末贷方余额'
  where not exists(select 1 from tblSelfReportFieldKey where fKey='14')
go
