#include "spreadsheet/print/PdfCanvas.h"

#include "spreadsheet/print/GlyphRecord.h"
#include "spreadsheet/values/twips.h"

#include <QPaintEngine>
#include <QPainter>
#include <QPainterPath>

#include <charconv>
#include <cmath>
#include <optional>
#include <string>

namespace spreadsheet {

namespace {

constexpr double unitsPerInch = twipsPerInch * PdfCanvas::unitsPerTwip;
constexpr double slant = 0.3;           // of a made-up italic, as the toolkit draws it
constexpr double boldStroke = 1.0 / 40; // of the font size, around the letters of a made-up bold

/// The texts of a page's content, written straight behind each other.
class Operators {
public:
    Operators& number(double value)
    {
        char digits[32];
        const auto end = std::to_chars(std::begin(digits), std::end(digits), std::llround(value)).ptr;
        m_text.append(digits, end).push_back(' ');
        return *this;
    }
    /// With three decimals.
    Operators& fraction(double value)
    {
        char digits[32];
        const auto end =
            std::to_chars(std::begin(digits), std::end(digits), value, std::chars_format::fixed, 3).ptr;
        m_text.append(digits, end).push_back(' ');
        return *this;
    }
    Operators& point(QPointF place) { return number(place.x()).number(place.y()); }
    Operators& word(const char* text)
    {
        m_text.append(text).push_back('\n');
        return *this;
    }
    std::string& text() { return m_text; }
    const std::string& text() const { return m_text; }

private:
    std::string m_text;
};

} // namespace

/// Keeps what the page's graphics state is and writes what changes.
class PdfCanvas::Engine : public QPaintEngine {
public:
    explicit Engine(GlyphRecord& record)
        : QPaintEngine(AllFeatures)
        , m_record(record)
    {
    }

    void open(int paperHeight)
    {
        m_page = Operators();
        m_state = State();
        m_page.text() += "0.005 0 0 -0.005 0 ";
        m_page.number(paperHeight).word("cm\nq");
    }
    QByteArray content() const { return QByteArray::fromStdString(m_page.text() + "Q\n"); }

    bool begin(QPaintDevice* /*device*/) override { return true; }
    bool end() override { return true; }
    Type type() const override { return User; }
    void updateState(const QPaintEngineState& painted) override
    {
        const DirtyFlags changed = painted.state();
        if (changed & DirtyPen)
            m_pen = painted.pen();
        if (changed & DirtyBrush)
            m_brush = painted.brush();
        if (changed & DirtyTransform)
            m_transform = painted.transform();
    }

    void drawRects(const QRectF* rects, int count) override
    {
        useState(*painter());
        for (int i = 0; i < count; ++i) {
            const QRectF rect = m_transform.mapRect(rects[i]);
            m_page.point(rect.topLeft()).number(rect.width()).number(rect.height()).word("re");
        }
        paint(true);
    }
    void drawLines(const QLineF* lines, int count) override
    {
        useState(*painter());
        for (int i = 0; i < count; ++i) {
            m_page.point(m_transform.map(lines[i].p1())).word("m");
            m_page.point(m_transform.map(lines[i].p2())).word("l");
        }
        paint(false);
    }
    void drawPolygon(const QPointF* points, int count, PolygonDrawMode mode) override
    {
        useState(*painter());
        for (int i = 0; i < count; ++i)
            m_page.point(m_transform.map(points[i])).word(i == 0 ? "m" : "l");
        if (mode != PolylineMode)
            m_page.word("h");
        paint(mode != PolylineMode);
    }
    void drawPath(const QPainterPath& path) override
    {
        useState(*painter());
        const QPainterPath mapped = m_transform.map(path);
        for (int i = 0; i < mapped.elementCount(); ++i) {
            const QPainterPath::Element element = mapped.elementAt(i);
            m_page.point(element);
            if (element.isCurveTo()) {
                m_page.point(mapped.elementAt(i + 1)).point(mapped.elementAt(i + 2)).word("c");
                i += 2;
            } else {
                m_page.word(element.isMoveTo() ? "m" : "l");
            }
        }
        paint(true);
    }
    void drawPixmap(const QRectF& /*target*/, const QPixmap& /*picture*/, const QRectF& /*source*/) override
    {
        // pages have none
    }

