#include "spreadsheet/files/xls/xls_read.h"

#include "spreadsheet/files/exchange/imported_sheets.h"
#include "spreadsheet/files/exchange/lacking_results.h"
#include "spreadsheet/files/ole2/CompoundFile.h"
#include "spreadsheet/files/placing/ContentError.h"
#include "spreadsheet/files/xls/defined_names.h"
#include "spreadsheet/files/xls/records.h"
#include "spreadsheet/files/xls/SheetReader.h"
#include "spreadsheet/workbook/Workbook.h"

namespace spreadsheet {

// Formulas name sheets and names by number before these are all known, so the records ahead of the sheets
// are read whole, then sheets and names are made, and only then cells are read. Every sheet is found by its
// offset: what stands between them is not ours and may be anything.

namespace {

constexpr std::uint16_t bare2 = 0x0009, bare3 = 0x0209, bare4 = 0x0409;

/// Reads the records before the sheets, then the sheets.
class WorkbookReader {
public:
    WorkbookReader(Bytes stream, Workbook& workbook, Warnings& warnings)
        : m_stream(stream)
        , m_workbook(workbook)
        , m_globals(workbook.styles(), warnings)
    {
    }

    void read()
    {
        readGlobals();
        nameSheets();
        takeNames(m_names, m_globals.links, m_globals.warnings);
        defineNames(m_names, m_globals.links, m_workbook, m_globals.warnings);
        for (const Tab& tab : m_tabs) {
            if (tab.sheet != 0)
                readSheet(tab);
        }
        applyPrintNames(m_names, m_globals.links, m_workbook, m_globals.warnings);
        activate();
        computeLackingResults(m_workbook, false);
        m_workbook.markCalculated();
    }

private:
    struct Tab {
        std::size_t offset = 0; ///< of its records in the stream
        bool isHidden = false, isVeryHidden = false;
        bool isWorksheet = false;
        std::string name;
        int sheet = 0; ///< ours; 0: none
    };

    void begin(RecordStream& stream)
    {
        requireFile(stream.next() && stream.record().id == xls::beginOfFile, "开头不是工作簿的记录");
        m_globals.version = stream.record().wordAt(0);
        requireFile(m_globals.version == xls::version8 || m_globals.version == xls::version5,
                    "版本不支持,只能读取 5.0/95 和 97-2003 的文件");
        requireFile(stream.record().wordAt(2) == xls::globals, "不是工作簿(可能是单独的图表或宏表)");
        m_globals.styles.setVersion(m_globals.version);
    }

    void readGlobals()
    {
        RecordStream stream(m_stream);
        begin(stream);
        for (;;) {
            requireFile(stream.next(), "全局部分没有结尾,文件可能被截断");
            if (stream.record().id == xls::endOfFile)
                return;
            if (stream.record().id == xls::filePassword)
                throw ContentError("文件有打开密码,请先在原来的程序中取消密码再引入");
            if (stream.record().id == xls::boundSheet)
                addTab(stream.record());
            else
                readAsFarAsItGoes(stream.record().id, m_globals.warnings, [&] { record(stream); });
        }
    }

    void record(RecordStream& stream)
    {
        const XlsRecord& record = stream.record();
        switch (record.id) {
        case xls::codePage:
            m_globals.codePage = CodePage(record.wordAt(0));
            return;
        case xls::dateMode:
            m_workbook.setCountsFrom1904(record.wordAt(0) == 1);
            return;
        case xls::country: {
            constexpr std::uint16_t america = 1; // as telephones count countries
            if (record.wordAt(2) == america)
                m_globals.styles.setCountry(FileCountry::america);
            return;
        }
        case xls::window1:
            m_activeTab = record.wordAt(10);
            return;
        case xls::font:
            return m_globals.styles.readFont(record, m_globals.codePage);
        case xls::format:
            return m_globals.styles.readFormat(record, m_globals.codePage);
        case xls::palette:
            return m_globals.styles.readPalette(record);
        case xls::extendedFormat:
            return m_globals.styles.readCellFormat(record);
        case xls::sharedTexts:
            return sharedTexts(stream);
        default:
            if (m_globals.version == xls::version8)
                link(stream);
        }
    }

