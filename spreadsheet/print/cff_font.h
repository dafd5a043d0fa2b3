#pragma once
#include <QByteArray>
#include <QPainterPath>

#include <vector>

namespace spreadsheet {

/// A letter as a font program draws it, in thousandths of the font size; y grows downwards.
struct FontLetter {
    QPainterPath outline;
    double width = 0;
};

/// A font program in the Compact Font Format (Adobe technical notes 5176, 5177), the letters numbered from 0
/// on, as PDF embeds it for text that is written in numbers of letters.
QByteArray cffFont(const QByteArray& name, const std::vector<FontLetter>& letters, const QRectF& box);

} // namespace spreadsheet
