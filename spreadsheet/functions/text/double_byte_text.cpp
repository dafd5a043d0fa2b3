// LENB, LEFTB and their kind, and the change between full and half width.
#include "spreadsheet/calculation/Call.h"
#include "spreadsheet/functions/function_families.h"
#include "spreadsheet/functions/text/double_bytes.h"
#include "spreadsheet/functions/text/text_parts.h"

namespace spreadsheet {

namespace {

template <auto convert>
Operand ofWidth(Call& call)
{
    const std::string text = call.text(0);
    return call.failed() ? call.error() : Operand(Value::text(convert(text)));
}

Operand lengthInBytes(Call& call)
{
    const std::string text = call.text(0);
    return call.failed() ? call.error() : Operand(static_cast<double>(byteCount(text)));
}

struct DoubleBytes {
    static std::size_t count(std::string_view text) { return byteCount(text); }
    static std::string part(std::string_view text, std::size_t first, std::size_t count)
    {
        return bytesOf(text, first, count);
    }
};

Operand replacedBytes(Call& call)
{
    const std::string text = call.text(0);
    const int first = call.integer(1);
    const int count = call.integer(2);
    const std::string inserted = call.text(3);
    if (call.failed())
        return call.error();
    if (first < 1 || count < 0)
        return CellError::value;
    const std::size_t before = static_cast<std::size_t>(first) - 1;
    const std::size_t after = before + static_cast<std::size_t>(count);
    return Value::text(bytesOf(text, 0, before) + inserted + bytesOf(text, after, byteCount(text)));
}

/// FINDB and SEARCHB: where a text begins, counted in bytes from 1.
template <bool withWildcards>
Operand bytePosition(Call& call)
{
    const std::string wanted = call.text(0);
    const std::string text = call.text(1);
    const int first = call.integer(2, 1);
    if (call.failed())
        return call.error();
    if (first < 1 || static_cast<std::size_t>(first) > byteCount(text) + 1)
        return CellError::value;
    // Half a character at the start is passed over.
    const std::size_t from =
        text.size() -
        std::min(text.size(), bytesOf(text, static_cast<std::size_t>(first) - 1, text.size() * 2).size());
    const std::optional<std::size_t> found = placeOf(wanted, text, from, withWildcards);
    return found ? Operand(static_cast<double>(byteCount(std::string_view(text).substr(0, *found))) + 1)
                 : Operand(CellError::value);
}

constexpr auto doubleByteTextFamily = FunctionFamily::text;

const FunctionDescriptor doubleByteTextTable[] = {
    {"LENB", 1, 1, "v", doubleByteTextFamily, "文本", "返回文本的字节数，一个汉字计两个字节", lengthInBytes},
    {"LEFTB", 1, 2, "vv", doubleByteTextFamily, "文本,[字节数]", "返回文本开头的若干字节",
     leftPart<DoubleBytes>},
    {"RIGHTB", 1, 2, "vv", doubleByteTextFamily, "文本,[字节数]", "返回文本末尾的若干字节",
     rightPart<DoubleBytes>},
    {"MIDB", 3, 3, "vvv", doubleByteTextFamily, "文本,开始位置,字节数", "返回文本中从指定字节开始的若干字节",
     middlePart<DoubleBytes>},
    {"FINDB", 2, 3, "vvv", doubleByteTextFamily, "要找的文本,文本,[开始位置]",
     "返回一段文本在另一段文本中的字节位置，区分大小写", bytePosition<false>},
    {"SEARCHB", 2, 3, "vvv", doubleByteTextFamily, "要找的文本,文本,[开始位置]",
     "返回一段文本在另一段文本中的字节位置，不区分大小写，可用通配符", bytePosition<true>},
    {"REPLACEB", 4, 4, "vvvv", doubleByteTextFamily, "文本,开始位置,字节数,新文本",
     "将文本中指定的字节替换为新文本", replacedBytes},
    {"ASC", 1, 1, "v", doubleByteTextFamily, "文本", "将全角字符转换为半角字符", ofWidth<halfWidth>},
    {"DBCS", 1, 1, "v", doubleByteTextFamily, "文本", "将半角字符转换为全角字符", ofWidth<fullWidth>},
    {"JIS", 1, 1, "v", doubleByteTextFamily, "文本", "将半角字符转换为全角字符", ofWidth<fullWidth>},
    {"WIDECHAR", 1, 1, "v", doubleByteTextFamily, "文本", "将半角字符转换为全角字符", ofWidth<fullWidth>},
};

} // namespace

std::span<const FunctionDescriptor> doubleByteTextFunctions()
{
    return doubleByteTextTable;
}

} // namespace spreadsheet