    void link(RecordStream& stream)
    {
        const XlsRecord record = stream.record();
        switch (record.id) {
        case xls::externBook:
            return m_globals.links.readBook(record);
        case xls::externName:
            return m_globals.links.readExternName(record);
        case xls::externSheet:
            return m_globals.links.readExternSheets(record, stream);
        case xls::name:
            // One that is short keeps its number.
            m_names.emplace_back();
            readAsFarAsItGoes(record.id, m_globals.warnings,
                              [&] { m_names.back() = readDefinedName(record); });
            m_globals.links.addName(m_names.back().name);
            return;
        default:
            return;
        }
    }

    void addTab(const XlsRecord& record)
    {
        Tab tab;
        tab.offset = record.at<std::uint32_t>(0);
        tab.isHidden = (record.byteAt(4) & 3) != 0;
        tab.isVeryHidden = (record.byteAt(4) & 3) == 2;
        tab.isWorksheet = record.byteAt(5) == 0;
        RecordCursor cursor(record);
        cursor.skip(6);
        tab.name = m_globals.version == xls::version8
                       ? cursor.shortText()
                       : m_globals.codePage.decoded(cursor.bytes(cursor.take<std::uint8_t>()));
        m_tabs.push_back(std::move(tab));
    }

    void sharedTexts(RecordStream& stream)
    {
        constexpr std::size_t leastText = 3; // bytes that each text takes
        RecordCursor cursor(stream.record(), stream);
        cursor.skip(4); // how often they are used
        const std::size_t count = cursor.take<std::uint32_t>();
        requireFile(count <= cursor.left() / leastText, "文本表声明的个数超出文件");
        m_globals.texts.reserve(count);
        while (m_globals.texts.size() < count) {
            m_globals.texts.emplace_back(cursor.longText());
            if (cursor.isRich())
                m_globals.warnings.add("单元格内各段文字的不同字体没有保留,按单元格的字体显示");
        }
    }

    /// Our sheets, under the file's names where these are allowed and free.
    void nameSheets()
    {
        int count = 0;
        for (Tab& tab : m_tabs) {
            if (!tab.isWorksheet)
                m_globals.warnings.add("“" + tab.name + "”不是工作表,没有引入");
            else if (count == maxSheets)
                m_globals.warnings.add("工作表超过 256 张,其余的没有引入");
            else
                addImportedSheet(m_workbook, tab.sheet = ++count, tab.name, m_globals.warnings);
            m_globals.links.addTab(tab.sheet == 0 ? std::string() : m_workbook.sheet(tab.sheet).name());
        }
        requireFile(count > 0, "没有工作表");
    }

    void readSheet(const Tab& tab)
    {
        requireFile(tab.offset < m_stream.size(), "表的位置超出文件");
        RecordStream stream(m_stream, tab.offset);
        requireFile(stream.next() && stream.record().id == xls::beginOfFile, "表的位置不对");
        Sheet& sheet = m_workbook.sheet(tab.sheet);
        SheetReader(m_workbook, sheet, m_globals).read(stream);
        if (tab.isHidden)
            sheet.changeSettings([&](SheetSettings& settings) {
                settings.isHidden = true;
                settings.isVeryHidden = tab.isVeryHidden;
            });
    }

    void activate()
    {
        if (m_activeTab < m_tabs.size() && m_tabs[m_activeTab].sheet != 0)
            m_workbook.setActiveSheet(m_tabs[m_activeTab].sheet);
    }

    Bytes m_stream;
    Workbook& m_workbook;
    XlsGlobals m_globals;
    std::vector<Tab> m_tabs;
    std::vector<DefinedName> m_names;
    std::size_t m_activeTab = 0;
};

} // namespace

bool looksLikeXls(Bytes file)
{
    if (CompoundFile::hasSignature(file))
        return true;
    if (file.size() < 8)
        return false;
    const auto first = numberAt<std::uint16_t>(file, 0), size = numberAt<std::uint16_t>(file, 2);
    const bool isBof = first == xls::beginOfFile || first == bare2 || first == bare3 || first == bare4;
    return isBof && size >= 4 && size <= 32;
}

void readXls(Bytes file, Workbook& workbook, Warnings& warnings)
{
    if (!CompoundFile::hasSignature(file))
        return WorkbookReader(file, workbook, warnings).read();
    const CompoundFile compound(file);
    if (compound.stream("EncryptedPackage"))
        throw ContentError("文件有打开密码,请先在原来的程序中取消密码再引入");
    std::optional<StreamBytes> stream = compound.stream("Workbook");
    if (!stream)
        stream = compound.stream("Book");
    requireFile(stream.has_value(), "复合文档中没有工作簿");
    WorkbookReader(stream->bytes(), workbook, warnings).read();
}

} // namespace spreadsheet
