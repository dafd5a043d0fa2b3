#include "spreadsheet/view/commands/packed_cells.h"

#include "spreadsheet/formula/FormulaPool.h"
#include "spreadsheet/view/commands/packed_fields.h"
#include "spreadsheet/workbook/Workbook.h"

#include <QDataStream>
#include <QIODevice>

#include <map>
#include <optional>
#include <string>
#include <unordered_map>

namespace spreadsheet {

// What another process of ours pastes. Numbers of pools mean nothing there, so styles and formulas are
// handed over whole, each once, and cells name them by place. A formula is written as seen from the first
// cell that has it; the reader makes its own relative form of it. Bytes of the clipboard come from anywhere:
// the reader checks every count before it believes it.

namespace {

constexpr quint32 magic = 0x43454C34; // "CEL4"

/// What of a cell follows in the stream.
enum Has : quint8 { hasValue = 1, hasFormula = 2, hasStyle = 4, hasTag = 8, hasShown = 16 };

/// Numbers of a pool in the order in which they were first met.
class Numbering {
public:
    quint32 place(std::uint32_t number)
    {
        const auto [entry, fresh] = m_places.try_emplace(number, quint32(m_order.size()));
        if (fresh)
            m_order.push_back(number);
        return entry->second;
    }
    const std::vector<std::uint32_t>& order() const { return m_order; }

private:
    std::unordered_map<std::uint32_t, quint32> m_places;
    std::vector<std::uint32_t> m_order;
};

class Packer {
public:
    Packer(Workbook& workbook, const PackedOrigin& origin, const LiftedCells& cells)
        : m_workbook(workbook)
        , m_origin(origin)
        , m_cells(cells)
    {
    }

    QByteArray run()
    {
        QByteArray body;
        {
            QDataStream stream(&body, QIODevice::WriteOnly);
            stream.setVersion(QDataStream::Qt_6_0);
            for (int column = 1; column <= m_cells.columns; ++column) {
                for (int row = 1; row <= m_cells.rows; ++row)
                    cell(stream, m_cells.at(column, row), {column, row});
            }
        }
        QByteArray bytes;
        QDataStream stream(&bytes, QIODevice::WriteOnly);
        stream.setVersion(QDataStream::Qt_6_0);
        stream << magic << quint64(m_origin.token) << qint32(m_origin.sheetId) << m_origin.range
               << m_origin.wholeRows << m_origin.wholeColumns << qint32(m_cells.columns)
               << qint32(m_cells.rows);
        for (const auto* ranges : {&m_cells.spans, &m_cells.arrays}) {
            stream << quint32(ranges->size());
            for (const CellRange& range : *ranges)
                stream << range;
        }
        stream << quint32(m_styles.order().size());
        for (const std::uint32_t style : m_styles.order())
            stream << m_workbook.styles()[style];
        stream << quint32(m_formulas.order().size());
        for (std::size_t i = 0; i < m_formulas.order().size(); ++i)
            formula(stream, m_formulas.order()[i], m_bases[i]);
        stream << body;
        lists(stream, m_cells.lists.value_or(CellLists()));
        return bytes;
    }

private:
    void cell(QDataStream& stream, const CellContent& content, CellAddress place)
    {
        const int has = (content.value.isEmpty() ? 0 : hasValue) | (content.formula == 0 ? 0 : hasFormula) |
                        (content.style == 0 ? 0 : hasStyle) | (content.tag.empty() ? 0 : hasTag) |
                        (content.shown.empty() ? 0 : hasShown);
        stream << quint8(has);
        if (has & hasValue)
            value(stream, content.value);
        if (has & hasFormula)
            stream << formulaPlace(content.formula, place);
        if (has & hasStyle)
            stream << m_styles.place(content.style);
        if (has & hasTag)
            stream << bytesOf(content.tag.view());
        if (has & hasShown)
            stream << bytesOf(content.shown.view());
    }

    static void lists(QDataStream& stream, const CellLists& lists)
    {
        std::map<const std::vector<std::string>*, quint32> numbers; // cells that share a list go on sharing
        QByteArray cells;
        QDataStream cellStream(&cells, QIODevice::WriteOnly);
        cellStream.setVersion(QDataStream::Qt_6_0);
        std::vector<const std::vector<std::string>*> distinct;
        for (const auto& [cell, entries] : lists.dropDowns) {
            const auto [number, fresh] = numbers.try_emplace(&*entries, quint32(distinct.size()));
            if (fresh)
                distinct.push_back(&*entries);
            cellStream << qint32(cell.column) << qint32(cell.row) << number->second;
        }
        stream << quint32(distinct.size());
        for (const auto* entries : distinct) {
            stream << quint32(entries->size());
            for (const std::string& entry : *entries)
                stream << bytesOf(entry);
        }
        stream << quint32(lists.dropDowns.size());
        stream.writeRawData(cells.constData(), static_cast<int>(cells.size()));
        stream << quint32(lists.captions.size());
        for (const auto& [cell, caption] : lists.captions)
            stream << qint32(cell.column) << qint32(cell.row) << bytesOf(caption);
    }

