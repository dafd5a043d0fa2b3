#include "spreadsheet/files/exchange/CodePage.h"

#include <array>
#include <cerrno>
#include <iconv.h>

namespace spreadsheet {

namespace {

/// Converts; `stray` is put for each byte that cannot be. "" for an encoding that is not known.
std::string converted(const char* to, const char* from, std::string_view text, std::string_view stray)
{
    const iconv_t converter = iconv_open(to, from);
    if (converter == reinterpret_cast<iconv_t>(-1))
        return {};
    std::string result;
    std::array<char, 4096> buffer;
    std::string input(text);
    char* in = input.data();
    std::size_t left = input.size();
    while (left > 0) {
        char* out = buffer.data();
        std::size_t room = buffer.size();
        const std::size_t done = iconv(converter, &in, &left, &out, &room);
        const int error = done == static_cast<std::size_t>(-1) ? errno : 0;
        result.append(buffer.data(), out);
        if (error == 0 || error == E2BIG)
            continue;
        result += stray;
        do { // the rest of a UTF-8 character goes with its first byte
            ++in;
            --left;
        } while (left > 0 && std::string_view(from) == "UTF-8" && (*in & 0xC0) == 0x80);
    }
    iconv_close(converter);
    return result;
}

const char* nameOfNumber(int number)
{
    static constexpr struct {
        int number;
        const char* name;
    } names[] = {
        {367, "ASCII"},       {437, "CP437"},     {850, "CP850"},   {852, "CP852"},   {866, "CP866"},
        {874, "CP874"},       {932, "CP932"},     {936, "GB18030"}, {949, "CP949"},   {950, "CP950"},
        {1250, "CP1250"},     {1251, "CP1251"},   {1253, "CP1253"}, {1254, "CP1254"}, {1255, "CP1255"},
        {1256, "CP1256"},     {1257, "CP1257"},   {1258, "CP1258"}, {1361, "JOHAB"},  {10000, "MACINTOSH"},
        {32768, "MACINTOSH"}, {54936, "GB18030"},
    };
    for (const auto& entry : names) {
        if (entry.number == number)
            return entry.name;
    }
    return "CP1252";
}

} // namespace

CodePage::CodePage(int number)
    : m_name(nameOfNumber(number))
{
}

std::string CodePage::decoded(std::string_view bytes) const
{
    return converted("UTF-8", m_name.c_str(), bytes, "\uFFFD");
}

std::string CodePage::encoded(std::string_view utf8) const
{
    return converted(m_name.c_str(), "UTF-8", utf8, "?");
}

} // namespace spreadsheet
