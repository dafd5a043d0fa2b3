#pragma once
#include "spreadsheet/files/exchange/drop_down_lists.h"
#include "spreadsheet/files/exchange/Warnings.h"
#include "spreadsheet/files/xlsx/XlsxStyles.h"
#include "spreadsheet/formula/Lexer.h"
#include "spreadsheet/workbook/Workbook.h"

#include <pugixml.hpp>
#include <unordered_map>
#include <vector>

namespace spreadsheet {

/// What the sheets of a read .xlsx file share.
struct XlsxBook {
    std::vector<Text> texts;
    /// Asks to be computed as soon as it is opened, so that the results in it need not tell their kinds.
    bool leavesComputing = false;
};

/// Reads the XML of one worksheet into a fresh sheet.
class XlsxSheetReader {
public:
    XlsxSheetReader(Workbook& workbook, Sheet& sheet, XlsxStyles& styles, const XlsxBook& book,
                    Warnings& warnings);
    /// @throws ContentError
    void read(pugi::xml_node root);
    void readComments(pugi::xml_node root);
    /// Hands the settings to the sheet.
    void finish();

private:
    void sizes(pugi::xml_node root);
    void columnSizes(pugi::xml_node node);
    void view(pugi::xml_node root);
    void rows(pugi::xml_node data);
    void rowSettings(pugi::xml_node node, int row);
    void cell(pugi::xml_node node, CellAddress at);
    Value value(pugi::xml_node node, pugi::xml_node value) const;
    Value numberValue(std::string_view text, bool isDate) const;
    Value textResult(std::string_view text) const;
    void formula(pugi::xml_node node, CellAddress at, const Column::Place& place);
    std::uint32_t interned(std::string_view text, CellAddress at, bool isArray);
    void arrays();
    void spans(pugi::xml_node root);
    void lists(pugi::xml_node root);
    void print(pugi::xml_node root);
    void pageSetup(pugi::xml_node root);
    void paper(pugi::xml_node setup);
    std::string headerText(pugi::xml_node node) const;
    static void breaks(pugi::xml_node node, std::map<int, bool>& starts, int last);
    void reach(const CellRange& range);

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
    std::unordered_map<int, std::uint32_t> m_shared; ///< formulas in the pool by the file's number
    std::vector<ArrayFormula> m_arrays;
    std::vector<OfferedList> m_lists;
    double m_digitPixels;
    bool m_isProtected = false;
    int m_lastRow = 0, m_lastColumn = 0;
};

} // namespace spreadsheet
