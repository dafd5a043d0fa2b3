#include "spreadsheet/view/commands/html_table.h"

#include "spreadsheet/values/CellAddress.h"
#include "spreadsheet/values/number_text.h"
#include "spreadsheet/view/commands/html_look.h"
#include "spreadsheet/view/commands/HtmlScanner.h"

#include <algorithm>

namespace spreadsheet {

// What browsers and office programs put on the clipboard is called HTML and seldom is: tags are left open,
// tables stand in cells, merged cells reach beyond the last row. So this reads a stream of tags and keeps of
// each table where the next cell goes, builds no tree and refuses only what does not fit onto a sheet.

namespace {

/// A count such as that of `colspan`, at least 1 and at most `limit`.
int countAttribute(const HtmlScanner& scanner, std::string_view name, int limit)
{
    const auto count = parseNumber(scanner.attribute(name));
    return count && *count >= 1 ? static_cast<int>(std::min(*count, double(limit))) : 1;
}

class TableReader {
public:
    explicit TableReader(std::string_view html)
        : m_scanner(html)
    {
    }

    std::variant<PastedTable, Refusal> run()
    {
        for (auto kind = m_scanner.next(); kind != HtmlScanner::Kind::end; kind = m_scanner.next()) {
            if (kind == HtmlScanner::Kind::text)
                addText(m_scanner.text());
            else if (kind == HtmlScanner::Kind::opening)
                open();
            else
                close();
            if (m_row > maxRows || m_column - 1 > maxColumns || m_table.cells.size() > maxPastedCells)
                return "剪贴板的表格太大，不能粘贴";
        }
        if (m_depth > 0)
            endTable();
        return std::move(m_table);
    }

private:
    void open()
    {
        const std::string& name = m_scanner.name();
        if (name == "style")
            readStyleSheet(m_scanner.rawUntilClosing(name), m_rules);
        else if (name == "script" || name == "title")
            m_scanner.rawUntilClosing(name);
        else if (name == "table")
            openTable();
        else if (m_depth == 1 && name == "tr")
            openRow();
        else if (m_depth == 1 && (name == "td" || name == "th"))
            openCell(name == "th");
        else if (m_inCell)
            openInside(name);
    }

    void openTable()
    {
        if (++m_depth > 1)
            return;
        m_row = m_table.rows; // below the table before
        m_coveredUntil.clear();
    }

    void openRow()
    {
        closeCell();
        ++m_row;
        m_column = 1;
    }

    void openCell(bool heading)
    {
        closeCell();
        if (m_row == m_table.rows)
            openRow(); // a cell without its row
        while (m_coveredUntil.size() >= static_cast<std::size_t>(m_column) &&
               m_coveredUntil[static_cast<std::size_t>(m_column) - 1] >= m_row)
            ++m_column;
        m_begun = std::max(m_begun, m_column);
        m_inCell = true;
        m_cell = {};
        m_cell.column = m_column;
        m_cell.row = m_row;
        m_cell.columns =
            countAttribute(m_scanner, "colspan", maxColumns - std::min(m_column, maxColumns) + 1);
        m_cell.rows = countAttribute(m_scanner, "rowspan", maxRows - std::min(m_row, maxRows) + 1);
        HtmlStyle style = styleOfCell();
        if (heading && !style.look.bold)
            style.look.bold = true;
        m_cell.look = style.look;
        m_cell.literal =
            style.isText || m_scanner.hasAttribute("x:str") || m_scanner.attribute("sdnum").ends_with('@');
        for (const std::string_view exact : {"sdval", "x:num"}) {
            if (const auto number = parseNumber(m_scanner.attribute(exact)))
                m_cell.number = number;
        }
        cover();
    }

    HtmlStyle styleOfCell() const
    {
        HtmlStyle style;
        if (const auto rule = m_rules.find("td"); rule != m_rules.end())
            style = rule->second;
        if (const auto rule = m_rules.find(htmlKeyword(m_scanner.attribute("class")));
            rule != m_rules.end()) {
            overlay(style.look, rule->second.look);
            style.isText = style.isText || rule->second.isText;
        }
        HtmlStyle attributes;
        if (const std::string align = m_scanner.attribute("align"); !align.empty())
            addDeclarations("text-align:" + align, attributes);
        attributes.look.background = parseHtmlColour(m_scanner.attribute("bgcolor"));
        addDeclarations(m_scanner.attribute("style"), attributes);
        overlay(style.look, attributes.look);
        style.isText = style.isText || attributes.isText;
        return style;
    }

