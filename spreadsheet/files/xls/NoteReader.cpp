#include "spreadsheet/files/xls/NoteReader.h"

namespace spreadsheet {

namespace {

constexpr std::uint16_t objectHead = 0x15;
constexpr std::uint16_t continuedNote = 0xFFFF; ///< row of a record that goes on with the note before

} // namespace

void NoteReader::readObject(const XlsRecord& record)
{
    m_object = record.size() >= 8 && record.wordAt(0) == objectHead ? record.wordAt(6) : std::uint16_t(0);
}

void NoteReader::readTextObject(RecordStream& stream)
{
    const XlsRecord record = stream.record();
    if (record.size() < 14)
        return;
    const std::size_t length = record.wordAt(10);
    RecordCursor cursor(record, stream);
    cursor.skip(record.size());
    if (length == 0 || cursor.left() == 0)
        return;
    const bool isWide = cursor.take<std::uint8_t>() & 1;
    std::string text = cursor.characters(length, isWide);
    if (m_object != 0)
        m_texts[m_object] = std::move(text);
}

void NoteReader::readNote(const XlsRecord& record)
{
    const int row = record.wordAt(0), column = record.wordAt(2) & 0xFF;
    m_places[{column + 1, row + 1}] = record.wordAt(6);
}

void NoteReader::readOldNote(const XlsRecord& record, const CodePage& codePage)
{
    const std::size_t length = std::min<std::size_t>(record.wordAt(4), record.size() - 6);
    if (record.wordAt(0) != continuedNote)
        m_oldPlace = {(record.wordAt(2) & 0xFF) + 1, record.wordAt(0) + 1};
    RecordCursor cursor(record);
    cursor.skip(6);
    m_oldNotes[m_oldPlace] += codePage.decoded(cursor.bytes(length));
}

std::map<CellAddress, std::string> NoteReader::notes() const
{
    std::map<CellAddress, std::string> notes = m_oldNotes;
    for (const auto& [place, object] : m_places) {
        if (const auto text = m_texts.find(object); text != m_texts.end())
            notes[place] = text->second;
    }
    return notes;
}

} // namespace spreadsheet
