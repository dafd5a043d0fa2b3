-- Calls that leave year or period blank look for the latest ones, which stand at the end of this index. A table of
-- balances of an earlier installation, known by its other index, gains it. The suite's own is left: an index is built
-- under a lock and paid for by every posting, so that it is for those who know the suite to add.
if exists(select 1 from sys.indexes where object_id=object_id('tblAccountBal') and name like 'ixBalanceMovement%')
    and not exists(select 1 from sys.indexes where object_id=object_id('tblAccountBal') and name like 'ixBalanceYear%')
  create index ixBalanceYear on tblAccountBal(fYear,fPeriod)
go
