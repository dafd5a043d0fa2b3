#pragma once

#include <QByteArray>

namespace spreadsheet {

/// A number of two bytes in a font's table, high byte first as in all of OpenType; 0 if the table is shorter.
inline int numberIn(const QByteArray& table, qsizetype at)
{
    if (at + 1 >= table.size())
        return 0;
    return static_cast<unsigned char>(table[at]) << 8 | static_cast<unsigned char>(table[at + 1]);
}

} // namespace spreadsheet
