#include "spreadsheet/print/PdfUpdate.h"

#include <algorithm>
#include <charconv>

namespace spreadsheet {

namespace {

/// The number that follows `mark`, blanks and an opening bracket at or after `from`; -1 if none does.
qsizetype numberAfter(QByteArrayView text, QByteArrayView mark, qsizetype from = 0)
{
    qsizetype at = text.indexOf(mark, from);
    if (at < 0)
        return -1;
    at += mark.size();
    while (at < text.size() && (text[at] == ' ' || text[at] == '\n' || text[at] == '['))
        ++at;
    qsizetype number = -1;
    std::from_chars(text.data() + at, text.data() + text.size(), number);
    return number;
}

QByteArray tableLine(qsizetype offset)
{
    return QByteArray::number(static_cast<qlonglong>(offset)).rightJustified(10, '0') + " 00000 n \n";
}

} // namespace

std::optional<PdfUpdate> PdfUpdate::open(const QByteArray& pdf)
{
    PdfUpdate update;
    update.m_pdf = pdf;
    if (!update.readTable())
        return std::nullopt;
    return update;
}

bool PdfUpdate::readTable()
{
    const QByteArrayView file(m_pdf);
    m_table = numberAfter(file, "startxref", file.lastIndexOf("startxref"));
    if (m_table <= 0 || m_table >= file.size() || !file.sliced(m_table).startsWith("xref\n0 "))
        return false;
    const QByteArrayView trailer = file.sliced(std::max<qsizetype>(file.lastIndexOf("trailer"), 0));
    m_size = static_cast<int>(numberAfter(trailer, "/Size"));
    m_root = reference(trailer, "Root");
    m_info = reference(trailer, "Info");
    if (const qsizetype id = trailer.indexOf("/ID"), end = trailer.indexOf(']', std::max<qsizetype>(id, 0));
        id >= 0 && end > id)
        m_id = trailer.sliced(id, end - id + 1).toByteArray() + '\n';
    constexpr qsizetype lineSize = 20;
    const qsizetype lines = file.indexOf('\n', m_table + 5) + 1;
    if (m_root <= 0 || m_info <= 0 || lines <= 0 || lines + m_size * lineSize > file.size())
        return false;
    for (int number = 1; number < m_size; ++number) {
        const QByteArrayView line = file.sliced(lines + number * lineSize, lineSize);
        qsizetype offset = 0;
        std::from_chars(line.data(), line.data() + 10, offset);
        if (line[17] == 'n' && offset > 0 && offset < file.size())
            m_offsets[number] = offset;
    }
    for (const auto& [number, offset] : m_offsets)
        m_starts.push_back(offset);
    std::ranges::sort(m_starts);
    return m_offsets.contains(m_root);
}

QByteArrayView PdfUpdate::object(int number) const
{
    const auto found = m_offsets.find(number);
    if (found == m_offsets.end())
        return {};
    // Objects do not stand in the order of their numbers, and a stream may hold the word "endobj".
    const auto next = std::ranges::upper_bound(m_starts, found->second);
    const qsizetype end = next == m_starts.end() ? m_table : std::min(*next, m_table);
    const QByteArrayView whole = QByteArrayView(m_pdf).sliced(found->second, end - found->second);
    const qsizetype body = whole.indexOf("obj");
    const qsizetype close = whole.lastIndexOf("endobj");
    return body < 0 || close < body + 3 ? QByteArrayView() : whole.sliced(body + 3, close - body - 3);
}

int PdfUpdate::reference(QByteArrayView dictionary, std::string_view key)
{
    const QByteArray mark = '/' + QByteArray(key.data(), static_cast<qsizetype>(key.size()));
    return std::max(static_cast<int>(numberAfter(dictionary, mark)), 0);
}

QByteArray PdfUpdate::packed(const QByteArray& data, int effort, const QByteArray& entries)
{
    const QByteArray packed =
        qCompress(data, effort).mid(4); // without the length that the toolkit puts before it
    return "<< " + entries + "/Length " + QByteArray::number(static_cast<qlonglong>(packed.size())) +
           " /Filter /FlateDecode >>\nstream\n" + packed + "\nendstream";
}

QByteArray PdfUpdate::result() const
{
    if (m_replaced.empty())
        return m_pdf;
    QByteArray file = m_pdf;
    QByteArray table = "xref\n";
    for (const auto& [number, body] : m_replaced) {
        table += QByteArray::number(number) + " 1\n" + tableLine(file.size());
        file += QByteArray::number(number) + " 0 obj\n" + body + "\nendobj\n";
    }
    const QByteArray tableAt = QByteArray::number(static_cast<qlonglong>(file.size()));
    file += table + "trailer\n<<\n/Size " + QByteArray::number(m_size) + "\n/Info " +
            QByteArray::number(m_info) + " 0 R\n/Root " + QByteArray::number(m_root) + " 0 R\n" + m_id +
            "/Prev " + QByteArray::number(static_cast<qlonglong>(m_table)) + "\n>>\nstartxref\n" + tableAt +
            "\n%%EOF\n";
    return file;
}

} // namespace spreadsheet
