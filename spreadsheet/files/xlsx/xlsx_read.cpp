#include "spreadsheet/files/xlsx/xlsx_read.h"

#include "spreadsheet/files/exchange/imported_sheets.h"
#include "spreadsheet/files/exchange/lacking_results.h"
#include "spreadsheet/files/exchange/print_names.h"
#include "spreadsheet/files/placing/ContentError.h"
#include "spreadsheet/files/xlsx/Archive.h"
#include "spreadsheet/files/xlsx/Relations.h"
#include "spreadsheet/files/xlsx/xlsx_defined_names.h"
#include "spreadsheet/files/xlsx/xlsx_losses.h"
#include "spreadsheet/files/xlsx/XlsxSheetReader.h"
#include "spreadsheet/files/xlsx/xml.h"
#include "spreadsheet/workbook/Workbook.h"

#include <algorithm>
#include <charconv>

namespace spreadsheet {

namespace {

class XlsxReader {
public:
    XlsxReader(Bytes file, Workbook& workbook, Warnings& warnings)
        : m_archive(file)
        , m_workbook(workbook)
        , m_warnings(warnings)
        , m_styles(workbook.styles(), warnings)
    {
    }

    void read()
    {
        const auto path = Relations(m_archive, "").byKind("/officeDocument");
        if (path && path->ends_with(".bin"))
            refuseFile("这是二进制工作簿 (.xlsb),请先在原来的程序中另存为 .xlsx");
        const auto book = path ? XmlPart::read(m_archive, *path) : std::nullopt;
        requireFile(book && localName(book->root().name()) == "workbook",
                    "压缩包中没有工作簿 (不是 .xlsx 文件)");
        const Relations relations(m_archive, *path);
        countBookLosses(relations, m_warnings);
        readStyles(relations);
        readTexts(relations);
        m_workbook.setCountsFrom1904(
            isTrue(attributeNamed(childNamed(book->root(), "workbookPr"), "date1904")));
        m_shared.leavesComputing =
            isTrue(attributeNamed(childNamed(book->root(), "calcPr"), "fullCalcOnLoad"));
        nameSheets(childNamed(book->root(), "sheets"), relations);
        for (const Tab& tab : m_tabs)
            readTables(tab);
        defineNames(childNamed(book->root(), "definedNames"));
        for (const Tab& tab : m_tabs)
            readSheet(tab);
        printNames(childNamed(book->root(), "definedNames"));
        activate(book->root());
        computeLackingResults(m_workbook, m_shared.leavesComputing);
        m_workbook.markCalculated();
    }

private:
    struct Tab {
        std::optional<std::string> path; ///< of its part
        bool isHidden, isVeryHidden;
        int sheet; ///< ours; 0: none
    };

    void readStyles(const Relations& relations)
    {
        if (const auto theme = relations.byKind("/theme")) {
            if (const auto xml = XmlPart::read(m_archive, *theme))
                m_styles.readTheme(xml->root());
        }
        if (const auto styles = relations.byKind("/styles"))
            m_styleXml = XmlPart::read(m_archive, *styles);
        if (m_styleXml)
            m_styles.read(m_styleXml->root());
    }

    void readTexts(const Relations& relations)
    {
        const auto path = relations.byKind("/sharedStrings");
        const auto xml = path ? XmlPart::read(m_archive, *path) : std::nullopt;
        if (!xml)
            return;
        eachChild(xml->root(), "si", [this](pugi::xml_node node) {
            m_shared.texts.emplace_back(richText(node));
            if (childNamed(node, "r"))
                m_warnings.add("单元格内各段文字的不同字体没有保留,按单元格的字体显示");
        });
    }

    /// Our sheets, under the file's names where these are allowed and free.
    void nameSheets(pugi::xml_node sheets, const Relations& relations)
    {
        int count = 0;
        eachChild(sheets, "sheet", [&](pugi::xml_node node) {
            const std::string_view state = attributeNamed(node, "state").as_string("visible");
            Tab tab{relations.byId(attributeNamed(node, "id").value()), state != "visible",
                    state == "veryHidden", 0};
            if (count == maxSheets)
                m_warnings.add("工作表超过 256 张,其余的没有引入");
            else
                addImportedSheet(m_workbook, tab.sheet = ++count, textOf(attributeNamed(node, "name")),
                                 m_warnings);
            m_tabs.push_back(std::move(tab));
        });
        requireFile(count > 0, "没有工作表");
    }

