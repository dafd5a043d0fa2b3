#include "spreadsheet/print/embedded_fonts.h"

#include "spreadsheet/print/cff_font.h"
#include "spreadsheet/print/font_table.h"
#include "spreadsheet/print/text_layer.h"

#include <QCryptographicHash>
#include <QFont>

#include <algorithm>
#include <cmath>

namespace spreadsheet {

// The toolkit's writer embeds fonts too, but asks a font for each of 65,536 characters on the way, which took
// longer than all the rest of a short report, and makes curves of the second degree of those of the third.

namespace {

constexpr int unitsPerSize = 1000; // PDF counts widths and letters in thousandths of the font size

/// What the font's maker allows (OpenType, table OS/2, fsType).
bool mayBeEmbedded(const QRawFont& font)
{
    constexpr int restricted = 0x0002, bitmapsOnly = 0x0200;
    const QByteArray metrics = font.fontTable("OS/2");
    const int allowed = numberIn(metrics, 8);
    return !metrics.isEmpty() && allowed != restricted && (allowed & bitmapsOnly) == 0;
}

/// The face as its file draws it, nothing made up, a thousand units high.
std::optional<QRawFont> plainFont(const GlyphRecord::Face& face)
{
    QRawFont font = face.font;
    if (!face.isPlain) {
        QFont asked(font.familyName());
        asked.setWeight(face.isThickened ? QFont::Normal : static_cast<QFont::Weight>(font.weight()));
        asked.setPixelSize(unitsPerSize);
        asked.setHintingPreference(QFont::PreferNoHinting);
        font = QRawFont::fromFont(asked);
        if (GlyphRecord::nameOf(font) != face.name)
            return std::nullopt;
    }
    font.setPixelSize(unitsPerSize);
    return font;
}

/// The name in the tables of the font file, of letters that need no escape in PDF.
QByteArray plainName(const QRawFont& font)
{
    QByteArray name;
    for (const QChar c : font.familyName() + '-' + font.styleName())
        if (c.unicode() < 0x80 && (c.isLetterOrNumber() || c == '-'))
            name += c.toLatin1();
    return name.startsWith('-') ? "Font" + name : name;
}

/// A part of a font has six letters before its name, other ones for another part.
QByteArray partName(const QRawFont& font, const GlyphRecord::Face& face)
{
    QCryptographicHash hash(QCryptographicHash::Md5);
    hash.addData(face.name);
    hash.addData(QByteArrayView(reinterpret_cast<const char*>(face.glyphs.data()),
                                std::ssize(face.glyphs) * qsizetype(sizeof(quint32))));
    QByteArray tag = hash.result().left(6);
    for (char& letter : tag)
        letter = static_cast<char>('A' + static_cast<unsigned char>(letter) % 26);
    return tag + '+' + plainName(font);
}

QByteArray decimal(double value)
{
    return QByteArray::number(std::round(value * 100) / 100, 'g', 8);
}

/// The widths of letters by code, as in a font's dictionary.
QByteArray widthsOf(const std::vector<FontLetter>& letters)
{
    QByteArray widths = "/W [0 [";
    for (const FontLetter& letter : letters)
        widths += decimal(letter.width) + ' ';
    return widths + "]]";
}

/// A bit for each letter, all of them.
QByteArray allLetters(std::size_t count)
{
    QByteArray bits(static_cast<qsizetype>((count + 7) / 8), '\xFF');
    if (count % 8 != 0)
        bits.back() = static_cast<char>(0xFF << (8 - count % 8));
    return bits;
}

std::vector<FontLetter> lettersOf(const QRawFont& font, const GlyphRecord::Face& face)
{
    QList<quint32> glyphs{0};
    glyphs.append(QList<quint32>(face.glyphs.begin(), face.glyphs.end()));
    const QList<QPointF> advances = font.advancesForGlyphIndexes(glyphs);
    std::vector<FontLetter> letters;
    for (qsizetype i = 0; i < glyphs.size(); ++i)
        letters.push_back({font.pathForGlyph(glyphs[i]), advances.value(i).x()});
    return letters;
}

QByteArray descriptorOf(const QRawFont& font, const QByteArray& name, const QRectF& box)
{
    return "<< /Type /FontDescriptor /FontName /" + name + " /Flags 4 /ItalicAngle 0 /StemV 80 /Ascent " +
           decimal(font.ascent()) + " /Descent " + decimal(-font.descent()) + " /CapHeight " +
           decimal(font.capHeight()) + " /FontBBox [" + decimal(box.left()) + ' ' + decimal(-box.bottom()) +
           ' ' + decimal(box.right()) + ' ' + decimal(-box.top()) + ']';
}

int addObject(PdfUpdate& update, const QByteArray& body)
{
    const int number = update.add();
    update.replace(number, body);
    return number;
}

/// A font of PDF (ISO 32000-1, 9.7) whose codes are the numbers of its letters.
int embed(PdfUpdate& update, const QRawFont& font, const GlyphRecord::Face& face, bool listsLetters)
{
    constexpr int packing = 4;
    const QByteArray name = partName(font, face);
    const std::vector<FontLetter> letters = lettersOf(font, face);
    QRectF box;
    for (const FontLetter& letter : letters)
        box |= letter.outline.controlPointRect();
    const int program = addObject(
        update, PdfUpdate::packed(cffFont(name, letters, box), packing, "/Subtype /CIDFontType0C "));
    QByteArray descriptor = descriptorOf(font, name, box) + " /FontFile3 " + PdfUpdate::referenceTo(program);
    if (listsLetters)
        descriptor += " /CIDSet " + PdfUpdate::referenceTo(
                                        addObject(update, PdfUpdate::packed(allLetters(letters.size()))));
    const int descendant =
        addObject(update, "<< /Type /Font /Subtype /CIDFontType0 /BaseFont /" + name +
                              " /CIDSystemInfo << /Registry (Adobe) /Ordering (Identity) /Supplement 0 >> " +
                              widthsOf(letters) + " /FontDescriptor " +
                              PdfUpdate::referenceTo(addObject(update, descriptor + " >>")) + " >>");
    const int texts = addObject(update, PdfUpdate::packed(characterMap(face)));
    return addObject(update, "<< /Type /Font /Subtype /Type0 /BaseFont /" + name +
                                 "-Identity-H /Encoding /Identity-H /DescendantFonts [" +
                                 PdfUpdate::referenceTo(descendant) + "] /ToUnicode " +
                                 PdfUpdate::referenceTo(texts) + " >>");
}

} // namespace

std::optional<std::vector<int>> embedFonts(PdfUpdate& update, const GlyphRecord& record, bool listsLetters)
{
    std::vector<int> fonts;
    for (const GlyphRecord::Face* const face : record.faces()) {
        const auto font = plainFont(*face);
        if (!font || !mayBeEmbedded(*font))
            return std::nullopt;
        fonts.push_back(embed(update, *font, *face, listsLetters));
    }
    return fonts;
}

} // namespace spreadsheet
