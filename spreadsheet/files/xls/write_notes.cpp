#include "spreadsheet/files/xls/write_notes.h"

#include "spreadsheet/files/exchange/unicode_text.h"
#include "spreadsheet/files/xls/records.h"

#include <algorithm>

namespace spreadsheet {

namespace {

/// Kinds of the drawing's own records, which lie inside records of the workbook.
enum Art : std::uint16_t {
    artGroup = 0xF000,
    artDrawingContainer = 0xF002,
    artShapeGroup = 0xF003,
    artShapeContainer = 0xF004,
    artGroupInfo = 0xF006,
    artDrawing = 0xF008,
    artGroupBounds = 0xF009,
    artShape = 0xF00A,
    artProperties = 0xF00B,
    artTextBox = 0xF00D,
    artAnchor = 0xF010,
    artClientData = 0xF011,
};

constexpr std::uint32_t shapesOfCluster = 1024;
constexpr std::size_t headSize = 8;
constexpr std::size_t mostNotes = 1000; ///< of one sheet: its shapes are numbered in one cluster

/// Head of a record: version and instance, kind, bytes that follow.
void art(RecordWriter& writer, unsigned version, unsigned instance, std::uint16_t kind, std::size_t size)
{
    writer.put16(version | instance << 4);
    writer.put16(kind);
    writer.put32(static_cast<std::uint32_t>(size));
}

constexpr unsigned container = 0xF;
constexpr std::size_t propertyCount = 4;
constexpr std::size_t noteShapeSize =
    headSize + (headSize + 8) + (headSize + propertyCount * 6) + (headSize + 18) + headSize + headSize;
constexpr std::size_t groupShapeSize = headSize + (headSize + 16) + (headSize + 8);

void drawingHead(RecordWriter& writer, int index, std::size_t notes)
{
    const auto firstShape = static_cast<std::uint32_t>(index) * shapesOfCluster;
    const std::size_t shapes = groupShapeSize + notes * noteShapeSize;
    art(writer, container, 0, artDrawingContainer, headSize + 8 + headSize + shapes);
    art(writer, 0, static_cast<unsigned>(index), artDrawing, 8);
    writer.put32(static_cast<std::uint32_t>(notes) + 1);
    writer.put32(firstShape + static_cast<std::uint32_t>(notes));
    art(writer, container, 0, artShapeGroup, shapes);
    art(writer, container, 0, artShapeContainer, groupShapeSize - headSize);
    art(writer, 1, 0, artGroupBounds, 16);
    writer.putZeros(16);
    art(writer, 2, 0, artShape, 8);
    writer.put32(firstShape);
    writer.put32(5); // the group itself
}

void noteShape(RecordWriter& writer, std::uint32_t shape, CellAddress cell)
{
    constexpr unsigned textBoxShape = 202;
    art(writer, container, 0, artShapeContainer, noteShapeSize - headSize);
    art(writer, 2, textBoxShape, artShape, 8);
    writer.put32(shape);
    writer.put32(0xA00); // has an anchor and a kind
    art(writer, 3, propertyCount, artProperties, propertyCount * 6);
    const std::pair<unsigned, std::uint32_t> properties[propertyCount]{
        {0x00BF, 0x00080008},  // the box fits its text
        {0x0181, 0x08000050},  // paper: the colour of tool tips
        {0x01BF, 0x00100010},  // filled
        {0x03BF, 0x00020002}}; // hidden
    for (const auto& [property, value] : properties) {
        writer.put16(property);
        writer.put32(value);
    }
    art(writer, 0, 0, artAnchor, 18);
    const auto left = static_cast<unsigned>(std::min(cell.column, xls::maxColumns - 3));
    const auto top = static_cast<unsigned>(std::min(cell.row, xls::maxRows - 5) - 1);
    for (const unsigned number : {3u, left, 15u, top, 10u, left + 2, 15u, top + 4, 2u})
        writer.put16(number);
    art(writer, 0, 0, artClientData, 0);
}

void object(RecordWriter& writer, std::uint16_t number)
{
    writer.begin(xls::object);
    writer.put16(0x15); // common part
    writer.put16(18);
    writer.put16(0x19); // a note
    writer.put16(number);
    writer.put16(0x4011);
    writer.putZeros(12);
    writer.put16(0x0D); // part of notes
    writer.put16(22);
    writer.putZeros(22);
    writer.putZeros(4); // end
    writer.end();
}

void textObject(RecordWriter& writer, const std::string& text)
{
    const std::u16string all = utf16Of(text);
    const std::u16string_view units = std::u16string_view(all).substr(0, 32'000);
    writer.begin(xls::textObject);
    writer.put16(0x0212); // at the left and top, locked
    writer.putZeros(8);
    writer.put16(static_cast<unsigned>(units.size()));
    writer.put16(16); // bytes of formatting runs
    writer.putZeros(4);
    writer.end();
    constexpr std::size_t part = 4000; // characters of one record
    for (std::size_t first = 0; first < units.size(); first += part) {
        writer.begin(xls::continued);
        writer.putCharacters(units.substr(first, part));
        writer.end();
    }
    writer.begin(xls::continued);
    writer.putZeros(8); // one run in font 0 from the first character to the last
    writer.put16(static_cast<unsigned>(units.size()));
    writer.putZeros(6);
    writer.end();
}

} // namespace

void writeNotes(const std::map<CellAddress, std::string>& notes, int index, RecordWriter& writer,
                Warnings& warnings)
{
    std::vector<std::pair<CellAddress, const std::string*>> written;
    for (const auto& [cell, text] : notes) {
        const bool fits = cell.row <= xls::maxRows && cell.column <= xls::maxColumns && !text.empty();
        if (fits && written.size() < mostNotes)
            written.emplace_back(cell, &text);
        else if (fits)
            warnings.count("{} 个批注没有写出: 一张表最多 1000 个");
    }
    auto shape = static_cast<std::uint32_t>(index) * shapesOfCluster;
    std::uint16_t number = 0;
    for (const auto& [cell, text] : written) {
        writer.begin(xls::drawing);
        if (number == 0)
            drawingHead(writer, index, written.size());
        noteShape(writer, ++shape, cell);
        writer.end();
        object(writer, ++number);
        writer.begin(xls::drawing);
        art(writer, 0, 0, artTextBox, 0);
        writer.end();
        textObject(writer, *text);
    }
    number = 0;
    for (const auto& [cell, text] : written) {
        writer.begin(xls::note);
        writer.put16(static_cast<unsigned>(cell.row - 1));
        writer.put16(static_cast<unsigned>(cell.column - 1));
        writer.put16(0);
        writer.put16(++number);
        writer.put16(0); // no author: length, flags and a filling byte
        writer.put8(0);
        writer.put8(0);
        writer.end();
    }
}

void writeDrawingGroup(const std::vector<std::size_t>& notes, RecordWriter& writer)
{
    std::uint32_t drawings = 0, shapes = 0;
    for (const std::size_t count : notes) {
        drawings += count > 0;
        shapes += count > 0 ? static_cast<std::uint32_t>(std::min(count, mostNotes)) + 1 : 0;
    }
    if (drawings == 0)
        return;
    const std::size_t infoSize = 16 + drawings * 8u;
    writer.begin(xls::drawingGroup);
    art(writer, container, 0, artGroup, headSize + infoSize);
    art(writer, 0, 0, artGroupInfo, infoSize);
    writer.put32((static_cast<std::uint32_t>(notes.size()) + 1) * shapesOfCluster);
    writer.put32(drawings + 1);
    writer.put32(shapes);
    writer.put32(drawings);
    for (std::size_t sheet = 0; sheet < notes.size(); ++sheet) {
        if (notes[sheet] == 0)
            continue;
        writer.put32(static_cast<std::uint32_t>(sheet) + 1);
        writer.put32(static_cast<std::uint32_t>(std::min(notes[sheet], mostNotes)) + 1);
    }
    writer.end();
}

} // namespace spreadsheet
