#pragma once
#include "spreadsheet/files/xlsx/XlsxParts.h"
#include "spreadsheet/files/xlsx/XmlWriter.h"

#include <map>

namespace spreadsheet {

/// Writes one sheet, but for its notes, into a written .xlsx file.
class XlsxSheetWriter {
public:
    /// @param notes  the relation under which the sheet has its notes' drawing; empty: none
    XlsxSheetWriter(XlsxParts& parts, const Sheet& sheet, std::string notes, XmlWriter& xml);
    void write();

private:
    void view();
    void panes();
    void sizes();
    void columns();
    void spans();
    void lists();
    void print();
    void margins();
    void pageSetup();
    void paper();
    void headers();
    void breaks(const char* name, const std::map<int, bool>& starts, int across);

    XlsxParts& m_parts;
    const Sheet& m_sheet;
    const SheetSettings& m_settings;
    const std::string m_notes;
    XmlWriter& m_xml;
};

} // namespace spreadsheet
