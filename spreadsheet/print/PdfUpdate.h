#pragma once
#include <QByteArray>
#include <QByteArrayView>

#include <map>
#include <optional>
#include <string_view>
#include <vector>

namespace spreadsheet {

/// An incremental update (ISO 32000-1, 7.5.6) of a PDF that the toolkit's writer has just made: new
/// versions of objects, a cross-reference section for them and a trailer are put behind the file.
/// It reads what that writer writes and no more: one classic cross-reference table, no object streams.
class PdfUpdate {
public:
    /// Nothing if the file is not of that form.
    static std::optional<PdfUpdate> open(const QByteArray& pdf);

    /// First byte of each object by number, ascending.
    const std::map<int, qsizetype>& objects() const { return m_offsets; }
    /// What stands between "n 0 obj" and the next object; empty if there is no such object.
    QByteArrayView object(int number) const;
    int root() const { return m_root; }
    int info() const { return m_info; } ///< the dictionary of properties

    /// @param body  without "obj" and "endobj"
    void replace(int number, const QByteArray& body) { m_replaced[number] = body; }
    /// Number for an object that is new; it must be given a body by `replace`.
    int add() { return m_size++; }

    /// The file with its update; the file as it was if nothing is replaced.
    QByteArray result() const;

    /// The body of a stream that holds data.
    /// @param effort   1 to 9, of packing it
    /// @param entries  of its dictionary, beside those that tell of the packing
    static QByteArray packed(const QByteArray& data, int effort = 6, const QByteArray& entries = {});
    /// "n 0 R"
    static QByteArray referenceTo(int object) { return QByteArray::number(object) + " 0 R"; }
    /// The object number of `/Key n 0 R` or `/Key [n 0 R]` in a dictionary; 0 if the key is not there.
    static int reference(QByteArrayView dictionary, std::string_view key);

private:
    bool readTable();

    QByteArray m_pdf;
    qsizetype m_table = 0; ///< offset of the cross-reference table
    int m_size = 0;
    int m_root = 0;
    int m_info = 0;
    QByteArray m_id; ///< the trailer's entry that identifies the file, where it has one
    std::map<int, qsizetype> m_offsets;
    std::vector<qsizetype> m_starts; ///< of all objects, ascending
    std::map<int, QByteArray> m_replaced;
};

} // namespace spreadsheet
