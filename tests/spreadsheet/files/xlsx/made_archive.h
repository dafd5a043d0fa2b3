#pragma once
#include "tests/spreadsheet/files/FilesTest.h"

#include <fstream>
#include <minizip/zip.h>
#include <string>
#include <utility>
#include <vector>

namespace spreadsheet {

inline std::vector<std::byte> bytesOf(const std::filesystem::path& file)
{
    std::ifstream stream(file, std::ios::binary);
    const std::string text((std::istreambuf_iterator<char>(stream)), {});
    const Bytes bytes = std::as_bytes(std::span(text));
    return {bytes.begin(), bytes.end()};
}

/// Paths and contents of the parts of an archive.
using Parts = std::vector<std::pair<std::string, std::string>>;

/// @param method  8: compressed; 0: not
inline std::vector<std::byte> archive(const TestFolder& folder, const Parts& parts, int method = 8)
{
    const std::filesystem::path path = folder.file("made.zip");
    const zipFile zip = zipOpen64(path.c_str(), APPEND_STATUS_CREATE);
    for (const auto& [name, content] : parts) {
        zip_fileinfo info{};
        zipOpenNewFileInZip(zip, name.c_str(), &info, nullptr, 0, nullptr, 0, nullptr, method, 9);
        zipWriteInFileInZip(zip, content.data(), static_cast<unsigned>(content.size()));
        zipCloseFileInZip(zip);
    }
    zipClose(zip, nullptr);
    return bytesOf(path);
}

/// The smallest workbook, with the given sheet.
inline Parts workbookOf(const std::string& sheet)
{
    const std::string relation = "http://schemas.openxmlformats.org/officeDocument/2006/relationships";
    return {
        {"_rels/.rels", "<Relationships><Relationship Id=\"r1\" Type=\"" + relation +
                            "/officeDocument\" Target=\"/xl/workbook.xml\"/></Relationships>"},
        {"xl/workbook.xml",
         "<x:workbook xmlns:x=\"m\" xmlns:r=\"r\"><x:sheets><x:sheet name=\"S\" sheetId=\"1\" "
         "r:id=\"r1\"/></x:sheets></x:workbook>"},
        {"xl/_rels/workbook.xml.rels", "<Relationships><Relationship Id=\"r1\" Type=\"" + relation +
                                           "/worksheet\" Target=\"worksheets/sheet1.xml\"/></Relationships>"},
        {"xl/worksheets/sheet1.xml", sheet}};
}

} // namespace spreadsheet
