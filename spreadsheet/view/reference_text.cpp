#include "spreadsheet/view/reference_text.h"

#include "spreadsheet/formula/ReferenceSlot.h"
#include "spreadsheet/workbook/Workbook.h"

#include <QRegularExpression>
#include <QStringList>

namespace spreadsheet {

QString cycledReference(const QString& reference)
{
    static const QRegularExpression corner(QStringLiteral(R"(^(\$?)([A-Za-z]*)(\$?)([0-9]*)$)"));
    const qsizetype mark = reference.lastIndexOf('!');
    QStringList corners = reference.mid(mark + 1).split(':');
    bool column = false, row = false;
    for (qsizetype i = 0; i < corners.size(); ++i) {
        const auto match = corner.match(corners[i]);
        if (!match.hasMatch())
            return reference;
        const bool hasColumn = !match.captured(2).isEmpty();
        const bool hasRow = !match.captured(4).isEmpty();
        if (i == 0) {
            const bool columnFixed = hasColumn && !match.captured(1).isEmpty();
            const bool rowFixed = !(hasColumn ? match.captured(3) : match.captured(1)).isEmpty();
            // Both, row only, column only, none; of whole rows or columns only one.
            row =
                hasColumn ? columnFixed == rowFixed && !rowFixed ? true : columnFixed && rowFixed : !rowFixed;
            column = hasRow ? columnFixed == rowFixed ? !columnFixed : rowFixed : !columnFixed;
        }
        corners[i] = (hasColumn && column ? "$" : "") + match.captured(2) + (hasRow && row ? "$" : "") +
                     match.captured(4);
    }
    return reference.left(mark + 1) + corners.join(':');
}

QString referenceText(const Workbook& workbook, int formulaSheet, int sheet, const CellRange& range)
{
    const Sheet& target = workbook.sheet(sheet);
    const SheetSettings& settings = target.settings();
    const CellAddress first{range.left, range.top};
    std::string text = sheet == formulaSheet ? std::string() : sheetPrefix(target.name());
    if (range.top == 1 && range.bottom >= settings.rowCount)
        text += columnName(range.left) + ":" + columnName(range.right);
    else if (range.left == 1 && range.right >= settings.columnCount)
        text += std::to_string(range.top) + ":" + std::to_string(range.bottom);
    else if (target.extent(first) == range)
        text += cellName(first);
    else
        text += cellName(first) + ":" + cellName({range.right, range.bottom});
    return QString::fromStdString(text);
}

} // namespace spreadsheet