    void readTables(const Tab& tab)
    {
        if (!tab.path || tab.sheet == 0)
            return;
        for (const std::string& path : Relations(m_archive, *tab.path).allOfKind("/table")) {
            const auto xml = XmlPart::read(m_archive, path);
            if (xml)
                readXlsxTable(xml->root(), m_workbook.sheet(tab.sheet).name(), m_shared.names, m_warnings);
        }
    }

    void defineNames(pugi::xml_node names)
    {
        std::vector<int> sheets;
        for (const Tab& tab : m_tabs)
            sheets.push_back(tab.sheet);
        defineXlsxNames(names, sheets, m_workbook, m_shared.names, m_warnings);
    }

    void readSheet(const Tab& tab)
    {
        if (tab.sheet == 0)
            return;
        auto xml = tab.path ? XmlPart::read(m_archive, *tab.path, "sheetData") : std::nullopt;
        if (!xml) {
            m_warnings.add("表“" + m_workbook.sheet(tab.sheet).name() + "”在文件中没有内容,引入为空表");
            return;
        }
        Sheet& sheet = m_workbook.sheet(tab.sheet);
        if (localName(xml->root().name()) != "worksheet") {
            m_warnings.add("“" + sheet.name() + "”不是工作表,引入为空表");
            return;
        }
        XlsxSheetReader reader(m_workbook, sheet, m_styles, m_shared, m_warnings);
        reader.read(xml->root(), xml->apart());
        const Relations relations(m_archive, *tab.path);
        countSheetLosses(xml->root(), m_warnings);
        countDrawingLosses(m_archive, relations, m_warnings);
        if (const auto comments = relations.byKind("/comments")) {
            if (const auto commentXml = XmlPart::read(m_archive, *comments))
                reader.readComments(commentXml->root());
        }
        reader.finish();
        if (tab.isHidden)
            sheet.changeSettings([&](SheetSettings& settings) {
                settings.isHidden = true;
                settings.isVeryHidden = tab.isVeryHidden;
            });
    }

    void printNames(pugi::xml_node names)
    {
        eachChild(names, "definedName", [this](pugi::xml_node node) {
            const std::string_view name = attributeNamed(node, "name").value();
            const std::size_t tab = attributeNamed(node, "localSheetId").as_uint(maxSheets);
            const bool isArea = name == "_xlnm.Print_Area";
            if ((!isArea && name != "_xlnm.Print_Titles") || tab >= m_tabs.size() || m_tabs[tab].sheet == 0)
                return;
            bool applied = false;
            m_workbook.sheet(m_tabs[tab].sheet).changeSettings([&](SheetSettings& settings) {
                const std::string text = textOf(node);
                applied = isArea ? applyPrintArea(text, settings) : applyPrintTitles(text, settings);
            });
            if (!applied && isArea)
                m_warnings.add("打印区域没有引入,按已用区域打印");
        });
    }

    void activate(pugi::xml_node book)
    {
        const pugi::xml_node view = childNamed(childNamed(book, "bookViews"), "workbookView");
        const std::size_t tab = attributeNamed(view, "activeTab").as_uint();
        if (tab < m_tabs.size() && m_tabs[tab].sheet != 0)
            m_workbook.setActiveSheet(m_tabs[tab].sheet);
    }

    Archive m_archive;
    Workbook& m_workbook;
    Warnings& m_warnings;
    std::optional<XmlPart> m_styleXml; ///< the styles point into it
    XlsxStyles m_styles;
    XlsxBook m_shared;
    std::vector<Tab> m_tabs;
};

} // namespace

void readXlsx(Bytes file, Workbook& workbook, Warnings& warnings)
{
    XlsxReader(file, workbook, warnings).read();
}

} // namespace spreadsheet
