#pragma once
#include "spreadsheet/cells/StylePool.h"
#include "spreadsheet/files/exchange/number_formats.h"
#include "spreadsheet/files/exchange/Palette.h"
#include "spreadsheet/files/exchange/Warnings.h"

#include <map>
#include <pugixml.hpp>
#include <string>
#include <vector>

namespace spreadsheet {

/// Fonts, fills, borders and cell formats of an .xlsx file, turned into styles as cells use them.
class XlsxStyles {
public:
    XlsxStyles(StylePool& pool, Warnings& warnings)
        : m_pool(pool)
        , m_warnings(warnings)
    {
    }

    void readTheme(pugi::xml_node root);
    void read(pugi::xml_node root);
    /// The style of a cell format; 0 if there is none. The locked mark counts only on protected sheets.
    std::uint32_t style(std::size_t cellFormat, bool isProtected);
    /// The font that column widths are counted in.
    CellFont defaultFont() const;

private:
    struct Font {
        CellFont look;
        Colour colour = automaticColour;
        bool isRaised = false;  ///< super- or subscript
        bool isDoubled = false; ///< underlined by two lines
    };
    struct Fill {
        Colour colour = automaticColour;
        const char* loss = nullptr; ///< what of it is not shown here
    };
    struct Border {
        BorderLine left, right, top, bottom;
        bool isCrossed = false; ///< by a diagonal line
    };
    struct CellFormat {
        pugi::xml_node node;
        std::uint32_t styles[2]{}; ///< made at first use; by whether the sheet is protected
    };

    Colour colour(pugi::xml_node node) const;
    Font font(pugi::xml_node node) const;
    Fill fill(pugi::xml_node node) const;
    BorderLine line(pugi::xml_node node) const;
    CellStyle made(pugi::xml_node format, bool isProtected) const;
    void countLosses(pugi::xml_node format) const;
    void align(pugi::xml_node alignment, CellStyle& style) const;

    StylePool& m_pool;
    Warnings& m_warnings;
    Palette m_palette;
    std::vector<Colour> m_theme;
    std::map<int, std::string> m_formats;
    FileCountry m_country = FileCountry::china;
    std::vector<Font> m_fonts;
    std::vector<Fill> m_fills;
    std::vector<Border> m_borders;
    std::vector<CellFormat> m_cellFormats;
};

} // namespace spreadsheet
