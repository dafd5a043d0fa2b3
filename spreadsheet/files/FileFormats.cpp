#include "spreadsheet/files/FileFormats.h"

#include "spreadsheet/files/content/content.h"
#include "spreadsheet/files/exchange/Warnings.h"
#include "spreadsheet/files/placing/PendingFile.h"
#include "spreadsheet/files/text/csv.h"
#include "spreadsheet/files/text/html.h"
#include "spreadsheet/files/xls/xls_read.h"
#include "spreadsheet/files/xls/xls_write.h"
#include "spreadsheet/files/xlsx/xlsx_read.h"
#include "spreadsheet/files/xlsx/xlsx_write.h"
#include "spreadsheet/workbook/Workbook.h"

#include <algorithm>
#include <array>
#include <fstream>

namespace spreadsheet {

namespace {

constexpr std::uintmax_t mostBytes = std::uintmax_t(1) << 30; ///< larger files are not read

std::vector<std::byte> bytesOf(const std::filesystem::path& file)
{
    std::error_code error;
    if (std::filesystem::is_directory(file, error))
        throw ContentError("无法打开文件 " + file.string() + ": 这是文件夹");
    const std::uintmax_t size = std::filesystem::file_size(file, error);
    if (error)
        throw ContentError("无法打开文件 " + file.string() + ": 文件不存在或没有读权限");
    if (size > mostBytes)
        throw ContentError("文件超过 1 GB,无法打开: " + file.string());
    std::vector<std::byte> bytes(static_cast<std::size_t>(size));
    std::ifstream stream(file, std::ios::binary);
    stream.read(reinterpret_cast<char*>(bytes.data()), static_cast<std::streamsize>(bytes.size()));
    if (!stream)
        throw ContentError("无法读取文件 " + file.string());
    return bytes;
}

bool beginsWith(Bytes bytes, std::string_view text)
{
    return bytes.size() >= text.size() && std::memcmp(bytes.data(), text.data(), text.size()) == 0;
}

/// True for "<html", "<!DOCTYPE", "<?xml" and the like behind mark and blanks.
bool looksLikeMarkup(Bytes bytes)
{
    std::string_view text(reinterpret_cast<const char*>(bytes.data()),
                          std::min<std::size_t>(bytes.size(), 1024));
    if (text.starts_with("\xEF\xBB\xBF"))
        text.remove_prefix(3);
    text.remove_prefix(std::min(text.find_first_not_of(" \t\r\n"), text.size()));
    return text.size() > 1 && text[0] == '<' && (text[1] == '!' || text[1] == '?' || (text[1] | 0x20) >= 'a');
}

FileFormat sensedFormat(Bytes bytes, const std::filesystem::path& file)
{
    if (bytes.empty())
        refuseFile("文件是空的");
    if (beginsWith(bytes, "\x89SS7"))
        return FileFormat::ss7;
    if (looksLikeXls(bytes))
        return FileFormat::xls;
    if (beginsWith(bytes, "PK"))
        return FileFormat::xlsx;
    const std::optional<FileFormat> named = fileFormatOfName(file);
    if (looksLikeMarkup(bytes))
        refuseFile("内容其实是网页 (HTML 或 XML),不是工作簿");
    if (named && *named != FileFormat::csv)
        refuseFile("内容不是工作簿,可能是改了扩展名的文本;若是文本,请改名为 .csv 再引入");
    return FileFormat::csv;
}

} // namespace

std::optional<FileFormat> fileFormatOfName(const std::filesystem::path& file)
{
    static constexpr std::array<std::pair<std::string_view, FileFormat>, 7> endings{{
        {".ss7", FileFormat::ss7},
        {".xls", FileFormat::xls},
        {".xlsx", FileFormat::xlsx},
        {".csv", FileFormat::csv},
        {".txt", FileFormat::csv},
        {".html", FileFormat::html},
        {".htm", FileFormat::html},
    }};
    std::string ending = file.extension().string();
    for (char& c : ending)
        c = c >= 'A' && c <= 'Z' ? static_cast<char>(c | 0x20) : c;
    const auto found = std::ranges::find(endings, ending, [](const auto& entry) { return entry.first; });
    return found == endings.end() ? std::nullopt : std::optional(found->second);
}

std::vector<std::string> loadWorkbook(Workbook& workbook, const std::filesystem::path& file)
{
    const std::vector<std::byte> bytes = bytesOf(file);
    const FileFormat format = sensedFormat(bytes, file);
    Warnings warnings;
    if (format == FileFormat::ss7) {
        loadContent(workbook, bytes);
        return {};
    }
    Workbook fresh;
    if (format == FileFormat::xls)
        readXls(bytes, fresh, warnings);
    else if (format == FileFormat::xlsx)
        readXlsx(bytes, fresh, warnings);
    else
        readCsv(bytes, fresh);
    workbook.replaceContent(std::move(fresh));
    workbook.markCalculated();
    return warnings.texts();
}

std::vector<std::string> saveWorkbook(const Workbook& workbook, const std::filesystem::path& file,
                                      FileFormat format)
{
    PendingFile pending(file); // first: what cannot be written is found before the long work
    Warnings warnings;
    const auto put = [&](const auto& bytes) { pending.write(bytes); };
    switch (format) {
    case FileFormat::ss7:
        put(saveContent(workbook));
        break;
    case FileFormat::xls:
        put(writeXls(workbook, warnings));
        break;
    case FileFormat::xlsx:
        put(writeXlsx(workbook, warnings));
        break;
    case FileFormat::csv:
        put(workbookCsv(workbook));
        break;
    case FileFormat::html:
        put(workbookHtml(workbook, file.stem().string()));
        break;
    }
    pending.putInPlace();
    return warnings.texts();
}

} // namespace spreadsheet
