#include "windows/pickers/item_classes.h"

#include "platform/database/Connection.h"
#include "platform/database/dialect/sql_text.h"

namespace selfreport {

ItemClasses itemClassesOf(Connection& connection, const std::string& account)
{
    const Recordset rows = connection.query(
        "select b.fitemclassid,b.fitemname from tblAccountHSDetail as a  left outer join tblItemclass as  b "
        "on "
        "a.fitemclassid=b.fitemclassid   where a.fDetailId in (select fitemid as fDetailId from tblAccount "
        " where fNumber='" +
        sqlQuoted(account) + "')");
    ItemClasses classes;
    for (std::size_t row = 0; row < rows.rowCount(); ++row) {
        classes.ids.append(QString::fromStdString(rows.text(row, "fitemclassid")));
        classes.names.append(QString::fromStdString(rows.text(row, "fitemname")));
    }
    return classes;
}

} // namespace selfreport
