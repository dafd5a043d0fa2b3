#include "spreadsheet/files/xls/RecordWriter.h"

#include "spreadsheet/files/exchange/unicode_text.h"
#include "spreadsheet/files/xls/records.h"

#include <algorithm>

namespace spreadsheet {

namespace {

bool isWide(std::u16string_view text)
{
    return std::ranges::any_of(text, [](char16_t unit) { return unit > 0xFF; });
}

/// At most so many units, no pair of surrogates cut in two.
std::u16string_view cut(std::u16string_view text, std::size_t most)
{
    if (text.size() <= most)
        return text;
    const bool splits = text[most - 1] >= 0xD800 && text[most - 1] < 0xDC00;
    return text.substr(0, splits ? most - 1 : most);
}

} // namespace

void RecordWriter::begin(std::uint16_t id)
{
    put16(id);
    put16(0);
    m_start = m_stream.size();
}

void RecordWriter::end()
{
    patch16(m_start - 2, static_cast<std::uint16_t>(m_stream.size() - m_start));
}

void RecordWriter::record16(std::uint16_t id, unsigned number)
{
    begin(id);
    put16(number);
    end();
}

void RecordWriter::putCharacters(std::u16string_view text)
{
    const bool wide = isWide(text);
    put8(wide);
    if (wide)
        return putBytes(std::as_bytes(std::span(text)));
    for (const char16_t unit : text)
        put8(unit);
}

void RecordWriter::putShortText(std::string_view text)
{
    const std::u16string units = utf16Of(text);
    const std::u16string_view kept = cut(units, 255);
    put8(static_cast<unsigned>(kept.size()));
    putCharacters(kept);
}

void RecordWriter::putLongText(std::string_view text)
{
    const std::u16string units = utf16Of(text);
    const std::u16string_view kept = cut(units, (mostData - 100) / 2);
    put16(static_cast<unsigned>(kept.size()));
    putCharacters(kept);
}

void RecordWriter::keepTogether(std::size_t bytes)
{
    if (left() >= bytes)
        return;
    end();
    begin(xls::continued);
}

void RecordWriter::putContinuedText(std::u16string_view text)
{
    const bool wide = isWide(text);
    const std::size_t unitSize = wide ? 2 : 1;
    keepTogether(3 + unitSize); // length, flags and the first character stay in one record
    put16(static_cast<unsigned>(text.size()));
    put8(wide);
    while (!text.empty()) {
        const std::size_t part = std::min(text.size(), left() / unitSize);
        if (part == 0) {
            end();
            begin(xls::continued);
            put8(wide);
            continue;
        }
        if (wide) {
            putBytes(std::as_bytes(std::span(text.substr(0, part))));
        } else {
            for (const char16_t unit : text.substr(0, part))
                put8(unit);
        }
        text.remove_prefix(part);
    }
}

} // namespace spreadsheet
