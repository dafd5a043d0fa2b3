#include "spreadsheet/print/GlyphRecord.h"

#include "spreadsheet/print/font_table.h"

#include <algorithm>

namespace spreadsheet {

namespace {

/// What the font file's face is by itself (OpenType, tables OS/2 and head).
struct OwnLook {
    bool isBold = false, isItalic = false;
};

OwnLook ownLook(const QRawFont& font)
{
    const QByteArray metrics = font.fontTable("OS/2"), head = font.fontTable("head");
    const int selection = numberIn(metrics, 62), style = numberIn(head, 44);
    constexpr int boldWeight = 600;
    return {(selection & 1 << 5) != 0 || (style & 1) != 0 || numberIn(metrics, 4) >= boldWeight,
            (selection & 1) != 0 || (style & 2) != 0};
}

} // namespace

void GlyphRecord::name(const QRawFont& font, quint32 glyph, const QString& text)
{
    faceOf(font).face->texts.try_emplace(glyph, text);
}

void GlyphRecord::name(const QRawFont& font, const QList<quint32>& glyphs, const QString& text)
{
    Face& face = *faceOf(font).face;
    for (qsizetype i = 0; i < glyphs.size(); ++i)
        face.texts.try_emplace(glyphs[i], text[i]);
}

GlyphRecord::Drawn GlyphRecord::draw(const QGlyphRun& run)
{
    const Drawn& drawn = faceOf(run.rawFont());
    Face& face = *drawn.face;
    const QList<quint32> glyphs = run.glyphIndexes();
    if (face.number == 0 && !glyphs.isEmpty()) {
        m_used.push_back(&face);
        face.number = static_cast<int>(m_used.size());
    }
    for (const quint32 glyph : glyphs) {
        if (glyph >= face.codes.size())
            face.codes.resize(glyph + 1);
        if (glyph == 0 || face.codes[glyph] != 0)
            continue; // 0 is the sign for a missing character, which every PDF font has from the start
        face.glyphs.push_back(glyph);
        face.codes[glyph] = static_cast<std::uint16_t>(face.glyphs.size());
    }
    return drawn;
}

double GlyphRecord::width(Face& face, quint32 glyph)
{
    constexpr float unknown = -1;
    if (glyph >= face.widths.size())
        face.widths.resize(glyph + 1, unknown);
    float& width = face.widths[glyph];
    if (width == unknown) {
        const QList<QPointF> advances = face.font.advancesForGlyphIndexes({glyph});
        width = static_cast<float>(advances.value(0).x() * 1000 / face.font.pixelSize());
    }
    return width;
}

QByteArray GlyphRecord::nameOf(const QRawFont& font)
{
    QByteArray name = font.fontTable("name");
    if (name.isEmpty()) // Type 1 fonts have no tables
        name = (font.familyName() + '/' + font.styleName() + '/' + QString::number(font.weight()) + '/' +
                QString::number(font.style()))
                   .toUtf8();
    return name;
}

const GlyphRecord::Drawn& GlyphRecord::faceOf(const QRawFont& font)
{
    const auto known = std::ranges::find(m_byFont, font, &std::pair<QRawFont, Drawn>::first);
    if (known != m_byFont.end())
        return known->second;
    const QByteArray name = nameOf(font);
    auto face = std::ranges::find(m_faces, name, &Face::name);
    if (face == m_faces.end())
        face = m_faces.insert(m_faces.end(), Face{name, font});
    const OwnLook own = ownLook(font);
    const bool isSlanted = font.style() != QFont::StyleNormal && !own.isItalic;
    const bool isThickened = font.weight() >= QFont::Bold && !own.isBold;
    if (!face->isPlain) {
        face->font = font;
        face->isPlain = !isSlanted && !isThickened;
        face->isThickened = isThickened;
    }
    return m_byFont.emplace_back(font, Drawn{&*face, isSlanted, isThickened}).second;
}

} // namespace spreadsheet
