#include "spreadsheet/print/CellBehaviour.h"

#include "spreadsheet/print/PageCells.h"
#include "spreadsheet/workbook/Sheet.h"

#include <QPainter>
#include <QPainterPath>

#include <algorithm>
#include <cmath>

namespace spreadsheet {

// What a type's cells do would else lie in the painter, the mouse, the keys, the printer and the widths of
// columns. A type that does something has a class here and a row at the end.

namespace {

// Cells look alike with every palette of the surroundings, so their controls have colours of their own.
const QColor faceTop(0xFA, 0xFA, 0xFA), faceBottom(0xE6, 0xE6, 0xE6), facePressed(0xD0, 0xD0, 0xD0);
const QColor faceLine(0x8C, 0x8C, 0x8C), faceMark(0x30, 0x30, 0x30);

constexpr int arrowTwips = 240;

void paintFace(QPainter& painter, const QRect& rect, bool isPressed, double radius)
{
    QLinearGradient gradient(rect.topLeft(), rect.bottomLeft());
    gradient.setColorAt(0, faceTop);
    gradient.setColorAt(1, faceBottom);
    painter.setPen(QPen(faceLine, 1));
    painter.setBrush(isPressed ? QBrush(facePressed) : QBrush(gradient));
    painter.drawRoundedRect(QRectF(rect).adjusted(0.5, 0.5, -0.5, -0.5), radius, radius);
}

void paintArrow(QPainter& painter, const QRect& face)
{
    const double half = std::max(std::min(face.width(), face.height()) * 0.2, 2.0);
    const QPointF middle = QRectF(face).center();
    QPainterPath arrow(middle + QPointF(-half, -half / 2));
    arrow.lineTo(middle + QPointF(half, -half / 2));
    arrow.lineTo(middle + QPointF(0, half / 2));
    arrow.closeSubpath();
    painter.fillPath(arrow, faceMark);
}

class StaticText final : public CellBehaviour {
    bool mayType() const override { return false; }
};

class Button final : public CellBehaviour {
    void paint(QPainter& painter, const PageCell& /*cell*/, const QRect& place, double /*twip*/,
               bool isPressed) const override
    {
        paintFace(painter, place.adjusted(1, 1, -2, -2), isPressed, 3); // the line is not covered
    }

    void draw(QPainter& painter, const PageCell& /*cell*/, const QRect& place, double twip,
              const QColor& colour) const override
    {
        const double inset = 20 * twip;
        painter.setPen(QPen(colour, 10 * twip));
        painter.setBrush(Qt::NoBrush);
        painter.drawRect(QRectF(place).adjusted(inset, inset, -inset, -inset));
    }

    Press press(const QRect& /*place*/, QPoint /*point*/, double /*twip*/) const override
    {
        return Press::holds;
    }
    bool takes(Key key) const override { return key == Key::space; }
    void act(CellHost& host, CellAddress cell) const override { host.click(cell); }

    const std::string* caption(const Sheet& sheet, CellAddress cell) const override
    {
        return sheet.shownText(cell).empty() ? sheet.buttonCaption(cell) : nullptr;
    }

