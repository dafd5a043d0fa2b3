#include "platform/database/dialect/text_columns.h"

#include "platform/database/dialect/code_page.h"
#include "platform/database/session/Recordset.h"
#include "text/ascii.h"

#include <algorithm>
#include <bit>
#include <iconv.h>

namespace selfreport {

// Servers store a character that a column's code page lacks as a question mark, and drivers cut texts, both
// without a word. What the columns hold is therefore read from the catalogue and looked at before anything is
// sent. A page that the system's converter does not know refuses nothing.

namespace {

constexpr int utf8Page = 65001;
constexpr std::size_t cannotConvert = static_cast<std::size_t>(-1);

/// One conversion from UTF-8 to a code page of the server.
class ToCodePage {
public:
    explicit ToCodePage(int codePage)
        : m_handle(
              iconv_open(codePage == utf8Page ? "UTF-8" : ("CP" + std::to_string(codePage)).c_str(), "UTF-8"))
    {
    }
    ~ToCodePage()
    {
        if (isOpen())
            iconv_close(m_handle);
    }
    ToCodePage(const ToCodePage&) = delete;
    ToCodePage& operator=(const ToCodePage&) = delete;

    bool isOpen() const { return m_handle != std::bit_cast<iconv_t>(std::intptr_t{-1}); }

    /// Bytes that a character takes; nothing if the page lacks it.
    std::optional<std::size_t> bytesOf(std::string_view character)
    {
        char* from = const_cast<char*>(character.data()); // the interface is older than const
        std::size_t left = character.size();
        char output[8];
        char* to = output;
        std::size_t room = sizeof output;
        const bool isHeld = iconv(m_handle, &from, &left, &to, &room) != cannotConvert && left == 0;
        return isHeld ? std::optional(sizeof output - room) : std::nullopt;
    }

private:
    iconv_t m_handle;
};

/// The UTF-8 character at the beginning of a text that is not empty.
std::string_view firstCharacter(std::string_view text)
{
    std::size_t length = 1;
    while (length < text.size() && (static_cast<unsigned char>(text[length]) & 0xC0) == 0x80)
        ++length;
    return text.substr(0, length);
}

std::size_t utf16Units(std::string_view text)
{
    std::size_t units = 0;
    for (; !text.empty(); text.remove_prefix(firstCharacter(text).size()))
        units += firstCharacter(text).size() > 3 ? 2 : 1;
    return units;
}

std::size_t bytesIn(int codePage, std::string_view text)
{
    ToCodePage converter(codePage);
    if (codePage == 0 || !converter.isOpen())
        return codePageLength(text);
    std::size_t bytes = 0;
    for (; !text.empty(); text.remove_prefix(firstCharacter(text).size()))
        bytes += converter.bytesOf(firstCharacter(text)).value_or(1);
    return bytes;
}

std::string columnKey(std::string_view table, std::string_view name)
{
    return ascii::lower(std::string(table) + "." + std::string(name));
}

} // namespace

TextColumn TextColumns::column(std::string_view table, std::string_view name) const
{
    const auto found = columns.find(columnKey(table, name));
    return found == columns.end() ? TextColumn() : found->second;
}

std::string textColumnsStatement()
{
    // Names of the catalogue in capitals: under some collations their letter case counts.
    return "select TABLE_NAME as ftable,COLUMN_NAME as fcolumn,DATA_TYPE as ftype,"
           "CHARACTER_MAXIMUM_LENGTH as fsize,cast(COLLATIONPROPERTY(COLLATION_NAME,'CodePage') as int) "
           "as fpage from INFORMATION_SCHEMA.COLUMNS where COLLATION_NAME is not null and TABLE_NAME in "
           "('tblCWSelfReport','tblsystemprivillenge') union all select '','','',0,"
           "cast(COLLATIONPROPERTY(cast(DATABASEPROPERTYEX(DB_NAME(),'Collation') as nvarchar(128)),"
           "'CodePage') as int)";
}

TextColumns textColumnsOf(const Recordset& rows)
{
    TextColumns known;
    for (std::size_t row = 0; row < rows.rowCount(); ++row) {
        const int codePage = static_cast<int>(rows.integer(row, "fpage"));
        const std::string table = rows.text(row, "ftable");
        if (table.empty()) {
            known.codePage = codePage;
            continue;
        }
        const std::int64_t size = rows.integer(row, "fsize"); // -1: as much as there is room for
        const std::string type = rows.text(row, "ftype");
        known.columns[columnKey(table, rows.text(row, "fcolumn"))] = {
            size > 0 ? static_cast<std::size_t>(size) : 0, type.starts_with('n') || type.starts_with('N'),
            codePage};
    }
    return known;
}

std::string characterMissingIn(int codePage, std::string_view text)
{
    if (codePage == 0 ||
        std::ranges::all_of(text, [](char c) { return static_cast<unsigned char>(c) < 0x80; }))
        return {};
    ToCodePage converter(codePage);
    if (!converter.isOpen())
        return {};
    for (; !text.empty(); text.remove_prefix(firstCharacter(text).size()))
        if (!converter.bytesOf(firstCharacter(text)))
            return std::string(firstCharacter(text));
    return {};
}

std::optional<std::string> misfit(std::string_view what, std::string_view text, const TextColumn& column)
{
    const std::string missing = column.isWide ? std::string() : characterMissingIn(column.codePage, text);
    if (!missing.empty())
        return std::string(what) + "中的“" + missing + "”不能存入这个数据库，请换一个字。";
    const std::size_t length = column.isWide ? utf16Units(text) : bytesIn(column.codePage, text);
    if (column.most == 0 || length <= column.most)
        return std::nullopt;
    const std::string unit = column.isWide ? "个字符" : "字节（一个汉字占 2 字节）";
    return std::string(what) + "过长：占 " + std::to_string(length) + (column.isWide ? " 个字符" : " 字节") +
           "，最多 " + std::to_string(column.most) + " " + unit + "。";
}

} // namespace selfreport