    void drawGlyphs(const QPainter& painter, QPointF baseline, const QGlyphRun& run, const QColor& colour,
                    double degrees)
    {
        const GlyphRecord::Drawn drawn = m_record.draw(run);
        const QTransform transform = painter.deviceTransform();
        const double size = run.rawFont().pixelSize() * transform.m11();
        useClip(painter);
        useColour(m_state.fill, colour, "rg");
        useFont(drawn.face->number, size);
        if (drawn.isThickened) {
            useColour(m_state.stroke, colour, "RG");
            useWidth(size * boldStroke);
            m_page.word("2 Tr");
        }
        m_page.word("BT");
        const QTransform turn =
            QTransform::fromTranslate(transform.map(baseline).x(), transform.map(baseline).y())
                .rotate(-degrees);
        placeGlyphs(run, drawn, turn, transform.m11(), size);
        m_page.word("ET");
        if (drawn.isThickened)
            m_page.word("0 Tr");
    }

private:
    struct State {
        std::optional<QRect> clip;
        std::optional<QRgb> fill, stroke;
        std::optional<int> width; ///< units
        std::string dashes = "[] 0 d";
        Qt::PenCapStyle cap = Qt::FlatCap;
        int font = 0;
        double fontSize = 0;
    };

    void useState(const QPainter& painter)
    {
        useClip(painter);
        if (m_brush.style() != Qt::NoBrush)
            useColour(m_state.fill, m_brush.color(), "rg");
        if (m_pen.style() != Qt::NoPen)
            usePen();
    }

    /// Only leaving a saved state takes a clip back.
    void useClip(const QPainter& painter)
    {
        std::optional<QRect> clip;
        if (painter.hasClipping())
            clip = painter.deviceTransform().mapRect(painter.clipBoundingRect()).toAlignedRect();
        if (clip == m_state.clip)
            return;
        m_page.word("Q\nq");
        m_state = State();
        m_state.clip = clip;
        if (clip)
            m_page.point(clip->topLeft()).number(clip->width()).number(clip->height()).word("re W n");
    }

    void useColour(std::optional<QRgb>& now, const QColor& colour, const char* change)
    {
        const QRgb rgb = colour.rgb();
        if (now == rgb)
            return;
        now = rgb;
        m_page.fraction(colour.redF()).fraction(colour.greenF()).fraction(colour.blueF()).word(change);
    }

    void useWidth(double units)
    {
        const int width = std::max(static_cast<int>(std::lround(units)), 1);
        if (m_state.width == width)
            return;
        m_state.width = width;
        m_page.number(width).word("w");
    }

    void usePen()
    {
        useColour(m_state.stroke, m_pen.color(), "RG");
        const double width = m_pen.isCosmetic() ? unitsPerTwip : m_pen.widthF() * m_transform.m11();
        useWidth(width);
        if (m_pen.capStyle() != m_state.cap) {
            m_state.cap = m_pen.capStyle();
            m_page.word(m_state.cap == Qt::SquareCap ? "2 J" : m_state.cap == Qt::RoundCap ? "1 J" : "0 J");
        }
        Operators dashes;
        dashes.text() += '[';
        for (const qreal length : m_pen.style() == Qt::SolidLine ? QList<qreal>() : m_pen.dashPattern())
            dashes.number(length * width);
        dashes.text() += "] 0 d";
        if (dashes.text() == m_state.dashes)
            return;
        m_state.dashes = dashes.text();
        m_page.word(dashes.text().c_str());
    }

    void useFont(int number, double size)
    {
        if (number == m_state.font && size == m_state.fontSize)
            return;
        m_state.font = number;
        m_state.fontSize = size;
        m_page.text() += "/F";
        m_page.number(number).fraction(size).word("Tf");
    }

