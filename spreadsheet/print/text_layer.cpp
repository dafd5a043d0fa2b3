#include "spreadsheet/print/text_layer.h"

#include <algorithm>
#include <charconv>
#include <utility>

namespace spreadsheet {

namespace {

using CodeTexts = std::map<quint32, QString>; ///< by the code that shows a glyph in the PDF

/// Splits off the next "<hex>" token as a number; nothing at anything else.
std::optional<quint32> takeHex(QByteArrayView& rest)
{
    while (!rest.isEmpty() && (rest.front() == ' ' || rest.front() == '\n'))
        rest = rest.sliced(1);
    const qsizetype close = rest.indexOf('>');
    quint32 value = 0;
    if (rest.isEmpty() || rest.front() != '<' || close < 0 ||
        std::from_chars(rest.data() + 1, rest.data() + close, value, 16).ptr != rest.data() + close)
        return std::nullopt;
    rest = rest.sliced(close + 1);
    return value;
}

/// The characters of a map as the writer writes it: ranges "<first> <last>" followed by one character,
/// counted up from there, or by "[…]" with one for each code. Codes without a character are left out.
std::map<quint32, quint32> readMap(QByteArrayView map)
{
    std::map<quint32, quint32> characters;
    const qsizetype at = map.indexOf("beginbfrange");
    QByteArrayView rest = at < 0 ? QByteArrayView() : map.sliced(at + 12);
    while (const auto first = takeHex(rest)) {
        const quint32 last = takeHex(rest).value_or(*first);
        auto character = takeHex(rest);
        const bool listed = !character;
        if (listed) {
            const qsizetype open = rest.indexOf('[');
            if (open < 0)
                break;
            rest = rest.sliced(open + 1);
        }
        for (quint32 code = *first; code <= last; ++code) {
            if (listed)
                character = takeHex(rest);
            if (character && *character)
                characters[code] = listed ? *character : *character + code - *first;
        }
        if (listed)
            rest = rest.sliced(rest.indexOf(']') + 1);
    }
    return characters;
}

QByteArray utf16Hex(const QString& text)
{
    QByteArray hex;
    for (const QChar unit : text)
        hex += QByteArray::number(unit.unicode(), 16).rightJustified(4, '0');
    return hex;
}

QByteArray mapOf(const CodeTexts& texts)
{
    QByteArray map = "/CIDInit /ProcSet findresource begin\n12 dict begin\nbegincmap\n"
                     "/CIDSystemInfo << /Registry (Adobe) /Ordering (UCS) /Supplement 0 >> def\n"
                     "/CMapName /Adobe-Identity-UCS def\n/CMapType 2 def\n"
                     "1 begincodespacerange\n<0000> <FFFF>\nendcodespacerange\n";
    constexpr std::size_t largestBlock = 100;
    std::size_t left = texts.size();
    std::size_t inBlock = 0;
    for (const auto& [code, text] : texts) {
        if (inBlock == 0) {
            inBlock = std::min(left, largestBlock);
            map += QByteArray::number(static_cast<qulonglong>(inBlock)) + " beginbfchar\n";
        }
        map += '<' + QByteArray::number(code, 16).rightJustified(4, '0') + "> <" + utf16Hex(text) + ">\n";
        --left;
        if (--inBlock == 0)
            map += "endbfchar\n";
    }
    return map + "endcmap\nCMapName currentdict /CMap defineresource pop\nend\nend\n";
}

/// The first character of the basic plane for which the font has each letter that was drawn, by code. Takes
/// as long as a short report.
std::map<quint32, quint32> knownToFont(const GlyphRecord::Face& face)
{
    std::map<quint32, quint32> characters;
    constexpr char32_t blank = 0x20, end = 0xFFFE;
    for (char32_t character = blank; character < end; ++character) {
        if (QChar::isSurrogate(character))
            continue;
        const quint32 glyph =
            face.font.glyphIndexesForString(QString(QChar(static_cast<char16_t>(character)))).value(0);
        if (glyph < face.codes.size() && face.codes[glyph] != 0)
            characters.try_emplace(face.codes[glyph], character);
    }
    return characters;
}

/// The font's glyphs are those of the record, as far as the old map tells.
bool agrees(const std::map<quint32, quint32>& oldMap, const GlyphRecord::Face& face)
{
    return std::ranges::all_of(oldMap, [&](const auto& entry) {
        const auto [code, character] = entry;
        const QList<quint32> glyphs =
            face.font.glyphIndexesForString(QString(QChar(static_cast<char16_t>(character))));
        return code >= 1 && code <= face.glyphs.size() && glyphs == QList<quint32>{face.glyphs[code - 1]};
    });
}

CodeTexts textsOf(const GlyphRecord::Face& face, const std::map<quint32, quint32>& oldMap)
{
    CodeTexts texts;
    for (quint32 code = 1; code <= face.glyphs.size(); ++code) {
        const auto known = face.texts.find(face.glyphs[code - 1]);
        if (known != face.texts.end())
            texts[code] = known->second;
        else if (const auto old = oldMap.find(code); old != oldMap.end())
            texts[code] = QChar(static_cast<char16_t>(old->second));
    }
    return texts;
}

} // namespace

void correctTextLayer(PdfUpdate& update, const GlyphRecord& record)
{
    auto face = record.faces().begin();
    for (const auto& [number, offset] : update.objects()) {
        const QByteArrayView font = update.object(number);
        if (!font.trimmed().startsWith("<<") || font.indexOf("/Subtype /Type0") < 0)
            continue;
        const int map = PdfUpdate::reference(font, "ToUnicode");
        const auto oldMap = readMap(update.object(map));
        const auto agreeing =
            std::find_if(face, record.faces().end(), [&](const auto* f) { return agrees(oldMap, *f); });
        if (agreeing == record.faces().end())
            continue;
        update.replace(map, PdfUpdate::packed(mapOf(textsOf(**agreeing, oldMap))));
        face = std::next(agreeing);
    }
}

QByteArray characterMap(const GlyphRecord::Face& face)
{
    const bool isWhole =
        std::ranges::all_of(face.glyphs, [&](quint32 glyph) { return face.texts.contains(glyph); });
    return mapOf(textsOf(face, isWhole ? std::map<quint32, quint32>() : knownToFont(face)));
}

} // namespace spreadsheet
