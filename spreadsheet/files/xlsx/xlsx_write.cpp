#include "spreadsheet/files/xlsx/xlsx_write.h"

#include "spreadsheet/files/exchange/print_names.h"
#include "spreadsheet/files/placing/ContentError.h"
#include "spreadsheet/files/xlsx/ArchiveWriter.h"
#include "spreadsheet/files/xlsx/xlsx_formula.h"
#include "spreadsheet/files/xlsx/xlsx_names.h"
#include "spreadsheet/files/xlsx/xlsx_notes.h"
#include "spreadsheet/files/xlsx/XlsxParts.h"
#include "spreadsheet/files/xlsx/XlsxSheetWriter.h"
#include "spreadsheet/formula/FormulaPool.h"
#include "spreadsheet/formula/NameTable.h"
#include "spreadsheet/workbook/sheet_name.h"
#include "spreadsheet/workbook/Workbook.h"

#include <algorithm>

namespace spreadsheet {

// Parts of the archive refer to each other by name, and strict programs refuse a file with one reference too
// many or too few. So all names of parts and all relations between them are written here, and the rest only
// writes what stands inside.

namespace {

constexpr std::string_view sheetStart = "worksheets/sheet", notesStart = "comments",
                           boxesStart = "drawings/vmlDrawing", folder = "xl/";
constexpr const char* notesRelation = "rId2";
constexpr const char* boxesRelation = "rId1";

std::string inFolder(const std::string& part)
{
    return std::string(folder) + part;
}

void requireSheetName(const std::string& name)
{
    if (sheetNameProblem(name))
        throw ContentError("表名“" + name + "”在 .xlsx 中不能使用,请改短(最多 31 个字)后再引出");
}

/// Programs that know no report functions would make errors of them, so nothing asks for a recalculation.
class XlsxWriter {
public:
    XlsxWriter(const Workbook& workbook, Warnings& warnings, const PutBytes& put)
        : m_workbook(workbook)
        , m_parts(workbook, warnings)
        , m_archive(put)
    {
        for (int sheet = 1; sheet <= workbook.sheetCount(); ++sheet) {
            requireSheetName(workbook.sheet(sheet).name());
            m_notes.push_back(writtenNotes(workbook.sheet(sheet).settings(), warnings));
        }
    }

    void write()
    {
        // The list of contents first: by it other programs tell what the file is.
        m_archive.part("[Content_Types].xml", [this](XmlWriter& xml) { contentTypes(xml); });
        m_archive.part("_rels/.rels", [](XmlWriter& xml) {
            xml.open("Relationships").attribute("xmlns", xlsx::packageSpace);
            relation(xml, "rId1", "officeDocument", "xl/workbook.xml");
            xml.close();
        });
        for (int sheet = 1; sheet <= m_workbook.sheetCount(); ++sheet)
            writeSheet(sheet);
        // Behind the sheets, which alone tell what looks and texts they use.
        m_archive.part("xl/styles.xml", [this](XmlWriter& xml) { m_parts.styles.write(xml); });
        m_archive.part("xl/sharedStrings.xml", [this](XmlWriter& xml) { texts(xml); });
        m_archive.part("xl/workbook.xml", [this](XmlWriter& xml) { book(xml); });
        m_archive.part("xl/_rels/workbook.xml.rels", [this](XmlWriter& xml) { bookRelations(xml); });
        m_archive.finish();
    }

private:
    static void relation(XmlWriter& xml, std::string_view id, std::string_view kind, std::string_view target)
    {
        std::string type(xlsx::relationSpace);
        type += '/';
        type += kind;
        xml.open("Relationship")
            .attribute("Id", id)
            .attribute("Type", type)
            .attribute("Target", target)
            .close();
    }

    bool hasNotes(int sheet) const { return !m_notes[static_cast<std::size_t>(sheet - 1)].empty(); }

