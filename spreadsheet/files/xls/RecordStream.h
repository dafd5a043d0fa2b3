#pragma once
#include "spreadsheet/files/exchange/Warnings.h"
#include "spreadsheet/files/ole2/little_endian.h"
#include "spreadsheet/files/placing/ContentError.h"

#include <string>
#include <vector>

namespace spreadsheet {

/// A record that holds less than it should. Who can do without the rest goes on behind it.
struct ShortRecord : ContentError {
    using ContentError::ContentError;
};

/// One record of a workbook stream: a number, and at most 65,535 bytes.
struct XlsRecord {
    std::uint16_t id = 0;
    Bytes data;
    std::size_t offset = 0; ///< of the record in the stream, for messages

    std::size_t size() const { return data.size(); }
    /// The number at a byte offset. @throws ContentError that names the record if it is too short
    template <typename Number>
    Number at(std::size_t place) const
    {
        if (place > data.size() || data.size() - place < sizeof(Number))
            refuseShort();
        return numberAt<Number>(data, place);
    }
    std::uint8_t byteAt(std::size_t place) const { return at<std::uint8_t>(place); }
    std::uint16_t wordAt(std::size_t place) const { return at<std::uint16_t>(place); }
    /// Bytes from one offset on. @throws ContentError if the record is too short
    Bytes bytesAt(std::size_t place, std::size_t count) const;
    Bytes from(std::size_t place) const;

private:
    [[noreturn]] void refuseShort() const;
};

/// Reads a record as far as it goes; that there is no more of it becomes a warning.
void readAsFarAsItGoes(std::uint16_t id, Warnings& warnings, const auto& read)
{
    try {
        read();
    } catch (const ShortRecord&) {
        constexpr std::string_view digits = "0123456789ABCDEF";
        std::string name = "0x0000";
        for (std::size_t i = 0; i < 4; ++i)
            name[2 + i] = digits[id >> (12 - 4 * i) & 0xF];
        warnings.count("{} 个 " + name + " 记录太短,只读取了前面的部分");
    }
}

/// Goes through the records of a stream.
class RecordStream {
public:
    explicit RecordStream(Bytes stream, std::size_t offset = 0)
        : m_stream(stream)
        , m_offset(offset)
    {
    }

    /// False if the stream ends here. @throws ContentError if a record's length goes beyond the end
    bool next();
    const XlsRecord& record() const { return m_record; }
    /// The number of the record that follows; 0 at the end.
    std::uint16_t nextId() const;
    std::size_t offset() const { return m_offset; } ///< where the next record begins

private:
    Bytes m_stream;
    std::size_t m_offset;
    XlsRecord m_record;
};

/// Reads a record together with the CONTINUE records behind it from front to back.
class RecordCursor {
public:
    explicit RecordCursor(const XlsRecord& record)
        : m_record(record)
        , m_parts{record.data}
    {
    }
    /// Takes the CONTINUE records that follow in the stream.
    RecordCursor(const XlsRecord& record, RecordStream& stream);

    template <typename Number>
    Number take()
    {
        require(sizeof(Number));
        const auto number = numberAt<Number>(rest(), 0);
        m_at += sizeof(Number);
        return number;
    }
    void skip(std::size_t bytes);
    std::size_t left() const; ///< bytes not read yet

    /// A text of so many characters behind its byte of flags (8-bit or 16-bit characters, formatting
    /// runs, phonetic data, both skipped), as UTF-8.
    std::string text(std::size_t characters);
    /// Texts with their length before them.
    std::string shortText() { return text(take<std::uint8_t>()); }
    std::string longText() { return text(take<std::uint16_t>()); }
    /// Characters without flags of their own; where they go on in the next record, flags stand again.
    std::string characters(std::size_t count, bool wide);
    /// Bytes of a text in the file's code page.
    std::string bytes(std::size_t count);
    bool isRich() const { return m_isRich; } ///< whether the last text had formatting runs

private:
    Bytes rest() { return m_parts[m_part].subspan(m_at); }
    /// Moves to the part where reading goes on; all bytes must lie in it.
    void require(std::size_t count);
    void enterNextPart();

    XlsRecord m_record;
    std::vector<Bytes> m_parts;
    std::size_t m_part = 0;
    std::size_t m_at = 0;
    bool m_isRich = false;
};

} // namespace spreadsheet
