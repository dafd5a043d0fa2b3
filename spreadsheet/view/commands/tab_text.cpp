#include "spreadsheet/view/commands/tab_text.h"

#include "spreadsheet/workbook/Sheet.h"
#include "text/quotes.h"

#include <algorithm>

namespace spreadsheet {

namespace {

void appendField(std::string& line, const std::string& text)
{
    if (text.find_first_of("\t\n\r") == std::string::npos && !text.starts_with('"')) {
        line += text;
        return;
    }
    line += quotes::around(text, '"');
}

class TabReader {
public:
    explicit TabReader(std::string_view text)
        : m_text(text)
    {
    }

    std::variant<PastedTable, Refusal> run()
    {
        while (m_at < m_text.size()) {
            if (m_row == maxRows)
                return "剪贴板的内容超过 1,048,576 行，不能粘贴";
            ++m_row;
            readRow();
            if (m_table.columns > maxColumns)
                return "剪贴板的内容超过 16,384 列，不能粘贴";
            if (m_table.cells.size() > maxPastedCells)
                return "剪贴板的单元格太多，不能粘贴";
        }
        m_table.rows = m_row;
        return std::move(m_table);
    }

private:
    void readRow()
    {
        for (int column = 1;; ++column) {
            std::string text = quotedField().value_or(std::string());
            if (!m_quoted)
                text = plainField();
            m_table.columns = std::max(m_table.columns, column);
            if (!text.empty())
                m_table.cells.push_back({column, m_row, 1, 1, std::move(text)});
            if (m_at == m_text.size() || m_text[m_at] != '\t')
                break;
            ++m_at;
        }
        if (m_text.substr(m_at).starts_with("\r\n"))
            m_at += 2;
        else if (m_at < m_text.size())
            ++m_at;
    }

    std::string plainField()
    {
        const std::size_t end = std::min(m_text.find_first_of("\t\n\r", m_at), m_text.size());
        std::string field(m_text.substr(m_at, end - m_at));
        m_at = end;
        return field;
    }

    std::optional<std::string> quotedField()
    {
        m_quoted = false;
        if (m_unclosed || m_at == m_text.size() || m_text[m_at] != '"')
            return std::nullopt;
        std::string field;
        for (std::size_t at = m_at + 1;;) {
            const std::size_t quote = m_text.find('"', at);
            if (quote == std::string_view::npos) {
                m_unclosed = true; // so that a text full of lone marks is not searched again and again
                return std::nullopt;
            }
            field += m_text.substr(at, quote - at);
            at = quote + 1;
            if (at < m_text.size() && m_text[at] == '"') {
                field += '"';
                ++at;
                continue;
            }
            if (at < m_text.size() && std::string_view("\t\n\r").find(m_text[at]) == std::string_view::npos)
                return std::nullopt; // "a"b: the marks belong to the text
            m_at = at;
            m_quoted = true;
            return field;
        }
    }

    std::string_view m_text;
    std::size_t m_at = 0;
    int m_row = 0;
    bool m_quoted = false;
    bool m_unclosed = false;
    PastedTable m_table;
};

} // namespace

std::string tabText(const Sheet& sheet, const CellRange& range)
{
    std::string text;
    for (int row = range.top; row <= range.bottom; ++row) {
        for (int column = range.left; column <= range.right; ++column) {
            if (column > range.left)
                text += '\t';
            appendField(text, sheet.displayText({column, row}));
        }
        text += '\n';
    }
    return text;
}

std::variant<PastedTable, Refusal> parseTabText(std::string_view text)
{
    return TabReader(text).run();
}

} // namespace spreadsheet