    bool mayType() const override { return false; }
};

/// Of a truth value; another text shows as it is.
class CheckBox final : public CellBehaviour {
    void paint(QPainter& painter, const PageCell& cell, const QRect& place, double twip,
               bool /*isPressed*/) const override
    {
        if (!cell.text.isEmpty())
            return;
        const QRect square = squareIn(place, twip);
        painter.setPen(QPen(faceLine, 1));
        painter.setBrush(Qt::white);
        painter.drawRoundedRect(QRectF(square).adjusted(0.5, 0.5, -0.5, -0.5), 1.5, 1.5);
        if (!cell.isTrue)
            return;
        const double size = square.width();
        const QPointF origin = square.topLeft();
        const QPointF tick[] = {origin + QPointF(0.22, 0.52) * size, origin + QPointF(0.43, 0.74) * size,
                                origin + QPointF(0.8, 0.26) * size};
        painter.setPen(QPen(faceMark, std::max(size / 7, 1.5), Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
        painter.drawPolyline(tick, 3);
    }

    void draw(QPainter& painter, const PageCell& cell, const QRect& place, double twip,
              const QColor& colour) const override
    {
        if (!cell.text.isEmpty())
            return;
        const double size = 160 * twip;
        const QRectF square(place.left() + (place.width() - size) / 2.0,
                            place.top() + (place.height() - size) / 2.0, size, size);
        painter.setPen(QPen(colour, 10 * twip));
        painter.setBrush(Qt::NoBrush);
        painter.drawRect(square);
        if (!cell.isTrue)
            return;
        const QPointF tick[] = {square.topLeft() + QPointF(0.2, 0.5) * size,
                                square.topLeft() + QPointF(0.42, 0.75) * size,
                                square.topLeft() + QPointF(0.82, 0.22) * size};
        painter.drawPolyline(tick, 3);
    }

    Press press(const QRect& place, QPoint point, double twip) const override
    {
        const bool hits = squareIn(place, twip).adjusted(-2, -2, 2, 2).contains(point);
        return hits ? Press::acts : Press::goesOn;
    }
    bool takes(Key key) const override { return key == Key::space; }
    void act(CellHost& host, CellAddress cell) const override
    {
        host.put(cell, Value::boolean(!countsAsChecked(host.value(cell))));
    }

    const std::string* caption(const Sheet& sheet, CellAddress cell) const override
    {
        static const std::string none;
        const Value value = sheet.value(cell);
        return value.isText() && !countsAsChecked(value) ? nullptr : &none;
    }

    bool mayType() const override { return false; }

    static QRect squareIn(const QRect& place, double twip)
    {
        const QRect inside = place.adjusted(0, 0, -1, -1); // the line is not covered
        const int size = std::min(pixelsAtLeast(7, 190, twip), std::max(inside.height() - 2, 3));
        return {inside.left() + (inside.width() - size) / 2, inside.top() + (inside.height() - size) / 2,
                size, size};
    }
};

/// A text with an arrow at its right end, on screen only.
class DropDown final : public CellBehaviour {
    void paint(QPainter& painter, const PageCell& /*cell*/, const QRect& place, double twip,
               bool isPressed) const override
    {
        const QRect face = arrowIn(place, twip);
        paintFace(painter, face.adjusted(0, 1, -1, -1), isPressed, 2);
        paintArrow(painter, face);
    }

    Press press(const QRect& place, QPoint point, double twip) const override
    {
        return arrowIn(place, twip).contains(point) ? Press::acts : Press::goesOn;
    }
    bool takes(Key key) const override { return key == Key::open; }
    void act(CellHost& host, CellAddress /*cell*/) const override { host.openList(); }
    int roomBeside(double twip) const override { return pixelsAtLeast(8, arrowTwips, twip); }

    QRect arrowIn(const QRect& place, double twip) const
    {
        const int width = std::min(roomBeside(twip), place.width());
        return {place.right() + 1 - width, place.top(), width - 1, std::max(place.height() - 1, 1)};
    }
};

const CellBehaviour plainCell{};
const StaticText staticText{};
const Button button{};
const CheckBox checkBox{};
const DropDown dropDown{};

struct BehaviourRow {
    CellType type;
    const CellBehaviour& behaviour;
};

const BehaviourRow behaviourRows[] = {
    {CellType::staticText, staticText},
    {CellType::button, button},
    {CellType::dropDown, dropDown},
    {CellType::checkBox, checkBox},
};

} // namespace

void CellBehaviour::paint(QPainter& /*painter*/, const PageCell& /*cell*/, const QRect& /*place*/,
                          double /*twip*/, bool /*isPressed*/) const
{
}

void CellBehaviour::draw(QPainter& /*painter*/, const PageCell& /*cell*/, const QRect& /*place*/,
                         double /*twip*/, const QColor& /*colour*/) const
{
}

CellBehaviour::Press CellBehaviour::press(const QRect& /*place*/, QPoint /*point*/, double /*twip*/) const
{
    return Press::goesOn;
}

bool CellBehaviour::takes(Key /*key*/) const
{
    return false;
}

void CellBehaviour::act(CellHost& /*host*/, CellAddress /*cell*/) const {}

const std::string* CellBehaviour::caption(const Sheet& /*sheet*/, CellAddress /*cell*/) const
{
    return nullptr;
}

int CellBehaviour::roomBeside(double /*twip*/) const
{
    return 0;
}

bool CellBehaviour::mayType() const
{
    return true;
}

const CellBehaviour& behaviourOf(CellType type)
{
    const auto found = std::ranges::find(behaviourRows, type, &BehaviourRow::type);
    return found == std::end(behaviourRows) ? plainCell : found->behaviour;
}

bool countsAsChecked(const Value& value)
{
    if (value.isBoolean())
        return value.boolean();
    return value.isNumber() ? value.number() != 0 : value.isText() && value.textView() == "1";
}

int pixelsAtLeast(int least, double twips, double twip)
{
    return std::max(static_cast<int>(std::lround(twips * twip)), least);
}

} // namespace spreadsheet
