#include "spreadsheet/files/exchange/CodePage.h"
#include "spreadsheet/files/exchange/unicode_text.h"
#include "spreadsheet/files/placing/ContentError.h"
#include "spreadsheet/files/text/csv.h"
#include "spreadsheet/workbook/typed_text.h"
#include "spreadsheet/workbook/Workbook.h"
#include "text/ascii.h"

#include <algorithm>
#include <array>
#include <utility>

namespace spreadsheet {

namespace {

constexpr std::size_t sensedLines = 30;
constexpr int widthOfMoment = 2'100; ///< twips that a day with a time takes

std::string utf8OfFile(Bytes file)
{
    const std::string_view text(reinterpret_cast<const char*>(file.data()), file.size());
    if (text.starts_with("\xEF\xBB\xBF"))
        return CodePage("UTF-8").decoded(text.substr(3));
    if (text.starts_with("\xFF\xFE"))
        return CodePage("UTF-16LE").decoded(text.substr(2));
    if (text.starts_with("\xFE\xFF"))
        return CodePage("UTF-16BE").decoded(text.substr(2));
    requireFile(text.find('\0') == std::string_view::npos, "内容不是文本");
    return isUtf8(text) ? std::string(text) : CodePage("GB18030").decoded(text);
}

/// Goes through fields; a field in quotes may hold separators and line ends.
class FieldReader {
public:
    FieldReader(std::string_view text, char separator)
        : m_text(text)
        , m_separator(separator)
    {
    }

    bool atEnd() const { return m_at == m_text.size(); }
    /// The next field, and whether it ends its line.
    bool next(std::string& field)
    {
        field.clear();
        if (m_at < m_text.size() && m_text[m_at] == '"')
            quoted(field);
        const std::size_t end =
            std::min(m_text.find_first_of(std::string{m_separator, '\r', '\n'}, m_at), m_text.size());
        field += m_text.substr(m_at, end - m_at);
        m_at = end;
        if (m_at == m_text.size())
            return true;
        const char ending = m_text[m_at++];
        if (ending == '\r' && m_at < m_text.size() && m_text[m_at] == '\n')
            ++m_at;
        return ending != m_separator;
    }

private:
    void quoted(std::string& field)
    {
        for (++m_at; m_at < m_text.size(); ++m_at) {
            if (m_text[m_at] == '"') {
                if (m_at + 1 == m_text.size() || m_text[m_at + 1] != '"') {
                    ++m_at;
                    return;
                }
                ++m_at;
            }
            field += m_text[m_at];
        }
    }

