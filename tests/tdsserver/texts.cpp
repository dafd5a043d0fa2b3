#include "tests/tdsserver/texts.h"

#include "tests/tdsserver/bytes.h"

#include <bit>
#include <cstdint>
#include <iconv.h>

namespace selfreport::tds {

namespace {

std::string converted(std::string_view text, const char* from, const char* to)
{
    const iconv_t handle = iconv_open(to, from);
    if (handle == std::bit_cast<iconv_t>(std::intptr_t{-1}))
        throw ProtocolError("no such conversion");
    std::string result(text.size() * 4, '\0');
    char* input = const_cast<char*>(text.data()); // the interface is older than const
    char* output = result.data();
    std::size_t inputLeft = text.size();
    std::size_t outputLeft = result.size();
    const std::size_t converted = iconv(handle, &input, &inputLeft, &output, &outputLeft);
    iconv_close(handle);
    if (converted == static_cast<std::size_t>(-1))
        throw ProtocolError("a text that is no text");
    result.resize(result.size() - outputLeft);
    return result;
}

} // namespace

std::string utf16Of(std::string_view utf8)
{
    return converted(utf8, "UTF-8", "UTF-16LE");
}

std::string utf8OfUtf16(std::string_view utf16)
{
    return converted(utf16, "UTF-16LE", "UTF-8");
}

std::string codePageOf(std::string_view utf8)
{
    return converted(utf8, "UTF-8", "GB18030");
}

std::string utf8OfCodePage(std::string_view text)
{
    return converted(text, "GB18030", "UTF-8");
}

void putText(std::string& bytes, std::string_view utf8, std::size_t countSize)
{
    const std::string utf16 = utf16Of(utf8);
    putBytes(bytes, utf16.size() / 2, countSize);
    bytes += utf16;
}

} // namespace selfreport::tds
