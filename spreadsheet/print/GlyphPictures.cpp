#include "spreadsheet/print/GlyphPictures.h"

#include <QCoreApplication>
#include <QPaintEngine>
#include <QPainter>
#include <QThread>

#include <algorithm>
#include <cmath>
#include <optional>

namespace spreadsheet {

namespace {

constexpr double largest = 48; // pixels high
constexpr int sheetWidth = 512;
constexpr std::size_t mostLooks = 64;
constexpr qsizetype mostBytes = 32'000'000;
constexpr int quarters = 4; // of a pixel, at which letters may begin
// Places are often half of a step; so that rounding goes one way whatever stands before the point.
constexpr double tieBreak = 0.01;

/// As the toolkit counts them, which cuts places down to 64ths of a pixel and forgives one.
int quartersTo(double place)
{
    return (static_cast<int>(std::floor(place * 64 + tieBreak)) + 1) >> 4;
}

bool isWhole(double number)
{
    return number == std::round(number);
}

/// Opaque letters upright on a picture or a window, one unit as long across as down.
bool serves(const QPainter& painter, const QTransform& transform, double size, const QColor& colour)
{
    return QThread::currentThread() == qApp->thread() &&
           painter.paintEngine()->type() == QPaintEngine::Raster && transform.m11() > 0 &&
           transform.m11() == transform.m22() && size <= largest && painter.opacity() == 1 &&
           colour.alpha() == 255 && painter.compositionMode() == QPainter::CompositionMode_SourceOver;
}

/// What of a letter's colour covers a pixel: the toolkit's drawing over white, or over black for light
/// letters, tells it.
class Coverage {
public:
    explicit Coverage(QRgb colour)
        : m_isLight(qGray(colour) > 127)
    {
        const int parts[] = {qRed(colour), qGreen(colour), qBlue(colour)};
        const auto* const told =
            m_isLight ? std::ranges::max_element(parts) : std::ranges::min_element(parts);
        m_shift = 16 - 8 * static_cast<int>(told - parts);
        m_range = m_isLight ? *told : 255 - *told;
    }
    QRgb ground() const { return m_isLight ? 0xFF000000 : 0xFFFFFFFF; }
    int of(QRgb pixel) const
    {
        const int part = static_cast<int>(pixel >> m_shift & 0xFF);
        return std::min(((m_isLight ? part : 255 - part) * 255 + m_range / 2) / m_range, 255);
    }

private:
    bool m_isLight;
    int m_shift = 0, m_range = 255;
};

/// The part of a picture that is not transparent.
QRect inkOf(const QImage& picture)
{
    QRect ink;
    for (int y = 0; y < picture.height(); ++y) {
        const auto* const line = reinterpret_cast<const QRgb*>(picture.constScanLine(y));
        for (int x = 0; x < picture.width(); ++x)
            if (line[x] != 0)
                ink |= QRect(x, y, 1, 1);
    }
    return ink;
}

} // namespace

GlyphPictures& GlyphPictures::shared()
{
    // Never taken down: the toolkit's fonts go with its application, before this would.
    static auto* const pictures = new GlyphPictures;
    return *pictures;
}

bool GlyphPictures::draw(QPainter& painter, QPointF baseline, const QGlyphRun& run, const QColor& colour)
{
    const QTransform transform = painter.deviceTransform();
    const QRawFont font = run.rawFont();
    if (!serves(painter, transform, font.pixelSize() * transform.m11(), colour))
        return false;
    const bool isScaled = transform.type() == QTransform::TxScale;
    if (isScaled)
        painter.setWorldMatrixEnabled(false);
    const QTransform whole = isScaled ? painter.deviceTransform() : transform;
    const bool canPlace =
        whole.type() <= QTransform::TxTranslate && isWhole(whole.dx()) && isWhole(whole.dy());
    if (canPlace) {
        dropIfTooMany();
        Letters& letters = lettersOf(font, transform.m11(), colour.rgb());
        const QPoint shift(static_cast<int>(whole.dx()), static_cast<int>(whole.dy()));
        const QList<quint32> glyphs = run.glyphIndexes();
        const QList<QPointF> positions = run.positions();
        for (qsizetype i = 0; i < glyphs.size(); ++i) {
            const QPointF place = transform.map(baseline + positions[i]);
            const int across = quartersTo(place.x());
            const int pixel = across >> 2; // also left of the device
            const Glyph& glyph = glyphOf(letters, glyphs[i], across & 3);
            if (!glyph.place.isEmpty())
                painter.drawImage(QPoint(pixel, static_cast<int>(std::floor(place.y() + 0.5 + tieBreak))) +
                                      glyph.offset - shift,
                                  letters.sheet, glyph.place);
        }
    }
    if (isScaled)
        painter.setWorldMatrixEnabled(true);
    return canPlace;
}

/// Never within a run, whose letters are referred to.
void GlyphPictures::dropIfTooMany()
{
    if (m_bytes <= mostBytes && m_letters.size() < mostLooks)
        return;
    m_letters.clear();
    m_last = nullptr;
    m_bytes = 0;
}

GlyphPictures::Letters& GlyphPictures::lettersOf(const QRawFont& font, double scale, QRgb colour)
{
    const auto isThis = [&](const Letters& letters) {
        return letters.colour == colour && letters.scale == scale && letters.font == font;
    };
    if (m_last && isThis(*m_last))
        return *m_last;
    auto found = std::ranges::find_if(m_letters, isThis);
    if (found == m_letters.end())
        found = m_letters.insert(m_letters.end(), Letters{font, scale, colour, {}, {}, 0, {}});
    m_last = &*found;
    return *found;
}

const GlyphPictures::Glyph& GlyphPictures::glyphOf(Letters& letters, quint32 glyph, int quarter)
{
    const quint32 key = glyph * quarters + static_cast<quint32>(quarter);
    const auto known = letters.glyphs.find(key);
    return known != letters.glyphs.end()
               ? known->second
               : letters.glyphs.emplace(key, drawn(letters, glyph, quarter)).first->second;
}

GlyphPictures::Glyph GlyphPictures::drawn(Letters& letters, quint32 glyph, int quarter)
{
    const QRectF bounds = letters.font.boundingRect(glyph);
    const double em = letters.font.pixelSize(), aside = em / 3; // made-up slants and strokes
    const QRect room = QRectF(bounds.topLeft() * letters.scale, bounds.size() * letters.scale)
                           .adjusted(-aside * letters.scale - 2, -3, aside * letters.scale + 3, 3)
                           .toAlignedRect();
    const Coverage coverage(letters.colour);
    QImage picture(room.size(), QImage::Format_RGB32);
    picture.fill(coverage.ground());
    QPainter painter(&picture);
    painter.translate(-room.left() + static_cast<double>(quarter) / quarters, -room.top());
    painter.scale(letters.scale, letters.scale);
    painter.setPen(QColor(letters.colour));
    QGlyphRun run;
    run.setRawFont(letters.font);
    run.setGlyphIndexes({glyph});
    run.setPositions({QPointF()});
    painter.drawGlyphRun({}, run);
    painter.end();
    picture.reinterpretAsFormat(QImage::Format_ARGB32_Premultiplied);
    for (int y = 0; y < picture.height(); ++y) {
        auto* const line = reinterpret_cast<QRgb*>(picture.scanLine(y));
        for (int x = 0; x < picture.width(); ++x)
            line[x] =
                qPremultiply((letters.colour & 0xFFFFFF) | static_cast<QRgb>(coverage.of(line[x])) << 24);
    }
    const QRect ink = inkOf(picture);
    return {room.topLeft() + ink.topLeft(), ink.isEmpty() ? QRect() : placed(letters, picture, ink)};
}

/// Puts the inked part of a picture on the sheet, in rows.
QRect GlyphPictures::placed(Letters& letters, const QImage& picture, const QRect& inked)
{
    QPoint& next = letters.next;
    if (next.x() + inked.width() > sheetWidth) {
        next = {0, next.y() + letters.rowHeight};
        letters.rowHeight = 0;
    }
    const QRect place(next, inked.size());
    letters.rowHeight = std::max(letters.rowHeight, place.height());
    next.rx() += place.width();
    if (letters.sheet.height() <= place.bottom()) { // twice as high: seldom
        QImage higher(sheetWidth, std::max(place.bottom() + 1, 2 * letters.sheet.height()),
                      QImage::Format_ARGB32_Premultiplied);
        higher.fill(0);
        m_bytes += higher.sizeInBytes() - letters.sheet.sizeInBytes();
        std::copy_n(letters.sheet.constBits(), letters.sheet.sizeInBytes(), higher.bits());
        letters.sheet = higher;
    }
    for (int y = 0; y < place.height(); ++y)
        std::copy_n(reinterpret_cast<const QRgb*>(picture.constScanLine(inked.top() + y)) + inked.left(),
                    place.width(),
                    reinterpret_cast<QRgb*>(letters.sheet.scanLine(place.top() + y)) + place.left());
    return place;
}

} // namespace spreadsheet