    std::string_view m_text;
    char m_separator;
    std::size_t m_at = 0;
};

/// Lines of the beginning with the commonest count of fields, times that count; 0 if nothing is parted.
std::size_t evenness(std::string_view text, char separator)
{
    FieldReader reader(text, separator);
    std::vector<std::size_t> counts;
    std::string field;
    while (!reader.atEnd() && counts.size() < sensedLines) {
        std::size_t fields = 1;
        while (!reader.next(field))
            ++fields;
        counts.push_back(fields);
    }
    std::size_t best = 0;
    for (const std::size_t count : counts) {
        const auto lines = static_cast<std::size_t>(std::ranges::count(counts, count));
        best = std::max(best, count > 1 ? lines * (count + 8) : 0); // agreeing lines weigh more than fields
    }
    return best;
}

/// A first line such as "sep=;" names the separator and is no row.
bool namesSeparator(std::string_view text)
{
    return text.size() > 5 && ascii::equalFolded(text.substr(0, 4), "sep=") &&
           (text[5] == '\r' || text[5] == '\n') && text[4] != '"';
}

/// Whether every tab of the beginning stands beside a comma or a line's end: it keeps digits from being taken
/// for a number, as banks write them, and parts nothing.
bool tabsOnlyPad(std::string_view text)
{
    constexpr std::size_t beginning = 10'000;
    text = text.substr(0, beginning);
    const auto isEdge = [text](std::size_t at) {
        return at >= text.size() || text[at] == ',' || text[at] == '\r' || text[at] == '\n';
    };
    for (std::size_t at = text.find('\t'); at != text.npos; at = text.find('\t', at + 1)) {
        if (at > 0 && !isEdge(at - 1) && !isEdge(at + 1))
            return false;
    }
    return true;
}

char sensedSeparator(std::string_view text)
{
    if (namesSeparator(text))
        return text[4];
    static constexpr std::array separators{',', '\t', ';', '|'};
    const char best = *std::ranges::max_element(separators, {},
                                                [text](char separator) { return evenness(text, separator); });
    return best == '\t' && evenness(text, ',') > 0 && tabsOnlyPad(text) ? ',' : best;
}

/// The text that a field of the form ="001" stands for, in which other programs wrap digits so that they
/// stay.
std::optional<std::string> wrappedText(std::string_view field)
{
    if (field.size() < 3 || !field.starts_with("=\"") || !field.ends_with('"'))
        return std::nullopt;
    std::string text;
    const std::string_view inside = field.substr(2, field.size() - 3);
    for (std::size_t at = 0; at < inside.size(); ++at) {
        text += inside[at];
        if (inside[at] == '"' && (++at == inside.size() || inside[at] != '"'))
            return std::nullopt; // a formula of several texts
    }
    return text;
}

/// Digits that no cell of a usual width shows: the number of a payment, which a tab keeps whole.
bool isLongNumber(std::string_view text)
{
    constexpr std::size_t shown = 11;
    return text.size() > shown && std::ranges::all_of(text, ascii::isDigit);
}

/// The constant that a field stands for. Digits that do not survive as a number stay as they are but for
/// blanks and tabs at the ends, which are there to keep them.
TypedConstant constantOf(std::string_view field, Workbook& workbook)
{
    const auto asText = [&](std::string_view text) {
        return TypedConstant{Value(workbook.texts().intern(text)), std::nullopt};
    };
    const std::string_view padded = std::exchange(field, ascii::trimmed(field, "\t"));
    if (field.empty())
        return {};
    if (const auto text = wrappedText(field))
        return asText(*text);
    const std::string_view plain = withoutPadding(field);
    if (isDigitCode(plain) || (padded != field && isLongNumber(plain)))
        return asText(plain);
    TypedConstant constant;
    if (!field.starts_with('='))
        constant = typedConstant(field);
    return constant.value.isEmpty() || constant.value.isText() ? asText(field) : constant;
}

void enter(Workbook& workbook, Sheet& sheet, CellAddress at, std::string_view field)
{
    const TypedConstant constant = constantOf(field, workbook);
    if (constant.value.isEmpty())
        return;
    const Column::Place place = sheet.loadColumn(at.column).writable(at.row);
    place.block.setValue(place.index, constant.value);
    if (!constant.type)
        return;
    CellStyle style;
    constant.dress(style);
    place.block.setStyle(place.index, workbook.styles().intern(style));
    const bool showsMore = !constant.format.empty() && *constant.type == CellType::date;
    if (showsMore && sheet.settings().columns.size(at.column) < widthOfMoment)
        sheet.changeSettings(
            [&](SheetSettings& settings) { settings.columns.sizes[at.column] = widthOfMoment; });
}

} // namespace

void readCsv(Bytes file, Workbook& workbook)
{
    const std::string text = utf8OfFile(file);
    FieldReader reader(text, sensedSeparator(text));
    Sheet& sheet = workbook.sheet(1);
    CellAddress at{1, 1};
    int lastColumn = 1;
    std::string field;
    if (namesSeparator(text))
        while (!reader.next(field)) {
        }
    while (!reader.atEnd()) {
        requireFile(at.row <= maxRows && at.column <= maxColumns, "行数或列数超出一张表的范围");
        const bool isLast = reader.next(field);
        if (!field.empty())
            enter(workbook, sheet, at, field);
        lastColumn = std::max(lastColumn, at.column);
        at = isLast ? CellAddress{1, at.row + 1} : CellAddress{at.column + 1, at.row};
    }
    sheet.changeSettings([&](SheetSettings& settings) {
        settings.rowCount = std::max(settings.rowCount, std::min(at.row, maxRows));
        settings.columnCount = std::max(settings.columnCount, lastColumn);
    });
    workbook.markCalculated();
}

} // namespace spreadsheet
