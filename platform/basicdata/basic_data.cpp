#include "platform/basicdata/basic_data.h"

#include "platform/database/Connection.h"
#include "platform/database/dialect/sql_text.h"

#include <QHash>

#include <stdexcept>

namespace selfreport {

namespace {

QString textOf(const Recordset& rows, std::size_t row, std::string_view column)
{
    return QString::fromStdString(rows.text(row, column));
}

} // namespace

std::vector<ChooserEntry> accountEntries(Connection& connection)
{
    // Parents first, so that each child finds its own; the tree keeps the order of codes among siblings.
    const Recordset rows = connection.query(
        "select fitemid,fNumber,fName,fParentId,fDirection from tblAccount order by fLevel,fNumber");
    std::vector<ChooserEntry> entries;
    QHash<qint64, int> indexOfId;
    for (std::size_t row = 0; row < rows.rowCount(); ++row) {
        const bool isCredit = rows.integer(row, "fDirection") < 0;
        entries.push_back({textOf(rows, row, "fNumber"), textOf(rows, row, "fName"),
                           isCredit ? QStringLiteral("贷") : QStringLiteral("借"),
                           indexOfId.value(rows.integer(row, "fParentId"), -1)});
        indexOfId.insert(rows.integer(row, "fitemid"), static_cast<int>(row));
    }
    return entries;
}

ItemList itemsOfClass(Connection& connection, std::int16_t classId, const std::string& codeField)
{
    const Recordset classes = connection.query(
        "select fItemname,fitemtable from tblItemClass where fitemclassid=" + std::to_string(classId));
    if (classes.isEmpty())
        throw std::runtime_error("核算项目类别不存在: " + std::to_string(classId));
    const std::string table = classes.text(0, "fitemtable");
    if (!isPlainIdentifier(table) || !isPlainIdentifier(codeField))
        throw std::runtime_error("核算项目类别的表名无效: " + table);
    const Recordset rows = connection.query("select * from " + table + " order by " + codeField);
    ItemList list{textOf(classes, 0, "fItemname"), {}};
    for (std::size_t row = 0; row < rows.rowCount(); ++row)
        list.items.push_back({textOf(rows, row, codeField), textOf(rows, row, "fName"), {}, -1});
    return list;
}

} // namespace selfreport