    /// Notes the columns that a merged cell takes in the rows below.
    void cover()
    {
        m_column += m_cell.columns;
        if (m_cell.rows == 1)
            return;
        m_coveredUntil.resize(std::max(m_coveredUntil.size(), static_cast<std::size_t>(m_column) - 1));
        for (int column = m_cell.column; column < m_column; ++column)
            m_coveredUntil[static_cast<std::size_t>(column) - 1] = m_row + m_cell.rows - 1;
    }

    /// Web pages say "colspan=1000" for a cell as wide as its table, however few columns that has.
    void endTable()
    {
        constexpr int all = 100;
        closeCell();
        m_table.rows = m_row;
        m_table.columns = std::max(m_table.columns, m_begun);
        for (std::size_t i = m_first; i < m_table.cells.size(); ++i) {
            PastedTable::Cell& cell = m_table.cells[i];
            if (cell.columns >= all)
                cell.columns = std::min(cell.columns, m_begun - cell.column + 1);
            if (cell.rows >= all)
                cell.rows = std::min(cell.rows, m_row - cell.row + 1);
            m_table.columns = std::max(m_table.columns, cell.column + cell.columns - 1);
            m_table.rows = std::max(m_table.rows, cell.row + cell.rows - 1);
        }
        m_first = m_table.cells.size();
        m_begun = 0;
    }

    void openInside(const std::string& name)
    {
        if (name == "br" || ((name == "p" || name == "div" || name == "li") && !m_cell.text.empty()))
            m_cell.text += '\n';
        if (!m_cell.text.empty())
            return; // only what embraces the whole text is the cell's look
        PastedLook& look = m_cell.look;
        if (name == "b" || name == "strong")
            look.bold = true;
        else if (name == "i" || name == "em")
            look.italic = true;
        else if (name == "u")
            look.underline = true;
        HtmlStyle style;
        addDeclarations(m_scanner.attribute("style"), style);
        if (const auto colour = parseHtmlColour(m_scanner.attribute("color")))
            style.look.foreground = colour;
        style.look.background.reset();
        overlay(look, style.look);
    }

    void close()
    {
        const std::string& name = m_scanner.name();
        if (name == "table" && m_depth > 0 && --m_depth == 0) {
            endTable();
        } else if (m_depth == 1 && (name == "td" || name == "th" || name == "tr")) {
            closeCell();
        }
    }

    /// Blanks and line ends of mark-up count as one blank.
    void addText(std::string_view html)
    {
        if (!m_inCell)
            return;
        std::string plain;
        for (std::size_t at = 0; at < html.size();) {
            const std::size_t blank = std::min(html.find_first_of(" \t\r\n\f", at), html.size());
            plain += html.substr(at, blank - at);
            at = std::min(html.find_first_not_of(" \t\r\n\f", blank), html.size());
            const bool leading = plain.empty() && (m_cell.text.empty() || m_cell.text.ends_with('\n'));
            if (at > blank && !leading)
                plain += ' ';
        }
        appendDecoded(plain, m_cell.text);
    }

    void closeCell()
    {
        if (!m_inCell)
            return;
        m_inCell = false;
        // The line end that keeps an empty cell open shows nothing.
        m_cell.text.erase(m_cell.text.find_last_not_of(" \n") + 1);
        m_cell.text = std::string(trimmedBlanks(m_cell.text));
        const bool merged = m_cell.columns > 1 || m_cell.rows > 1;
        if (!m_cell.text.empty() || m_cell.number || merged || m_cell.look != PastedLook())
            m_table.cells.push_back(std::move(m_cell));
    }

    HtmlScanner m_scanner;
    std::map<std::string, HtmlStyle, std::less<>> m_rules;
    PastedTable m_table;
    PastedTable::Cell m_cell;
    bool m_inCell = false;
    int m_depth = 0; ///< of tables inside tables
    int m_row = 0;
    int m_column = 1;
    int m_begun = 0;                 ///< last column of the table in which a cell begins
    std::size_t m_first = 0;         ///< the table's first cell
    std::vector<int> m_coveredUntil; ///< by column: last row that a merged cell above takes
};

} // namespace

std::variant<PastedTable, Refusal> parseHtmlTable(std::string_view html)
{
    return TableReader(html).run();
}

} // namespace spreadsheet
