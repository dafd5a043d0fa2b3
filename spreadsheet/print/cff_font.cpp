#include "spreadsheet/print/cff_font.h"

#include <cmath>

namespace spreadsheet {

namespace {

/// Data as the format writes it: numbers before the operator that they belong to.
class CffData {
public:
    CffData& number(int value)
    {
        constexpr int oneByte = 107, twoBytes = 1131;
        if (std::abs(value) <= oneByte)
            return byte(value + 139);
        if (std::abs(value) > twoBytes)
            return byte(28).byte(value >> 8).byte(value);
        const int rest = std::abs(value) - 108;
        return byte((value > 0 ? 247 : 251) + (rest >> 8)).byte(rest);
    }
    /// Always as long, whatever the place is.
    CffData& place(qsizetype offset)
    {
        byte(29);
        return bigEndian(static_cast<quint32>(offset), 4);
    }
    CffData& byte(int value)
    {
        m_data.append(static_cast<char>(value));
        return *this;
    }
    /// An operator of dictionaries that is two bytes long.
    CffData& longWord(int second) { return byte(12).byte(second); }
    CffData& bigEndian(quint32 value, int size)
    {
        for (int shift = (size - 1) * 8; shift >= 0; shift -= 8)
            byte(static_cast<int>(value >> shift & 0xFF));
        return *this;
    }
    CffData& bytes(const QByteArray& data)
    {
        m_data.append(data);
        return *this;
    }
    const QByteArray& data() const { return m_data; }

private:
    QByteArray m_data;
};

QByteArray indexOf(const std::vector<QByteArray>& items)
{
    CffData index;
    index.bigEndian(static_cast<quint32>(items.size()), 2);
    if (items.empty())
        return index.data();
    constexpr int offsetSize = 4;
    index.byte(offsetSize);
    quint32 offset = 1;
    index.bigEndian(offset, offsetSize);
    for (const QByteArray& item : items)
        index.bigEndian(offset += static_cast<quint32>(item.size()), offsetSize);
    for (const QByteArray& item : items)
        index.bytes(item);
    return index.data();
}

/// Draws with steps from point to point, of whole thousandths.
class LetterProgram {
public:
    QByteArray of(const FontLetter& letter)
    {
        m_program.number(static_cast<int>(std::lround(letter.width)));
        const QPainterPath& path = letter.outline;
        for (int i = 0; i < path.elementCount(); ++i) {
            const QPainterPath::Element element = path.elementAt(i);
            if (element.isMoveTo()) {
                step(element);
                m_program.byte(21); // rmoveto
            } else if (element.isLineTo()) {
                line(element);
            } else {
                step(element);
                step(path.elementAt(i + 1));
                step(path.elementAt(i + 2));
                m_program.byte(8); // rrcurveto
                i += 2;
            }
        }
        return m_program.byte(14).data(); // endchar
    }

private:
    void step(QPointF to)
    {
        const QPoint next(static_cast<int>(std::lround(to.x())), static_cast<int>(std::lround(-to.y())));
        m_program.number(next.x() - m_at.x()).number(next.y() - m_at.y());
        m_at = next;
    }
    void line(QPointF to)
    {
        const int across = static_cast<int>(std::lround(to.x())) - m_at.x();
        const int up = static_cast<int>(std::lround(-to.y())) - m_at.y();
        m_at += QPoint(across, up);
        if (across != 0 && up != 0)
            m_program.number(across).number(up).byte(5); // rlineto
        else if (across != 0)
            m_program.number(across).byte(6); // hlineto
        else if (up != 0)
            m_program.number(up).byte(7); // vlineto
    }

    CffData m_program;
    QPoint m_at;
};

struct Places {
    qsizetype numbers = 0, parts = 0, programs = 0, dictionaries = 0;
};

/// The letters are known by numbers (Adobe-Identity), which are their places.
QByteArray topDictionary(int count, const QRectF& box, const Places& places)
{
    constexpr int firstOwnString = 391;
    CffData top;
    top.number(firstOwnString).number(firstOwnString + 1).number(0).longWord(30);
    for (const double edge : {box.left(), -box.bottom(), box.right(), -box.top()})
        top.number(static_cast<int>(std::lround(edge)));
    top.byte(5);
    top.place(count).longWord(34);
    top.place(places.numbers).byte(15);
    top.place(places.parts).longWord(37);
    top.place(places.programs).byte(17);
    top.place(places.dictionaries).longWord(36);
    return indexOf({top.data()});
}

} // namespace

QByteArray cffFont(const QByteArray& name, const std::vector<FontLetter>& letters, const QRectF& box)
{
    const int count = static_cast<int>(letters.size());
    const QByteArray head = CffData().byte(1).byte(0).byte(4).byte(4).data() + indexOf({name});
    const QByteArray strings = indexOf({"Adobe", "Identity"}) + indexOf({}); // and no common subroutines
    std::vector<QByteArray> programs;
    for (const FontLetter& letter : letters)
        programs.push_back(LetterProgram().of(letter));
    // Numbers from 1 on without a gap; all letters belong to the only part; it has no widths of its own.
    const QByteArray numbers =
        count < 2 ? CffData().byte(0).data()
                  : CffData().byte(2).bigEndian(1, 2).bigEndian(static_cast<quint32>(count - 2), 2).data();
    const QByteArray parts =
        CffData().byte(3).bigEndian(1, 2).bigEndian(0, 3).bigEndian(static_cast<quint32>(count), 2).data();
    const QByteArray ownWidths = CffData().number(0).byte(20).number(0).byte(21).data();
    const QByteArray drawing = indexOf(programs);
    Places places;
    places.numbers = head.size() + topDictionary(count, box, places).size() + strings.size();
    places.parts = places.numbers + numbers.size();
    places.programs = places.parts + parts.size();
    const qsizetype widths = places.programs + drawing.size();
    places.dictionaries = widths + ownWidths.size();
    const QByteArray part =
        CffData().number(static_cast<int>(ownWidths.size())).place(widths).byte(18).data();
    return head + topDictionary(count, box, places) + strings + numbers + parts + drawing + ownWidths +
           indexOf({part});
}

} // namespace spreadsheet