    quint32 formulaPlace(std::uint32_t number, CellAddress cell)
    {
        const quint32 place = m_formulas.place(number);
        if (place < m_bases.size())
            return place;
        CellAddress base = cell;
        for (const CellRange& array : m_cells.arrays) {
            if (array.contains(cell))
                base = {array.left, array.top};
        }
        m_bases.push_back({base.column + m_origin.range.left - 1, base.row + m_origin.range.top - 1});
        return place;
    }

    static void value(QDataStream& stream, const Value& value)
    {
        const bool counts = value.isText() && value.text().countsAsNumber();
        stream << quint8(value.kind()) << counts;
        if (value.isNumber())
            stream << value.number();
        else if (value.isText())
            stream << bytesOf(value.textView());
        else if (value.isBoolean())
            stream << value.boolean();
        else
            stream << quint8(value.error());
        if (counts)
            stream << value.text().number();
    }

    void formula(QDataStream& stream, std::uint32_t number, CellAddress base) const
    {
        const FormulaPool& pool = m_workbook.formulas();
        stream << bytesOf(pool.text(number, base)) << qint32(base.column) << qint32(base.row)
               << pool[number].isArrayFormula;
    }

    Workbook& m_workbook;
    const PackedOrigin& m_origin;
    const LiftedCells& m_cells;
    Numbering m_styles, m_formulas;
    std::vector<CellAddress> m_bases; ///< of m_formulas: a cell that holds it
};

class Unpacker {
public:
    Unpacker(Workbook& workbook, const QByteArray& bytes)
        : m_workbook(workbook)
        , m_stream(bytes)
    {
        m_stream.setVersion(QDataStream::Qt_6_0);
    }

    std::variant<UnpackedCells, Refusal> run()
    {
        if (!header() || !tables() || !cells())
            return "剪贴板中的单元格已损坏，不能粘贴";
        return std::move(m_result);
    }

private:
    bool good() const { return m_stream.status() == QDataStream::Ok; }

    bool header()
    {
        quint32 mark = 0;
        quint64 token = 0;
        qint32 sheet = 0, columns = 0, rows = 0;
        m_stream >> mark >> token >> sheet >> m_result.origin.range >> m_result.origin.wholeRows >>
            m_result.origin.wholeColumns >> columns >> rows;
        if (!good() || mark != magic || columns < 1 || rows < 1 || columns > maxColumns || rows > maxRows ||
            qint64(columns) * rows > m_stream.device()->size()) // a cell takes a byte at least
            return false;
        m_result.origin.token = token;
        m_result.origin.sheetId = sheet;
        m_result.cells = LiftedCells(columns, rows);
        return ranges(m_result.cells.spans) && ranges(m_result.cells.arrays);
    }

    /// Ranges within the block that do not overlap.
    bool ranges(std::vector<CellRange>& result)
    {
        quint32 count = 0;
        m_stream >> count;
        const LiftedCells& block = m_result.cells;
        std::vector<bool> taken(block.cells.size());
        while (good() && count-- > 0) {
            CellRange range;
            m_stream >> range;
            if (range.left > range.right || range.top > range.bottom ||
                !CellRange{1, 1, block.columns, block.rows}.contains(range))
                return false;
            for (int column = range.left; column <= range.right; ++column) {
                for (int row = range.top; row <= range.bottom; ++row) {
                    auto cell = taken[static_cast<std::size_t>(&block.at(column, row) - block.cells.data())];
                    if (cell)
                        return false;
                    cell = true;
                }
            }
            result.push_back(range);
        }
        return good();
    }

    bool tables()
    {
        quint32 count = 0;
        m_stream >> count;
        while (good() && count-- > 0) {
            CellStyle style;
            m_stream >> style;
            m_styles.push_back(m_workbook.styles().intern(style));
        }
        count = 0;
        m_stream >> count;
        while (good() && count-- > 0)
            formula();
        return good();
    }

