#pragma once
#include "spreadsheet/files/xls/records.h"
#include "spreadsheet/files/xls/RecordWriter.h"

#include <initializer_list>
#include <vector>

namespace spreadsheet {

/// A workbook of one sheet put together from records.
class StreamMaker {
public:
    StreamMaker() { begin(xls::globals); }

    /// @param data  16-bit numbers
    StreamMaker& record(std::uint16_t id, std::initializer_list<unsigned> data)
    {
        m_writer.begin(id);
        for (const unsigned number : data)
            m_writer.put16(number);
        m_writer.end();
        return *this;
    }
    StreamMaker& bytes(std::uint16_t id, const std::vector<unsigned>& data)
    {
        m_writer.begin(id);
        for (const unsigned number : data)
            m_writer.put8(number);
        m_writer.end();
        return *this;
    }
    /// In A1, with 42 as its last value.
    StreamMaker& formula(const std::vector<unsigned>& tokens)
    {
        std::vector<unsigned> data(22);
        data[4] = 15;
        data[12] = 0x45;
        data[13] = 0x40;
        data[20] = static_cast<unsigned>(tokens.size() & 0xFF);
        data[21] = static_cast<unsigned>(tokens.size() >> 8);
        data.insert(data.end(), tokens.begin(), tokens.end());
        return bytes(xls::formula, data);
    }
    StreamMaker& sheet()
    {
        m_writer.begin(xls::boundSheet);
        const std::size_t place = m_writer.size();
        m_writer.put32(0);
        m_writer.put16(0);
        m_writer.putShortText("S");
        m_writer.end();
        record(xls::endOfFile, {});
        m_writer.patch32(place, static_cast<std::uint32_t>(m_writer.size()));
        begin(xls::worksheet);
        return *this;
    }
    std::vector<std::byte> end()
    {
        record(xls::endOfFile, {});
        return m_writer.take();
    }

private:
    void begin(std::uint16_t kind) { record(xls::beginOfFile, {xls::version8, kind, 0, 0, 0, 0, 0, 0}); }
    RecordWriter m_writer;
};

} // namespace spreadsheet