    /// Ends the path that was written.
    void paint(bool isClosed)
    {
        const bool fills = isClosed && m_brush.style() != Qt::NoBrush, strokes = m_pen.style() != Qt::NoPen;
        m_page.word(fills && strokes ? "B" : fills ? "f" : strokes ? "S" : "n");
    }

    /// @param turn  of the letters' directions
    void placeText(QPointF place, const QTransform& turn, bool isSlanted)
    {
        const double slanted = isSlanted ? slant : 0;
        if (turn.isRotating())
            m_page.fraction(turn.m11())
                .fraction(turn.m12())
                .fraction(slanted * turn.m11() - turn.m21())
                .fraction(slanted * turn.m12() - turn.m22());
        else
            m_page.number(1).number(0).fraction(slanted).number(-1);
        m_page.point(place).word("Tm");
    }

    /// A text goes on by the widths that its font tells; where the run goes on otherwise, that is written.
    void placeGlyphs(const QGlyphRun& run, const GlyphRecord::Drawn& drawn, const QTransform& turn,
                     double scale, double size)
    {
        constexpr double noticed = 2; // thousandths of the font size
        const QList<quint32> glyphs = run.glyphIndexes();
        const QList<QPointF> places = run.positions();
        double expected = 0, height = 0;
        bool isOpen = false;
        for (qsizetype i = 0; i < glyphs.size(); ++i) {
            const QPointF place = places[i] * scale;
            if (!isOpen || place.y() != height) {
                if (isOpen)
                    m_page.word(">] TJ");
                placeText(turn.map(place), turn, drawn.isSlanted);
                m_page.text() += "[<";
                expected = place.x();
                height = place.y();
                isOpen = true;
            } else if (const double off = (expected - place.x()) * 1000 / size; std::abs(off) > noticed) {
                m_page.text() += '>';
                m_page.number(off).text() += '<';
                expected -= std::round(off) * size / 1000;
            }
            writeCode(drawn.face->codes[glyphs[i]]);
            expected += m_record.width(*drawn.face, glyphs[i]) * size / 1000;
        }
        if (isOpen)
            m_page.word(">] TJ");
    }

    void writeCode(std::uint16_t code)
    {
        static constexpr char digits[] = "0123456789abcdef";
        const char hex[] = {digits[code >> 12], digits[code >> 8 & 15], digits[code >> 4 & 15],
                            digits[code & 15]};
        m_page.text().append(hex, sizeof hex);
    }

    GlyphRecord& m_record;
    Operators m_page;
    State m_state;
    QPen m_pen;
    QBrush m_brush;
    QTransform m_transform;
};

PdfCanvas::PdfCanvas(GlyphRecord& record)
    : m_engine(std::make_unique<Engine>(record))
{
}

PdfCanvas::~PdfCanvas() = default;

void PdfCanvas::begin(int paperHeight)
{
    m_engine->open(paperHeight);
}

QByteArray PdfCanvas::content() const
{
    return m_engine->content();
}

void PdfCanvas::drawGlyphs(QPainter& painter, QPointF baseline, const QGlyphRun& run, const QColor& colour,
                           double degrees)
{
    m_engine->drawGlyphs(painter, baseline, run, colour, degrees);
}

QPaintEngine* PdfCanvas::paintEngine() const
{
    return m_engine.get();
}

int PdfCanvas::metric(PaintDeviceMetric metric) const
{
    switch (metric) {
    case PdmDpiX:
    case PdmDpiY:
    case PdmPhysicalDpiX:
    case PdmPhysicalDpiY:
        return static_cast<int>(unitsPerInch);
    case PdmWidth:
    case PdmHeight:
        return 1'000'000; // clips nothing
    case PdmDepth:
        return 24;
    case PdmDevicePixelRatio:
        return 1;
    case PdmDevicePixelRatioScaled:
        return static_cast<int>(devicePixelRatioFScale());
    default:
        return 0;
    }
}

} // namespace spreadsheet
