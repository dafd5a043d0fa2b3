#pragma once
#include "spreadsheet/cells/StylePool.h"
#include "spreadsheet/files/exchange/Palette.h"
#include "spreadsheet/files/exchange/Warnings.h"
#include "spreadsheet/files/xls/RecordWriter.h"

#include <map>
#include <string>
#include <vector>

namespace spreadsheet {

/// Gives styles their numbers as cell formats of an .xls file.
class XlsStyles {
public:
    /// Format 15, that of untouched cells, is the fresh style.
    static constexpr std::uint16_t usual = 15;

    XlsStyles(const StylePool& pool, Warnings& warnings);

    /// The cell format of a style's number in the pool.
    std::uint16_t cellFormat(std::uint32_t style);
    /// Fonts, number formats, cell formats and colours.
    void write(RecordWriter& writer) const;

private:
    struct Font {
        CellFont look;
        unsigned colour;
        friend bool operator==(const Font&, const Font&) = default;
    };
    struct CellFormat {
        unsigned font = 0, format = 0;
        const CellStyle* style = nullptr;
        unsigned colours[4]{}; ///< of the lines: left, right, top, bottom
        unsigned background = 0;
    };

    unsigned colour(Colour colour, unsigned automatic);
    unsigned font(const CellStyle& style);
    unsigned format(const CellStyle& style);
    CellFormat made(const CellStyle& style);
    static void writeFont(RecordWriter& writer, const Font& font);
    static void writeCellFormat(RecordWriter& writer, const CellFormat& format, bool isParent);
    void writePalette(RecordWriter& writer) const;

    const StylePool& m_pool;
    Warnings& m_warnings;
    PaletteBuilder m_palette;
    std::vector<Font> m_fonts;
    std::vector<std::string> m_formats; ///< from number 164 on
    std::vector<CellFormat> m_cellFormats;
    std::vector<std::uint16_t> m_numbers; ///< by style; 0: none yet
};

} // namespace spreadsheet
