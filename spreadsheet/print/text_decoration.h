#pragma once
#include "spreadsheet/print/turned_text.h"

#include <QColor>
#include <QPointF>

class QPainter;

namespace spreadsheet {

struct TextDecoration {
    bool underline = false;
    bool strikeThrough = false;
};

/// Lines under and through a text. Own lines instead of the font's, so that they run straight on where
/// a text takes glyphs from several fonts.
/// @param em    font size in twips
/// @param turn  of the text around the left end of its baseline
void drawDecoration(QPainter& painter, QPointF baseline, double width, double em, TextDecoration decoration,
                    QColor colour, const TextTurn& turn = {});

} // namespace spreadsheet
