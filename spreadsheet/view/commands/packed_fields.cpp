#include "spreadsheet/view/commands/packed_fields.h"

#include <QDataStream>

#include <algorithm>

namespace spreadsheet {

QDataStream& operator<<(QDataStream& stream, const CellRange& range)
{
    return stream << qint32(range.left) << qint32(range.top) << qint32(range.right) << qint32(range.bottom);
}

QDataStream& operator>>(QDataStream& stream, CellRange& range)
{
    qint32 left = 0, top = 0, right = 0, bottom = 0;
    stream >> left >> top >> right >> bottom;
    range = {left, top, right, bottom};
    return stream;
}

static QDataStream& operator<<(QDataStream& stream, const BorderLine& line)
{
    return stream << quint8(line.style) << quint32(line.colour);
}

static QDataStream& operator>>(QDataStream& stream, BorderLine& line)
{
    quint8 style = 0;
    quint32 colour = 0;
    stream >> style >> colour;
    line = {style <= quint8(lastLineStyle) ? LineStyle(style) : LineStyle::none, colour};
    return stream;
}

QDataStream& operator<<(QDataStream& stream, const CellStyle& style)
{
    const CellFont& font = style.font;
    const int flags = style.wrap | style.locked << 1 | font.bold << 2 | font.italic << 3 |
                      font.underline << 4 | font.strikeThrough << 5;
    stream << quint8(style.type) << quint8(style.decimals) << quint8(style.horizontal)
           << quint8(style.vertical) << quint8(flags) << quint32(style.foreground)
           << quint32(style.background) << bytesOf(font.family.view()) << font.points << style.left
           << style.right << style.top << style.bottom << bytesOf(style.numberFormat.view())
           << quint8(style.carried.across) << quint8(style.carried.down) << style.carried.indent
           << style.carried.rotation;
    return stream;
}

QDataStream& operator>>(QDataStream& stream, CellStyle& style)
{
    quint8 type = 0, decimals = 0, horizontal = 0, vertical = 0, flags = 0;
    quint8 across = 0, down = 0;
    QByteArray family, numberFormat;
    CellFont& font = style.font;
    stream >> type >> decimals >> horizontal >> vertical >> flags >> style.foreground >> style.background >>
        family >> font.points >> style.left >> style.right >> style.top >> style.bottom >> numberFormat >>
        across >> down >> style.carried.indent >> style.carried.rotation;
    style.type = cellTypeOf(type).value_or(CellType::edit);
    style.decimals = std::min(decimals, quint8(15));
    style.horizontal = horizontal <= 3 ? HorizontalAlignment(horizontal) : HorizontalAlignment::general;
    style.vertical = vertical <= 2 ? VerticalAlignment(vertical) : VerticalAlignment::centre;
    style.carried.across = across <= quint8(Spread::distributed) ? Spread(across) : Spread::none;
    style.carried.down = down <= quint8(Spread::distributed) ? Spread(down) : Spread::none;
    style.wrap = flags & 1;
    style.locked = flags & 2;
    font.bold = flags & 4;
    font.italic = flags & 8;
    font.underline = flags & 16;
    font.strikeThrough = flags & 32;
    font.points = font.points >= 1 && font.points <= 409 ? font.points : CellFont().points;
    font.family = Text(viewOf(family));
    style.numberFormat = Text(viewOf(numberFormat));
    return stream;
}

} // namespace spreadsheet
