#pragma once
#include <QByteArray>
#include <QGlyphRun>
#include <QRawFont>
#include <QString>

#include <deque>
#include <unordered_map>
#include <vector>

namespace spreadsheet {

/// Which glyphs of which font faces a document has drawn, in the order of their first use, and which
/// text each glyph stands for. A face is one font file's face; sizes and made-up bold or slanted
/// variants of it are the same face, as they are in a PDF.
class GlyphRecord {
public:
    struct Face {
        QByteArray name;             ///< tells faces apart, also those that share one file
        QRawFont font;               ///< of some size
        std::vector<quint32> glyphs; ///< drawn, in the order of first use
        std::vector<bool> drawn;     ///< by glyph
        std::unordered_map<quint32, QString> texts;
        bool used = false; ///< if only by the sign for a missing character
    };

    /// The glyph stands for this text, unless it is known to stand for another.
    void name(const QRawFont& font, quint32 glyph, const QString& text);
    /// The glyphs stand for the characters of a text, one each.
    void name(const QRawFont& font, const QList<quint32>& glyphs, const QString& text);
    /// The run is drawn next.
    void draw(const QGlyphRun& run);

    /// Faces in the order of their first use.
    const std::vector<const Face*>& faces() const { return m_used; }

private:
    Face& faceOf(const QRawFont& font);

    std::deque<Face> m_faces;
    std::vector<const Face*> m_used;
    std::vector<std::pair<QRawFont, Face*>> m_byFont; ///< a document uses few fonts
};

} // namespace spreadsheet
