#include "spreadsheet/files/xlsx/xlsx_notes.h"

#include "spreadsheet/files/exchange/SharedTexts.h"
#include "spreadsheet/files/xlsx/xlsx_names.h"

#include <algorithm>

namespace spreadsheet {

namespace {

/// Columns, rows and pixels into them: left, top, right and bottom of the box beside a cell.
std::string anchor(CellAddress cell)
{
    const int left = std::min(cell.column, maxColumns - 3);
    const int top = std::min(cell.row, maxRows - 5) - 1;
    std::string text;
    for (const int number : {left, 15, std::max(top, 0), 10, left + 2, 15, std::max(top, 0) + 4, 4})
        text += (text.empty() ? "" : ", ") + std::to_string(number);
    return text;
}

/// The ids look like escaped characters and are not: they stand as they are.
std::string box(int shape, int order, CellAddress cell)
{
    return "<v:shape id=\"_x0000_s" + std::to_string(shape) +
           "\" type=\"#_x0000_t202\" style=\"position:absolute;margin-left:60pt;margin-top:8pt;width:96pt;"
           "height:56pt;z-index:" +
           std::to_string(order) +
           ";visibility:hidden\" fillcolor=\"#ffffe1\" o:insetmode=\"auto\"><v:fill color2=\"#ffffe1\"/>"
           "<v:shadow on=\"t\" color=\"black\" obscured=\"t\"/><v:path o:connecttype=\"none\"/>"
           "<v:textbox style=\"mso-direction-alt:auto\"><div style=\"text-align:left\"></div></v:textbox>"
           "<x:ClientData ObjectType=\"Note\"><x:MoveWithCells/><x:SizeWithCells/><x:Anchor>" +
           anchor(cell) + "</x:Anchor><x:AutoFill>False</x:AutoFill><x:Row>" + std::to_string(cell.row - 1) +
           "</x:Row><x:Column>" + std::to_string(cell.column - 1) + "</x:Column></x:ClientData></v:shape>";
}

} // namespace

XlsxNotes writtenNotes(const SheetSettings& settings, Warnings& warnings)
{
    XlsxNotes notes = settings.notes;
    std::erase_if(notes, [&](const auto& note) {
        const bool isLong = cutText(note.second).has_value();
        if (isLong)
            warnings.add("表“" + settings.name + "”的 " + cellName(note.first) + " 的批注太长,没有写出");
        return isLong;
    });
    return notes;
}

void writeXlsxNotes(const XlsxNotes& notes, XmlWriter& xml)
{
    xml.open("comments").attribute("xmlns", xlsx::mainSpace);
    xml.open("authors").open("author").close().close();
    xml.open("commentList");
    for (const auto& [cell, text] : notes)
        xml.open("comment")
            .attribute("ref", cellName(cell))
            .attribute("authorId", 0)
            .open("text")
            .leaf("t", text)
            .close()
            .close();
    xml.close().close();
}

int writeXlsxNoteBoxes(const XlsxNotes& notes, int firstCluster, XmlWriter& xml)
{
    constexpr int shapesOfCluster = 1024;
    const int clusters = static_cast<int>(notes.size()) / shapesOfCluster + 1;
    std::string names = std::to_string(firstCluster);
    for (int cluster = 1; cluster < clusters; ++cluster)
        names += "," + std::to_string(firstCluster + cluster);
    xml.open("xml")
        .attribute("xmlns:v", "urn:schemas-microsoft-com:vml")
        .attribute("xmlns:o", "urn:schemas-microsoft-com:office:office")
        .attribute("xmlns:x", "urn:schemas-microsoft-com:office:excel");
    xml.raw("<o:shapelayout v:ext=\"edit\"><o:idmap v:ext=\"edit\" data=\"" + names +
            "\"/></o:shapelayout><v:shapetype id=\"_x0000_t202\" coordsize=\"21600,21600\" o:spt=\"202\" "
            "path=\"m,l,21600r21600,l21600,xe\"><v:stroke joinstyle=\"miter\"/>"
            "<v:path gradientshapeok=\"t\" o:connecttype=\"rect\"/></v:shapetype>");
    int order = 0;
    for (const auto& [cell, text] : notes) {
        ++order;
        xml.raw(box(firstCluster * shapesOfCluster + order, order, cell));
    }
    xml.close();
    return firstCluster + clusters;
}

} // namespace spreadsheet
