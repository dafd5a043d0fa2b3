#include "spreadsheet/files/xls/list_checks.h"

#include "spreadsheet/files/exchange/unicode_text.h"
#include "spreadsheet/files/xls/records.h"
#include "spreadsheet/files/xls/tokens.h"

#include <algorithm>

namespace spreadsheet {

namespace {

constexpr std::uint32_t kindMask = 0x0F, isList = 3, isLiteral = 0x80, allowsBlank = 0x100;
constexpr int titlesAndTexts = 4; ///< of the prompt and of the refusal

/// Entries stand in one text, parted by characters of number 0.
std::u16string joined(const std::vector<std::string>& entries)
{
    std::u16string text;
    for (const std::string& entry : entries) {
        if (!text.empty() || &entry != &entries.front())
            text += u'\0';
        text += utf16Of(entry);
    }
    return text;
}

void writeCheck(const OfferedList& list, RecordWriter& writer)
{
    writer.begin(xls::inputCheck);
    writer.put32(isList | isLiteral | allowsBlank); // input that is not in the list stays allowed
    for (int i = 0; i < titlesAndTexts; ++i) {
        writer.put16(1); // a text of one character 0 stands for none
        writer.put16(0);
    }
    const std::u16string text = joined(*list.entries);
    const std::size_t size = writer.size();
    writer.put16(0); // bytes of tokens, known below
    writer.put16(0);
    const std::size_t begin = writer.size();
    writer.put8(xls::tokenText);
    writer.put8(static_cast<unsigned>(text.size()));
    writer.putCharacters(text);
    writer.patch16(size, static_cast<std::uint16_t>(writer.size() - begin));
    writer.put32(0); // no second formula
    writer.put16(1); // one range
    writer.put16(static_cast<unsigned>(list.range.top - 1));
    writer.put16(static_cast<unsigned>(list.range.bottom - 1));
    writer.put16(static_cast<unsigned>(list.range.left - 1));
    writer.put16(static_cast<unsigned>(list.range.right - 1));
    writer.end();
}

/// Entries of the formula at the cursor, which then stands behind it.
std::vector<std::string> takeEntries(RecordCursor& cursor)
{
    const std::size_t size = cursor.take<std::uint16_t>();
    cursor.skip(2);
    const std::size_t end = cursor.left() - std::min(cursor.left(), size);
    std::vector<std::string> entries;
    if (size >= 3 && cursor.take<std::uint8_t>() == xls::tokenText)
        entries = listEntries(cursor.shortText(), '\0');
    if (cursor.left() > end)
        cursor.skip(cursor.left() - end);
    return entries;
}

} // namespace

void writeLists(const std::vector<OfferedList>& lists, RecordWriter& writer)
{
    constexpr std::size_t mostChecks = 65'534;
    const std::size_t count = std::min(lists.size(), mostChecks);
    if (count == 0)
        return;
    writer.begin(xls::inputChecks);
    writer.putZeros(10);
    writer.put32(0xFFFFFFFF); // no drop-down arrow is an object of its own
    writer.put32(static_cast<std::uint32_t>(count));
    writer.end();
    for (std::size_t i = 0; i < count; ++i)
        writeCheck(lists[i], writer);
}

void readListCheck(RecordStream& stream, std::vector<OfferedList>& lists, Warnings& warnings)
{
    const XlsRecord record = stream.record();
    RecordCursor cursor(record, stream);
    const auto flags = cursor.take<std::uint32_t>();
    if ((flags & kindMask) != isList || !(flags & isLiteral)) {
        if ((flags & kindMask) != 0)
            warnings.count((flags & kindMask) == isList ? "{} 条从单元格取项目的下拉列表没有引入"
                                                        : "{} 条数据有效性没有引入");
        return;
    }
    for (int i = 0; i < titlesAndTexts; ++i)
        cursor.longText();
    const DropDownEntries entries(takeEntries(cursor));
    const std::size_t second = cursor.take<std::uint16_t>();
    cursor.skip(2 + second);
    const std::size_t count = cursor.take<std::uint16_t>();
    for (std::size_t i = 0; i < count && !(*entries).empty(); ++i) {
        const int top = cursor.take<std::uint16_t>() + 1, bottom = cursor.take<std::uint16_t>() + 1;
        const int left = cursor.take<std::uint16_t>() + 1, right = cursor.take<std::uint16_t>() + 1;
        if (top <= bottom && left <= right && right <= xls::maxColumns)
            lists.push_back({{left, top, right, bottom}, entries});
    }
}

} // namespace spreadsheet
