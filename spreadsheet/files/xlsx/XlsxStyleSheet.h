#pragma once
#include "spreadsheet/cells/StylePool.h"
#include "spreadsheet/files/exchange/Warnings.h"

#include <cstdint>
#include <string>
#include <unordered_map>
#include <vector>

namespace spreadsheet {

class XmlWriter;

/// The looks of a written .xlsx file: fonts, fills, borders and cell formats, each once, as cells use them.
class XlsxStyleSheet {
public:
    XlsxStyleSheet(const StylePool& pool, Warnings& warnings);
    /// The number that cells of a style give their format.
    std::uint32_t cellFormat(std::uint32_t style);
    void write(XmlWriter& xml) const;

private:
    /// Elements of one kind by their number in the file.
    class Elements {
    public:
        std::uint32_t number(std::string element);
        void write(XmlWriter& xml, std::string_view name) const;

    private:
        std::unordered_map<std::string, std::uint32_t> m_numbers;
        std::vector<std::string> m_elements;
    };

    std::uint32_t made(const CellStyle& style);
    std::uint32_t numberFormat(const CellStyle& style);

    const StylePool& m_pool;
    Warnings& m_warnings;
    Elements m_fonts, m_fills, m_borders, m_cellFormats;
    std::unordered_map<std::string, std::uint32_t> m_codes; ///< number formats of the file's own
    std::vector<std::string> m_codeElements;
    std::vector<std::uint32_t> m_numbers; ///< by style, 1 more than the format's; 0: none yet
};

} // namespace spreadsheet
