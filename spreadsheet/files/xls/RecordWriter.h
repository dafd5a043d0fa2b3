#pragma once
#include "spreadsheet/files/ole2/little_endian.h"

#include <string>
#include <string_view>
#include <vector>

namespace spreadsheet {

/// Appends records to a workbook stream. What does not fit into one goes on in CONTINUE records.
class RecordWriter {
public:
    static constexpr std::size_t mostData = 8224; ///< bytes of one record

    void begin(std::uint16_t id);
    void end();
    template <typename Number>
    void put(Number number)
    {
        const std::size_t at = m_stream.size();
        m_stream.resize(at + sizeof number);
        putNumber(m_stream, at, number);
    }
    void put8(unsigned number) { put(static_cast<std::uint8_t>(number)); }
    void put16(unsigned number) { put(static_cast<std::uint16_t>(number)); }
    void put32(std::uint32_t number) { put(number); }
    void putBytes(Bytes bytes) { m_stream.insert(m_stream.end(), bytes.begin(), bytes.end()); }
    void putZeros(std::size_t count) { m_stream.resize(m_stream.size() + count); }

    /// A flags byte and the characters, in 8 bits if all fit; the record must have room.
    void putCharacters(std::u16string_view text);
    /// With their length before them, at most 255 (65,535) characters of a UTF-8 text.
    void putShortText(std::string_view text);
    void putLongText(std::string_view text);
    /// A long text that may go on in CONTINUE records, where its flags stand again.
    void putContinuedText(std::u16string_view text);
    /// Opens a CONTINUE record if less than so many bytes are left.
    void keepTogether(std::size_t bytes);

    /// A record of one 16-bit number.
    void record16(std::uint16_t id, unsigned number);

    std::size_t size() const { return m_stream.size(); }
    void patch32(std::size_t at, std::uint32_t number) { putNumber(m_stream, at, number); }
    void patch16(std::size_t at, std::uint16_t number) { putNumber(m_stream, at, number); }
    std::vector<std::byte> take() { return std::move(m_stream); }

private:
    std::size_t left() const { return mostData - (m_stream.size() - m_start); }

    std::vector<std::byte> m_stream;
    std::size_t m_start = 0; ///< of the open record's data
};

} // namespace spreadsheet
