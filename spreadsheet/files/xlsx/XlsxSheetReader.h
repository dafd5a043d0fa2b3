#pragma once
#include "spreadsheet/files/exchange/drop_down_lists.h"
#include "spreadsheet/files/exchange/Warnings.h"
#include "spreadsheet/files/xlsx/XlsxNames.h"
#include "spreadsheet/files/xlsx/XlsxStyles.h"
#include "spreadsheet/files/xlsx/XmlScanner.h"
#include "spreadsheet/formula/Lexer.h"
#include "spreadsheet/workbook/Workbook.h"

#include <optional>
#include <pugixml.hpp>
#include <span>
#include <unordered_map>
#include <vector>

namespace spreadsheet {

/// What the sheets of a read .xlsx file share.
struct XlsxBook {
    std::vector<Text> texts;
    XlsxNames names;
    /// Asks to be computed as soon as it is opened, so that the results in it need not tell their kinds.
    bool leavesComputing = false;
};

/// Reads the XML of one worksheet into a fresh sheet.
class XlsxSheetReader {
public:
    XlsxSheetReader(Workbook& workbook, Sheet& sheet, XlsxStyles& styles, const XlsxBook& book,
                    Warnings& warnings);
    /// @param data  what stands between the tags of its "sheetData". @throws ContentError
    void read(pugi::xml_node root, std::span<char> data);
    void readComments(pugi::xml_node root);
    /// Hands the settings to the sheet.
    void finish();

private:
    void sizes(pugi::xml_node root);
    void columnSizes(pugi::xml_node node);
    void view(pugi::xml_node root);
    /// What a row's or a cell's start tag says, and what stands in a cell.
    struct RowHead {
        int number = 0; ///< 0: the one behind the row before
        int height = 0; ///< in twips; 0: not said
        bool isHidden = false, isFormatted = false, isOutlined = false;
        unsigned format = 0;
    };
    struct CellFormula {
        std::string_view text, kind, range;
        int group = 0;
    };
    struct CellText {
        std::string_view name; ///< empty: the one behind the cell before
        unsigned format = 0;
        std::string_view type = "n";
        std::optional<std::string_view> value{};
        std::optional<std::string> rich{}; ///< a text that stands in the cell
        std::optional<CellFormula> formula{};
    };

    void rows(std::span<char> data);
    void row(XmlScanner& xml, int& number);
    void rowSettings(const RowHead& head, int row);
    static RowHead rowHead(const XmlScanner& xml);
    static CellText cellText(XmlScanner& xml);
    static CellFormula cellFormula(XmlScanner& xml);
    void cell(const CellText& text, CellAddress at);
    Value value(const CellText& cell) const;
    Value numberValue(std::string_view text, bool isDate) const;
    Value textResult(std::string_view text) const;
    void formula(const CellFormula& formula, CellAddress at, const Column::Place& place);
    bool continuesAbove(std::string_view text, CellAddress at) const;
    std::uint32_t interned(std::string_view text, CellAddress at, bool isArray);
    void sharedFormulas();
    void arrays();
    void spans(pugi::xml_node root);
    void lists(pugi::xml_node root);
    void print(pugi::xml_node root);
    void pageSetup(pugi::xml_node root);
    void paper(pugi::xml_node setup);
    std::string headerText(pugi::xml_node node) const;
    static void breaks(pugi::xml_node node, std::map<int, bool>& starts, int last);
    void reach(const CellRange& range);
    /// Of a height in points; 0 for one that no row has.
    static int twipsOf(double points);

    struct ArrayFormula {
        CellRange range;
        std::uint32_t number;
    };

    Workbook& m_workbook;
    Sheet& m_sheet;
    XlsxStyles& m_styles;
    const XlsxBook& m_book;
    Warnings& m_warnings;
    SheetResolver m_sheetId;
    SheetSettings m_settings;
    std::unordered_map<int, std::uint32_t> m_shared;    ///< formulas in the pool by the file's number
    std::vector<std::pair<int, CellAddress>> m_sharing; ///< groups of cells that came before their formula
    std::vector<std::uint32_t> m_above;                 ///< by column: the formula that was read last
    std::vector<ArrayFormula> m_arrays;
    std::vector<OfferedList> m_lists;
    double m_digitPixels;
    bool m_isProtected = false;
    int m_lastRow = 0, m_lastColumn = 0;
};

} // namespace spreadsheet
