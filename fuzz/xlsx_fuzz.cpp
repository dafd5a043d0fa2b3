// Feeds any bytes to the .xlsx reader: as the archive itself, and as one sheet inside an intact archive,
// which no fuzzer gets through compression to.
#include "spreadsheet/files/placing/ContentError.h"
#include "spreadsheet/files/xlsx/xlsx_read.h"
#include "spreadsheet/workbook/Workbook.h"

#include <algorithm>
#include <cstdint>
#include <span>
#include <string>
#include <vector>
#include <zlib.h>

namespace {

void append(std::string& bytes, std::uint64_t number, int size)
{
    for (int i = 0; i < size; ++i)
        bytes += i < 8 ? static_cast<char>(number >> 8 * i & 0xFF) : static_cast<char>(0);
}

/// An archive of uncompressed parts.
class StoredArchive {
public:
    void add(const std::string& name, const std::string& content)
    {
        const auto sum =
            crc32(0, reinterpret_cast<const Bytef*>(content.data()), static_cast<uInt>(content.size()));
        std::string common;
        append(common, 20, 2);
        append(common, 0, 8);
        append(common, sum, 4);
        append(common, content.size(), 4);
        append(common, content.size(), 4);
        append(common, name.size(), 2);
        append(common, 0, 2);
        m_directory += "PK\x01\x02";
        append(m_directory, 20, 2);
        m_directory += common;
        append(m_directory, 0, 10);
        append(m_directory, m_files.size(), 4);
        m_directory += name;
        m_files += "PK\x03\x04" + common + name + content;
        ++m_count;
    }
    std::string finished() const
    {
        std::string end = "PK\x05\x06";
        append(end, 0, 4);
        append(end, m_count, 2);
        append(end, m_count, 2);
        append(end, m_directory.size(), 4);
        append(end, m_files.size(), 4);
        append(end, 0, 2);
        return m_files + m_directory + end;
    }

private:
    std::string m_files, m_directory;
    std::uint64_t m_count = 0;
};

void read(std::string_view file)
{
    spreadsheet::Workbook workbook;
    spreadsheet::Warnings warnings;
    try {
        spreadsheet::readXlsx(std::as_bytes(std::span(file)), workbook, warnings);
    } catch (const spreadsheet::ContentError&) {
        return;
    }
    workbook.recalculate();
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const std::string input(reinterpret_cast<const char*>(data), size);
    if (input.starts_with("PK")) {
        read(input);
        return 0;
    }
    // A zero byte parts the sheet from the styles.
    const std::size_t cut = std::min(input.find('\0'), input.size());
    StoredArchive archive;
    archive.add("_rels/.rels", R"(<R><Relationship Id="a" Type="/officeDocument" Target="w.xml"/></R>)");
    archive.add("w.xml", R"(<workbook><sheets><sheet name="S" id="s"/></sheets></workbook>)");
    archive.add("_rels/w.xml.rels", R"(<R><Relationship Id="s" Type="/worksheet" Target="s.xml"/>)"
                                    R"(<Relationship Id="t" Type="/styles" Target="t.xml"/></R>)");
    archive.add("s.xml", input.substr(0, cut));
    archive.add("t.xml", cut < input.size() ? input.substr(cut + 1) : "<styleSheet/>");
    read(archive.finished());
    return 0;
}
