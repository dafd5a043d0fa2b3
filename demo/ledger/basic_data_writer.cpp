#include "demo/ledger/chart_of_accounts.h"
#include "demo/ledger/ledger_writer.h"
#include "platform/database/Connection.h"

namespace selfreport::demo {

namespace {

SqlValue text(std::string_view value)
{
    return std::string(value);
}

struct ItemClassRow {
    int id;
    const char* name;
    const char* table;
    ItemClass bit;
};

constexpr ItemClassRow itemClasses[] = {
    {customerClass, "客户", "tblCustomer", byCustomer},
    {supplierClass, "供应商", "tblSupplier", bySupplier},
    {goodsClass, "商品", "tblGoods", byGoods},
    {departmentClass, "部门", "tblDepartment", byDepartment},
};

void writeAccounts(Connection& connection, const LedgerBook& book)
{
    for (const BookAccount& account : book.accounts()) {
        connection.execute(
            "insert into tblAccount(fitemid,fNumber,fName,fParentId,fLevel,fIsDetail,fDirection) "
            "values(?,?,?,?,?,?,?)",
            {integer(account.id), text(account.code), text(account.name), integer(account.parent),
             integer(account.level), integer(account.isLeaf ? 1 : 0), integer(account.direction)});
        for (const ItemClassRow& row : itemClasses)
            if ((account.items & row.bit) != 0)
                connection.execute("insert into tblAccountHSDetail(fDetailId,fitemclassid) values(?,?)",
                                   {integer(account.id), integer(row.id)});
    }
}

template <typename Item>
void writeItems(Connection& connection, const char* table, const std::vector<Item>& items)
{
    const std::string sql = std::string("insert into ") + table + "(fitemid,fNumber,fName) values(?,?,?)";
    for (const Item& item : items)
        connection.execute(sql, {integer(item.id), text(item.code), text(item.name)});
}

void writeSuiteRows(Connection& connection)
{
    static constexpr const char* rows[] = {
        "insert into tblCurrency(fitemid,fnumber,fname) values(1,'RMB','人民币')",
        "insert into tblCurrency(fitemid,fnumber,fname) values(2,'USD','美元')",
        "insert into tbluser(fuserid,fusername) values('admin','系统管理员')",
        "insert into tbluser(fuserid,fusername) values('wang','王会计')",
        "insert into tbluser(fuserid,fusername) values('li','李主管')",
        "insert into tbluser(fuserid,fusername) values('chen','陈出纳')",
        "insert into tblsystemprivillenge(fitemid,fnumber,fname,fisdetail,fparentid) "
        "values(500,'R','财务会计',0,0)",
        "insert into tblsystemprivillenge(fitemid,fnumber,fname,fisdetail,fparentid) "
        "values(520,'R05','报表',0,500)",
        "insert into tblsystemprivillenge(fitemid,fnumber,fname,fisdetail,fparentid) "
        "values(521,'R0501','自定义报表',0,520)",
    };
    for (const char* row : rows)
        connection.execute(row);
}

} // namespace

void writeBasicData(Connection& connection, const LedgerBook& book, const DemoItems& items)
{
    writeSuiteRows(connection);
    writeAccounts(connection, book);
    for (const ItemClassRow& row : itemClasses)
        connection.execute("insert into tblItemClass(fitemclassid,fItemname,fitemtable) values(?,?,?)",
                           {integer(row.id), text(row.name), text(row.table)});
    writeItems(connection, "tblDepartment", items.departments);
    writeItems(connection, "tblCustomer", items.customers);
    writeItems(connection, "tblSupplier", items.suppliers);
    writeItems(connection, "tblGoods", items.goods);
    for (const DemoCombination& combination : items.combinations)
        for (const auto& [itemClass, item] : combination.items)
            connection.execute("insert into tblItemDetailV(fdetailId,fitemclassid,fitemid) values(?,?,?)",
                               {integer(combination.detail), integer(itemClass), integer(item)});
}

} // namespace selfreport::demo
