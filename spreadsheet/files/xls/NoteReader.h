#pragma once
#include "spreadsheet/files/exchange/CodePage.h"
#include "spreadsheet/files/xls/RecordStream.h"
#include "spreadsheet/values/CellAddress.h"

#include <map>
#include <string>

namespace spreadsheet {

/// Puts notes together: the cell stands in a NOTE record, the text in a text object that the note names by
/// number (BIFF8), or in the NOTE record itself (before).
class NoteReader {
public:
    void readObject(const XlsRecord& record);
    void readTextObject(RecordStream& stream);
    void readNote(const XlsRecord& record);
    void readOldNote(const XlsRecord& record, const CodePage& codePage);
    std::map<CellAddress, std::string> notes() const;

private:
    std::map<std::uint16_t, std::string> m_texts; ///< by the object's number
    std::map<CellAddress, std::uint16_t> m_places;
    std::map<CellAddress, std::string> m_oldNotes;
    std::uint16_t m_object = 0; ///< the object that the next text belongs to
    CellAddress m_oldPlace;
};

} // namespace spreadsheet
