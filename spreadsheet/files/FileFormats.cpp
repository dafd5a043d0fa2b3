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
#include "text/ascii.h"

#include <algorithm>
#include <fstream>
#include <stdexcept>

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
    text.remove_prefix(std::min(text.find_first_not_of(ascii::blanks), text.size()));
    return text.size() > 1 && text[0] == '<' && (text[1] == '!' || text[1] == '?' || (text[1] | 0x20) >= 'a');
}

template <void readFresh(Bytes, Workbook&, Warnings&)>
void readForeign(Bytes content, Workbook& workbook, Warnings& warnings)
{
    Workbook fresh;
    readFresh(content, fresh, warnings);
    workbook.replaceContent(std::move(fresh));
    workbook.markCalculated();
}

template <std::vector<std::byte> written(const Workbook&, Warnings&)>
void writeForeign(const Workbook& workbook, const std::string& /*title*/, PendingFile& file,
                  Warnings& warnings)
{
    file.write(written(workbook, warnings));
}

void writeStreamed(const Workbook& workbook, const std::string& /*title*/, PendingFile& file,
                   Warnings& warnings)
{
    writeXlsx(workbook, warnings, [&file](std::size_t place, Bytes bytes) { file.writeAt(place, bytes); });
}

void readOwn(Bytes content, Workbook& workbook, Warnings& warnings)
{
    for (const std::string& unreadable : loadContent(workbook, content))
        warnings.add(unreadable);
}

void writeOwn(const Workbook& workbook, const std::string& /*title*/, PendingFile& file,
              Warnings& /*warnings*/)
{
    file.write(saveContent(workbook));
}

void readText(Bytes content, Workbook& fresh, Warnings& /*warnings*/)
{
    readCsv(content, fresh);
}

void writeText(const Workbook& workbook, const std::string& /*title*/, PendingFile& file,
               Warnings& /*warnings*/)
{
    file.write(workbookCsv(workbook));
}

void writePage(const Workbook& workbook, const std::string& title, PendingFile& file, Warnings& /*warnings*/)
{
    file.write(workbookHtml(workbook, title));
}

constexpr std::string_view ownEndings[] = {".ss7"}, xlsEndings[] = {".xls"}, xlsxEndings[] = {".xlsx"},
                           textEndings[] = {".csv", ".txt"}, pageEndings[] = {".html", ".htm"};

constexpr FileFormat formats[] = {
    {"报表文件", ownEndings, false, [](Bytes content) { return beginsWith(content, "\x89SS7"); }, readOwn,
     writeOwn},
    {"Excel文件", xlsEndings, true, looksLikeXls, readForeign<readXls>, writeForeign<writeXls>},
    {"Excel工作簿", xlsxEndings, true, [](Bytes content) { return beginsWith(content, "PK"); },
     readForeign<readXlsx>, writeStreamed},
    {"文本文件", textEndings, false, nullptr, readForeign<readText>, writeText},
    {"网页", pageEndings, false, nullptr, nullptr, writePage},
};

/// What nothing in its content tells: a text.
const FileFormat& formatOfText(Bytes content, const std::filesystem::path& file)
{
    const FileFormat* const named = fileFormatOfName(file);
    if (looksLikeMarkup(content))
        refuseFile("内容其实是网页 (HTML 或 XML),不是工作簿");
    if (!named)
        return fileFormat(".csv");
    if (named->senses || !named->read)
        refuseFile("内容不是工作簿,可能是改了扩展名的文本;若是文本,请改名为 .csv 再引入");
    return *named;
}

const FileFormat& sensedFormat(Bytes content, const std::filesystem::path& file)
{
    if (content.empty())
        refuseFile("文件是空的");
    const auto found = std::ranges::find_if(
        formats, [&](const FileFormat& format) { return format.senses && format.senses(content); });
    return found == std::end(formats) ? formatOfText(content, file) : *found;
}

} // namespace

std::span<const FileFormat> fileFormats()
{
    return formats;
}

const FileFormat* fileFormatOfName(const std::filesystem::path& file)
{
    const std::string ending = ascii::lower(file.extension().string());
    const auto found = std::ranges::find_if(formats, [&](const FileFormat& format) {
        return std::ranges::find(format.endings, ending) != format.endings.end();
    });
    return found == std::end(formats) ? nullptr : &*found;
}

const FileFormat& fileFormat(std::string_view ending)
{
    const FileFormat* const found = fileFormatOfName("a" + std::string(ending));
    if (!found)
        throw std::logic_error("no format has the ending " + std::string(ending));
    return *found;
}

std::vector<std::string> loadWorkbook(Workbook& workbook, const std::filesystem::path& file)
{
    const std::vector<std::byte> content = bytesOf(file);
    Warnings warnings;
    sensedFormat(content, file).read(content, workbook, warnings);
    return warnings.texts();
}

std::vector<std::string> saveWorkbook(const Workbook& workbook, const std::filesystem::path& file,
                                      const FileFormat& format)
{
    PendingFile pending(file); // first: what cannot be written is found before the long work
    Warnings warnings;
    format.write(workbook, file.stem().string(), pending, warnings);
    pending.putInPlace();
    return warnings.texts();
}

} // namespace spreadsheet