    void formula()
    {
        QByteArray text;
        qint32 column = 0, row = 0;
        bool asArray = false;
        m_stream >> text >> column >> row >> asArray;
        const bool inside = column >= 1 && row >= 1 && column <= maxColumns && row <= maxRows;
        if (!good() || !inside) {
            m_stream.setStatus(QDataStream::ReadCorruptData);
            return;
        }
        const auto sheetId = [this](std::string_view name) {
            const int index = m_workbook.sheetIndex(name);
            return index == 0 ? 0 : m_workbook.sheet(index).id();
        };
        const auto parsed = m_workbook.formulas().intern(viewOf(text), {column, row}, sheetId, asArray);
        const auto* number = std::get_if<std::uint32_t>(&parsed);
        m_formulas.push_back(number ? *number : 0);
    }

    bool cells()
    {
        QByteArray body;
        m_stream >> body;
        QDataStream stream(body);
        stream.setVersion(QDataStream::Qt_6_0);
        for (CellContent& content : m_result.cells.cells) {
            if (!cell(stream, content))
                return false;
        }
        return lists(m_result.cells.lists.emplace());
    }

    bool lists(CellLists& lists)
    {
        quint32 count = 0;
        m_stream >> count;
        std::vector<DropDownEntries> distinct;
        while (good() && count-- > 0) {
            quint32 size = 0;
            m_stream >> size;
            std::vector<std::string> entries;
            while (good() && size-- > 0)
                entries.push_back(entryText());
            distinct.emplace_back(std::move(entries));
        }
        count = 0;
        m_stream >> count;
        while (good() && count-- > 0) {
            const auto cell = listPlace();
            quint32 number = 0;
            m_stream >> number;
            if (number >= distinct.size())
                return false;
            if (cell)
                lists.dropDowns.insert_or_assign(*cell, distinct[number]);
        }
        count = 0;
        m_stream >> count;
        while (good() && count-- > 0) {
            const auto cell = listPlace();
            std::string caption = entryText();
            if (cell && !caption.empty())
                lists.captions[*cell] = std::move(caption);
        }
        return good();
    }

    /// A cell of the block; another one makes the stream a bad one.
    std::optional<CellAddress> listPlace()
    {
        qint32 column = 0, row = 0;
        m_stream >> column >> row;
        if (good() && column >= 1 && row >= 1 && column <= m_result.cells.columns &&
            row <= m_result.cells.rows)
            return CellAddress{column, row};
        m_stream.setStatus(QDataStream::ReadCorruptData);
        return std::nullopt;
    }

    std::string entryText()
    {
        QByteArray bytes;
        m_stream >> bytes;
        return bytes.toStdString();
    }

    bool cell(QDataStream& stream, CellContent& content)
    {
        quint8 has = 0;
        stream >> has;
        if (has & hasValue)
            content.value = value(stream);
        if (has & hasFormula) {
            content.formula = entry(stream, m_formulas);
            m_result.refusedFormulas += content.formula == 0;
        }
        if (has & hasStyle)
            content.style = entry(stream, m_styles);
        if (has & hasTag)
            content.tag = text(stream);
        if (has & hasShown)
            content.shown = text(stream);
        return stream.status() == QDataStream::Ok;
    }

    static std::uint32_t entry(QDataStream& stream, const std::vector<std::uint32_t>& table)
    {
        quint32 place = 0;
        stream >> place;
        if (place < table.size())
            return table[place];
        stream.setStatus(QDataStream::ReadCorruptData);
        return 0;
    }

    Text text(QDataStream& stream)
    {
        QByteArray bytes;
        stream >> bytes;
        return m_workbook.texts().intern(viewOf(bytes));
    }

    Value value(QDataStream& stream)
    {
        quint8 kind = 0;
        bool counts = false;
        stream >> kind >> counts;
        double number = 0;
        switch (ValueKind(kind)) {
        case ValueKind::number:
            stream >> number;
            return Value(number);
        case ValueKind::text: {
            Text plain = text(stream);
            if (!counts)
                return Value(std::move(plain));
            stream >> number;
            return Value(Text::countedAs(plain.view(), number));
        }
        case ValueKind::boolean: {
            bool truth = false;
            stream >> truth;
            return Value::boolean(truth);
        }
        case ValueKind::error: {
            quint8 error = 0;
            stream >> error;
            if (error < cellErrorTexts.size())
                return Value(CellError(error));
            break;
        }
        case ValueKind::empty:
            break;
        }
        stream.setStatus(QDataStream::ReadCorruptData);
        return {};
    }

    Workbook& m_workbook;
    QDataStream m_stream;
    UnpackedCells m_result;
    std::vector<std::uint32_t> m_styles, m_formulas;
};

} // namespace

QByteArray packCells(Workbook& workbook, const PackedOrigin& origin, const LiftedCells& cells)
{
    return Packer(workbook, origin, cells).run();
}

std::variant<UnpackedCells, Refusal> unpackCells(Workbook& workbook, const QByteArray& bytes)
{
    return Unpacker(workbook, bytes).run();
}

} // namespace spreadsheet
