#include "spreadsheet/print/GlyphRecord.h"

#include <algorithm>

namespace spreadsheet {

void GlyphRecord::name(const QRawFont& font, quint32 glyph, const QString& text)
{
    faceOf(font).texts.try_emplace(glyph, text);
}

void GlyphRecord::name(const QRawFont& font, const QList<quint32>& glyphs, const QString& text)
{
    Face& face = faceOf(font);
    for (qsizetype i = 0; i < glyphs.size(); ++i)
        face.texts.try_emplace(glyphs[i], text[i]);
}

void GlyphRecord::draw(const QGlyphRun& run)
{
    Face& face = faceOf(run.rawFont());
    if (!face.used && !run.glyphIndexes().isEmpty()) {
        face.used = true;
        m_used.push_back(&face);
    }
    for (const quint32 glyph : run.glyphIndexes()) {
        if (glyph >= face.drawn.size())
            face.drawn.resize(glyph + 1);
        if (glyph == 0 || face.drawn[glyph])
            continue; // 0 is the sign for a missing character, which every PDF font has from the start
        face.drawn[glyph] = true;
        face.glyphs.push_back(glyph);
    }
}

GlyphRecord::Face& GlyphRecord::faceOf(const QRawFont& font)
{
    const auto known = std::ranges::find(m_byFont, font, &std::pair<QRawFont, Face*>::first);
    if (known != m_byFont.end())
        return *known->second;
    QByteArray name = font.fontTable("name");
    if (name.isEmpty()) // Type 1 fonts have no tables
        name = (font.familyName() + '/' + font.styleName() + '/' + QString::number(font.weight()) + '/' +
                QString::number(font.style()))
                   .toUtf8();
    auto face = std::ranges::find(m_faces, name, &Face::name);
    if (face == m_faces.end())
        face = m_faces.insert(m_faces.end(), Face{name, font, {}, {}, {}});
    m_byFont.emplace_back(font, &*face);
    return *face;
}

} // namespace spreadsheet
