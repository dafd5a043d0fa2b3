#include "spreadsheet/print/turned_text.h"

#include <QTextBoundaryFinder>

#include <algorithm>
#include <cmath>
#include <limits>
#include <numbers>

namespace spreadsheet {

namespace {

struct Direction {
    double cosine, sine;
};

Direction directionOf(double degrees)
{
    if (degrees == 90 || degrees == -90) // lines that run straight up leave no hair's breadth aside
        return {0, degrees / 90};
    const double angle = degrees * std::numbers::pi / 180;
    return {std::cos(angle), std::sin(angle)};
}

} // namespace

QSizeF TextTurn::extent(QSizeF block) const
{
    const auto [cosine, sine] = directionOf(degrees);
    return {block.width() * cosine + block.height() * std::abs(sine),
            block.width() * std::abs(sine) + block.height() * cosine};
}

QPointF TextTurn::turned(QPointF point) const
{
    const auto [cosine, sine] = directionOf(degrees);
    return {point.x() * cosine + point.y() * sine, point.y() * cosine - point.x() * sine};
}

double TextTurn::longestLine(QSizeF room, double height) const
{
    const auto [cosine, sine] = directionOf(degrees);
    double longest = std::numeric_limits<double>::max();
    if (cosine > 0)
        longest = (room.width() - height * std::abs(sine)) / cosine;
    if (sine != 0)
        longest = std::min(longest, (room.height() - height * cosine) / std::abs(sine));
    return std::max(longest, 0.0);
}

TextTurn turnOf(const CellStyle& style)
{
    const int code = style.carried.rotation;
    if (code == CarriedAlignment::stackedLetters)
        return {0, true};
    return {static_cast<double>(code <= 90 ? code : 90 - std::min(code, 180)), false};
}

QString stackedLetters(const QString& text)
{
    QString lines;
    QTextBoundaryFinder finder(QTextBoundaryFinder::Grapheme, text);
    for (qsizetype from = 0, to = finder.toNextBoundary(); to > from;
         from = to, to = finder.toNextBoundary()) {
        const QString letter = text.mid(from, to - from);
        if (letter == QChar('\n'))
            continue;
        lines += (lines.isEmpty() ? QString() : QStringLiteral("\n")) + letter;
    }
    return lines;
}

} // namespace spreadsheet