    void contentTypes(XmlWriter& xml) const
    {
        const std::string office = "application/vnd.openxmlformats-officedocument.";
        const auto entry = [&](const char* kind, const char* key, const std::string& value,
                               const std::string& type) {
            xml.open(kind).attribute(key, value).attribute("ContentType", type).close();
        };
        const auto part = [&](const std::string& path, const char* type) {
            entry("Override", "PartName", "/xl/" + path, office + "spreadsheetml." + type + "+xml");
        };
        xml.open("Types").attribute("xmlns", xlsx::contentTypeSpace);
        entry("Default", "Extension", "rels", "application/vnd.openxmlformats-package.relationships+xml");
        entry("Default", "Extension", "xml", "application/xml");
        entry("Default", "Extension", "vml", office + "vmlDrawing");
        part("workbook.xml", "sheet.main");
        for (int sheet = 1; sheet <= m_workbook.sheetCount(); ++sheet) {
            part(xlsx::numberedPart(sheetStart, sheet), "worksheet");
            if (hasNotes(sheet))
                part(xlsx::numberedPart(notesStart, sheet), "comments");
        }
        part("styles.xml", "styles");
        part("sharedStrings.xml", "sharedStrings");
        xml.close();
    }

    void writeSheet(int number)
    {
        const std::string path = xlsx::numberedPart(sheetStart, number);
        m_archive.part(inFolder(path), [&](XmlWriter& xml) {
            XlsxSheetWriter(m_parts, m_workbook.sheet(number), hasNotes(number) ? boxesRelation : "", xml)
                .write();
        });
        if (!hasNotes(number))
            return;
        const std::string notes = xlsx::numberedPart(notesStart, number);
        const std::string boxes = xlsx::numberedPart(boxesStart, number, ".vml");
        const XlsxNotes& texts = m_notes[static_cast<std::size_t>(number - 1)];
        m_archive.part(inFolder("worksheets/_rels/sheet" + std::to_string(number) + ".xml.rels"),
                       [&](XmlWriter& xml) {
                           xml.open("Relationships").attribute("xmlns", xlsx::packageSpace);
                           relation(xml, boxesRelation, "vmlDrawing", "../" + boxes);
                           relation(xml, notesRelation, "comments", "../" + notes);
                           xml.close();
                       });
        m_archive.part(inFolder(notes), [&](XmlWriter& xml) { writeXlsxNotes(texts, xml); });
        m_archive.part(inFolder(boxes), [&](XmlWriter& xml) {
            m_freeCluster = writeXlsxNoteBoxes(texts, m_freeCluster, xml);
        });
    }

    void texts(XmlWriter& xml)
    {
        const SharedTexts& shared = m_parts.texts;
        if (shared.hasLonger())
            m_parts.warnings.add(longTextWarning);
        xml.open("sst").attribute("xmlns", xlsx::mainSpace);
        xml.attribute("count", shared.uses()).attribute("uniqueCount", shared.texts().size());
        for (const std::string_view text : shared.texts()) {
            xml.open("si");
            if (const auto cut = cutText(text))
                xml.leaf("t", *cut);
            else
                xml.leaf("t", text);
            xml.close();
        }
        xml.close();
    }

    void book(XmlWriter& xml)
    {
        xml.open("workbook").attribute("xmlns", xlsx::mainSpace).attribute("xmlns:r", xlsx::relationSpace);
        xml.open("workbookPr");
        if (m_workbook.countsFrom1904())
            xml.attribute("date1904", 1);
        xml.close();
        xml.open("bookViews").open("workbookView");
        xml.attribute("activeTab", m_workbook.activeSheet() - 1).close().close();
        xml.open("sheets");
        for (int number = 1; number <= m_workbook.sheetCount(); ++number) {
            const Sheet& sheet = m_workbook.sheet(number);
            xml.open("sheet").attribute("name", sheet.name()).attribute("sheetId", number);
            if (sheet.settings().isHidden)
                xml.attribute("state", sheet.settings().isVeryHidden ? "veryHidden" : "hidden");
            xml.attribute("r:id", "rId" + std::to_string(number)).close();
        }
        xml.close();
        names(xml);
        constexpr int engine = 191'029; // a newer one than a program's own makes it compute anew at once
        xml.open("calcPr").attribute("calcId", engine).close();
        xml.close();
    }

