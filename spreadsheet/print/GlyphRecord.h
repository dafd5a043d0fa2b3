#pragma once
#include <QByteArray>
#include <QGlyphRun>
#include <QRawFont>
#include <QString>

#include <cstdint>
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
        QByteArray name; ///< tells faces apart, also those that share one file
        QRawFont font;   ///< of some size; as the file draws it, if it was ever drawn so
        bool isPlain = false, isThickened = false; ///< what is made up in `font`
        std::vector<quint32> glyphs = {};          ///< drawn, in the order of first use
        std::vector<std::uint16_t> codes = {}; ///< by glyph: its place in that order, from 1; 0: not drawn
        std::unordered_map<quint32, QString> texts = {};
        int number = 0; ///< in the order of first use, from 1, if only by the sign for a missing character
        std::vector<float> widths = {}; ///< of glyphs in thousandths of the font size, as far as asked for
    };

    /// What a run was drawn with.
    struct Drawn {
        Face* face = nullptr;
        bool isSlanted = false;   ///< the face has no italics: they are made up
        bool isThickened = false; ///< … or no bold letters
    };

    /// The glyph stands for this text, unless it is known to stand for another.
    void name(const QRawFont& font, quint32 glyph, const QString& text);
    /// The glyphs stand for the characters of a text, one each.
    void name(const QRawFont& font, const QList<quint32>& glyphs, const QString& text);
    /// The run is drawn next.
    Drawn draw(const QGlyphRun& run);
    /// In thousandths of the font size.
    double width(Face& face, quint32 glyph);

    /// Faces in the order of their first use.
    const std::vector<const Face*>& faces() const { return m_used; }

    /// Tells the face of a font file.
    static QByteArray nameOf(const QRawFont& font);

private:
    const Drawn& faceOf(const QRawFont& font);

    std::deque<Face> m_faces;
    std::vector<const Face*> m_used;
    std::vector<std::pair<QRawFont, Drawn>> m_byFont; ///< a document uses few fonts
};

} // namespace spreadsheet
