#pragma once
#include "spreadsheet/display/CellStyle.h"
#include "spreadsheet/values/CellAddress.h"

#include <QByteArray>

#include <string_view>

class QDataStream;

namespace spreadsheet {

// Fields of packed cells. Reading puts values that nobody may have back into their limits.

QDataStream& operator<<(QDataStream& stream, const CellRange& range);
QDataStream& operator>>(QDataStream& stream, CellRange& range);
QDataStream& operator<<(QDataStream& stream, const CellStyle& style);
QDataStream& operator>>(QDataStream& stream, CellStyle& style);

inline QByteArray bytesOf(std::string_view text)
{
    return {text.data(), static_cast<qsizetype>(text.size())};
}

inline std::string_view viewOf(const QByteArray& bytes)
{
    return {bytes.constData(), static_cast<std::size_t>(bytes.size())};
}

} // namespace spreadsheet
