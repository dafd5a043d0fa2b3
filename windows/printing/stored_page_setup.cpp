#include "windows/printing/stored_page_setup.h"

#include "windows/printing/PrintedGrid.h"

#include <stdexcept>

namespace selfreport {

void changeStoredPageSetup(PrintedGrid& grid, Connection& connection, std::string_view statement,
                           std::initializer_list<SqlValue> values)
{
    Transaction transaction(connection);
    if (!grid.ownsRow(connection))
        throw std::runtime_error("这张报表的编号现在属于另一张报表，页面设置和页眉页脚没有存入数据库。");
    connection.execute(statement, values);
    transaction.commit();
}

} // namespace selfreport
