#include "spreadsheet/files/xlsx/XlsxNames.h"

#include "spreadsheet/values/case_fold.h"
#include "text/ascii.h"

#include <algorithm>

namespace spreadsheet {

namespace {

bool isNameSign(char c)
{
    return static_cast<unsigned char>(c) >= 0x80 || ascii::isLetter(c) || ascii::isDigit(c) || c == '_' ||
           c == '.' || c == '\\' || c == '?';
}

} // namespace

/// Goes through one formula from front to back.
class XlsxNames::Rewriter {
public:
    Rewriter(const XlsxNames& names, std::string_view text, std::string_view sheet, CellAddress cell)
        : m_names(names)
        , m_text(text)
        , m_sheet(sheet)
        , m_cell(cell)
    {
    }

    std::string run()
    {
        while (m_at < m_text.size()) {
            const char c = m_text[m_at];
            if (c == '"')
                m_result += quoted('"');
            else if (c == '\'')
                quotedSheet();
            else if (c == '[')
                brackets(m_names.tableAt(m_sheet, m_cell), {});
            else if (isNameSign(c))
                word();
            else
                m_result += m_text[m_at++];
        }
        return std::move(m_result);
    }

private:
    bool follows(char c) const { return m_at < m_text.size() && m_text[m_at] == c; }

    /// Up to the quote that ends it, both included.
    std::string_view quoted(char quote)
    {
        const std::size_t begin = m_at;
        const std::size_t end = m_text.find(quote, begin + 1);
        m_at = end == std::string_view::npos ? m_text.size() : end + 1;
        return m_text.substr(begin, m_at - begin);
    }

    std::string_view nameSigns()
    {
        const std::size_t begin = m_at;
        while (m_at < m_text.size() && isNameSign(m_text[m_at]))
            ++m_at;
        return m_text.substr(begin, m_at - begin);
    }

    void quotedSheet()
    {
        std::string name, spelled;
        while (follows('\'')) { // a doubled quote begins the next piece
            const std::string_view piece = quoted('\'');
            name += spelled.empty() ? "" : "'";
            name += piece.substr(1, piece.size() < 2 ? 0 : piece.size() - 2);
            spelled += piece;
        }
        behindSheet(name, spelled);
    }

    /// @param spelled  the sheet's name as the formula has it
    void behindSheet(std::string_view sheet, std::string_view spelled)
    {
        if (!follows('!')) {
            m_result += spelled;
            return;
        }
        ++m_at;
        const std::string_view name = nameSigns();
        const std::string* ours = m_names.name(sheet, name);
        if (!ours)
            ours = m_names.name({}, name);
        if (ours)
            m_result += *ours;
        else
            m_result.append(spelled).append("!").append(name);
    }

    void word()
    {
        const std::string_view name = nameSigns();
        if (follows('!'))
            return behindSheet(name, name);
        if (follows('['))
            return brackets(m_names.table(name), name);
        const std::string* const ours = follows('(') ? nullptr : m_names.name(m_sheet, name);
        m_result += ours ? std::string_view(*ours) : name;
    }

    /// @param name  stands before the brackets
    void brackets(const XlsxTable* table, std::string_view name)
    {
        const std::size_t begin = m_at;
        for (int depth = 0; m_at < m_text.size(); ++m_at) {
            depth += m_text[m_at] == '[';
            depth -= m_text[m_at] == ']';
            if (depth == 0)
                break;
            m_at += m_text[m_at] == '\'';
        }
        m_at = std::min(m_at + 1, m_text.size());
        const std::string_view all = m_text.substr(begin, m_at - begin);
        const auto plain = table && all.size() >= 2 && all.back() == ']'
                               ? structuredReference(*table, all, m_sheet, m_cell)
                               : std::nullopt;
        if (plain)
            m_result += *plain;
        else
            m_result.append(name).append(all);
    }

    const XlsxNames& m_names;
    std::string_view m_text, m_sheet;
    CellAddress m_cell;
    std::size_t m_at = 0;
    std::string m_result;
};

void XlsxNames::addName(std::string_view sheet, std::string_view name, std::string ours)
{
    m_names.insert_or_assign({foldedName(sheet), foldedName(name)}, std::move(ours));
    m_hasLocal |= !sheet.empty();
}

const XlsxTable* XlsxNames::table(std::string_view name) const
{
    const auto found = std::ranges::find_if(
        m_tables, [&](const XlsxTable& table) { return foldedName(table.name) == foldedName(name); });
    return found == m_tables.end() ? nullptr : &*found;
}

const XlsxTable* XlsxNames::tableAt(std::string_view sheet, CellAddress cell) const
{
    const auto found = std::ranges::find_if(
        m_tables, [&](const XlsxTable& table) { return table.sheet == sheet && table.range.contains(cell); });
    return found == m_tables.end() ? nullptr : &*found;
}

const std::string* XlsxNames::name(std::string_view sheet, std::string_view name) const
{
    const auto found = m_names.find({foldedName(sheet), foldedName(name)});
    return found == m_names.end() ? nullptr : &found->second;
}

std::string XlsxNames::plain(std::string_view formula, std::string_view sheet, CellAddress cell) const
{
    const bool mayHold = (m_hasLocal || formula.find('!') != std::string_view::npos) && !m_names.empty();
    if (!mayHold && (m_tables.empty() || formula.find('[') == std::string_view::npos))
        return std::string(formula);
    return Rewriter(*this, formula, sheet, cell).run();
}

} // namespace spreadsheet