    void names(XmlWriter& xml)
    {
        const std::vector<PrintName> printed = printNames();
        const NameTable& names = m_workbook.names();
        std::vector<NameTable::Entry> defined;
        for (int number = 0; number < names.size(); ++number) {
            if (names[number].formula != 0)
                defined.push_back(names[number]);
        }
        if (defined.empty() && printed.empty())
            return;
        xml.open("definedNames");
        for (const PrintName& name : printed)
            xml.open("definedName")
                .attribute("name", name.name)
                .attribute("localSheetId", name.sheet - 1)
                .text(name.ranges)
                .close();
        for (const NameTable::Entry& entry : defined)
            definedName(entry, xml);
        xml.close();
    }

    void definedName(const NameTable::Entry& entry, XmlWriter& xml) const
    {
        const std::string formula =
            portableFormula(m_workbook.formulas().text(entry.formula, {1, 1}), {1, 1}, m_parts.sheetId);
        xml.open("definedName").attribute("name", entry.name);
        if (const int sheet = m_workbook.sheetIndexOfId(entry.sheet))
            xml.attribute("localSheetId", sheet - 1);
        xml.keepBlanks(formula).text(formula).close();
    }

    /// A name of the format's own.
    struct PrintName {
        const char* name;
        int sheet;
        std::string ranges;
    };

    /// What of each sheet is printed, and repeated on each page.
    std::vector<PrintName> printNames() const
    {
        std::vector<PrintName> names;
        for (int number = 1; number <= m_workbook.sheetCount(); ++number) {
            const Sheet& sheet = m_workbook.sheet(number);
            const PrintSettings& print = sheet.settings().print;
            const std::string prefix = sheetPrefix(sheet.name(), {}, true);
            names.push_back({"_xlnm.Print_Area", number, printAreaText(print, prefix)});
            names.push_back({"_xlnm.Print_Titles", number, printTitlesText(print, prefix)});
        }
        std::erase_if(names, [](const PrintName& name) { return name.ranges.empty(); });
        return names;
    }

    void bookRelations(XmlWriter& xml) const
    {
        const int count = m_workbook.sheetCount();
        xml.open("Relationships").attribute("xmlns", xlsx::packageSpace);
        for (int sheet = 1; sheet <= count; ++sheet)
            relation(xml, "rId" + std::to_string(sheet), "worksheet", xlsx::numberedPart(sheetStart, sheet));
        relation(xml, "rId" + std::to_string(count + 1), "styles", "styles.xml");
        relation(xml, "rId" + std::to_string(count + 2), "sharedStrings", "sharedStrings.xml");
        xml.close();
    }

    const Workbook& m_workbook;
    XlsxParts m_parts;
    ArchiveWriter m_archive;
    std::vector<XlsxNotes> m_notes; ///< by sheet
    int m_freeCluster = 1;          ///< of note boxes
};

} // namespace

void writeXlsx(const Workbook& workbook, Warnings& warnings, const PutBytes& put)
{
    XlsxWriter(workbook, warnings, put).write();
}

std::vector<std::byte> writeXlsx(const Workbook& workbook, Warnings& warnings)
{
    std::vector<std::byte> file;
    writeXlsx(workbook, warnings, [&file](std::size_t place, std::span<const std::byte> bytes) {
        file.resize(std::max(file.size(), place + bytes.size()));
        std::ranges::copy(bytes, file.begin() + static_cast<std::ptrdiff_t>(place));
    });
    return file;
}

} // namespace spreadsheet
