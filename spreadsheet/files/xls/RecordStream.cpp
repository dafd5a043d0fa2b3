#include "spreadsheet/files/xls/RecordStream.h"

#include "spreadsheet/files/exchange/unicode_text.h"
#include "spreadsheet/files/placing/ContentError.h"
#include "spreadsheet/files/xls/records.h"

#include <algorithm>
#include <array>
#include <cstdio>

namespace spreadsheet {

namespace {

constexpr std::size_t headerSize = 4;

std::string nameOf(const XlsRecord& record)
{
    std::array<char, 64> place;
    std::snprintf(place.data(), place.size(), "记录 0x%04X (位置 %zu) ", record.id, record.offset);
    return place.data();
}

[[noreturn]] void refuseShortRecord(const XlsRecord& record)
{
    throw ShortRecord("文件无法读取: " + nameOf(record) + "太短");
}

} // namespace

void XlsRecord::refuseShort() const
{
    refuseShortRecord(*this);
}

Bytes XlsRecord::bytesAt(std::size_t place, std::size_t count) const
{
    if (place > data.size() || data.size() - place < count)
        refuseShort();
    return data.subspan(place, count);
}

Bytes XlsRecord::from(std::size_t place) const
{
    if (place > data.size())
        refuseShort();
    return data.subspan(place);
}

bool RecordStream::next()
{
    if (m_stream.size() - m_offset < headerSize)
        return false;
    m_record = {numberAt<std::uint16_t>(m_stream, m_offset), {}, m_offset};
    const std::size_t size = numberAt<std::uint16_t>(m_stream, m_offset + 2);
    if (m_stream.size() - m_offset - headerSize < size)
        refuseFile(nameOf(m_record) + "超出文件末尾,文件可能被截断");
    m_record.data = m_stream.subspan(m_offset + headerSize, size);
    m_offset += headerSize + size;
    return true;
}

std::uint16_t RecordStream::nextId() const
{
    return m_stream.size() - m_offset < headerSize ? std::uint16_t(0)
                                                   : numberAt<std::uint16_t>(m_stream, m_offset);
}

RecordCursor::RecordCursor(const XlsRecord& record, RecordStream& stream)
    : RecordCursor(record)
{
    while (stream.nextId() == xls::continued && stream.next())
        m_parts.push_back(stream.record().data);
}

std::size_t RecordCursor::left() const
{
    std::size_t sum = m_parts[m_part].size() - m_at;
    for (std::size_t part = m_part + 1; part < m_parts.size(); ++part)
        sum += m_parts[part].size();
    return sum;
}

void RecordCursor::enterNextPart()
{
    if (++m_part == m_parts.size())
        refuseShortRecord(m_record);
    m_at = 0;
}

void RecordCursor::require(std::size_t count)
{
    while (m_at == m_parts[m_part].size())
        enterNextPart();
    if (m_parts[m_part].size() - m_at < count)
        refuseShortRecord(m_record);
}

void RecordCursor::skip(std::size_t bytes)
{
    while (bytes > 0) {
        require(1);
        const std::size_t part = std::min(bytes, m_parts[m_part].size() - m_at);
        m_at += part;
        bytes -= part;
    }
}

std::string RecordCursor::bytes(std::size_t count)
{
    std::string text;
    while (text.size() < count) {
        require(1);
        const Bytes from = rest();
        const std::size_t part = std::min(count - text.size(), from.size());
        text.append(reinterpret_cast<const char*>(from.data()), part);
        m_at += part;
    }
    return text;
}

std::string RecordCursor::text(std::size_t characterCount)
{
    const auto flags = take<std::uint8_t>();
    const bool isWide = flags & 1, hasPhonetic = flags & 4;
    m_isRich = flags & 8;
    const std::size_t runs = m_isRich ? take<std::uint16_t>() : 0u;
    const std::size_t phonetic = hasPhonetic ? take<std::uint32_t>() : 0u;
    std::string result = characters(characterCount, isWide);
    skip(runs * 4);
    skip(std::min(phonetic, left())); // some programs claim more than they write
    return result;
}

std::string RecordCursor::characters(std::size_t count, bool wide)
{
    std::string result;
    std::u16string units;
    while (count > 0) {
        if (m_at == m_parts[m_part].size()) {
            enterNextPart();
            wide = take<std::uint8_t>() & 1;
        }
        const Bytes from = rest();
        const std::size_t part = std::min(count, wide ? from.size() / 2 : from.size());
        if (part == 0 && !from.empty())
            refuseShortRecord(m_record);
        if (wide) {
            const std::size_t before = units.size();
            units.resize(before + part);
            std::memcpy(units.data() + before, from.data(), part * 2);
        } else {
            result += utf8Of(units);
            units.clear();
            for (const std::byte byte : from.first(part))
                appendUtf8(static_cast<char32_t>(byte), result);
        }
        m_at += wide ? part * 2 : part;
        count -= part;
    }
    return units.empty() ? result : result + utf8Of(units);
}

} // namespace spreadsheet
