#pragma once
#include "spreadsheet/cells/StylePool.h"
#include "spreadsheet/files/exchange/CodePage.h"
#include "spreadsheet/files/exchange/number_formats.h"
#include "spreadsheet/files/exchange/Palette.h"
#include "spreadsheet/files/exchange/Warnings.h"
#include "spreadsheet/files/xls/RecordStream.h"

#include <map>
#include <string>
#include <vector>

namespace spreadsheet {

/// Fonts, number formats, colours and cell formats of an .xls file, turned into styles as cells use them.
class StyleTable {
public:
    StyleTable(StylePool& pool, Warnings& warnings)
        : m_pool(pool)
        , m_warnings(warnings)
    {
    }

    void setVersion(std::uint16_t version) { m_version = version; }
    void setCountry(FileCountry country) { m_country = country; }
    void readFont(const XlsRecord& record, const CodePage& codePage);
    void readFormat(const XlsRecord& record, const CodePage& codePage);
    void readPalette(const XlsRecord& record);
    void readCellFormat(const XlsRecord& record);

    /// The style of a cell format. Every cell of a file is marked as locked; the mark counts only on
    /// protected sheets.
    std::uint32_t style(std::size_t cellFormat, bool isProtected);
    /// The font that column widths are counted in.
    CellFont defaultFont() const;

private:
    struct Font {
        CellFont look;
        unsigned colour = 0;
    };
    struct CellFormat {
        std::uint16_t font = 0;
        std::uint16_t format = 0;
        bool locked = false;
        unsigned horizontal = 0, vertical = 2;
        bool wrap = false;
        bool isCrossed = false; ///< by a diagonal line
        unsigned rotation = 0, indent = 0;
        unsigned lines[4]{};   ///< left, right, top, bottom
        unsigned colours[4]{}; ///< of the lines
        unsigned pattern = 0, patternColour = Palette::text, paperColour = Palette::background;
        std::uint32_t styles[2]{}; ///< made at first use; by whether the sheet is protected
    };

    static CellFormat cellFormat8(const XlsRecord& record);
    static CellFormat cellFormat5(const XlsRecord& record);
    CellStyle made(const CellFormat& format, bool isProtected) const;
    void fill(const CellFormat& format, CellStyle& style) const;
    const Font* font(std::size_t number) const;

    StylePool& m_pool;
    Warnings& m_warnings;
    std::uint16_t m_version = 0x0600;
    FileCountry m_country = FileCountry::china;
    Palette m_palette;
    std::vector<Font> m_fonts;
    std::map<std::uint16_t, std::string> m_formats;
    std::vector<CellFormat> m_cellFormats;
};

} // namespace spreadsheet
