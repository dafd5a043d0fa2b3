#include "spreadsheet/files/xls/XlsLinks.h"

#include "spreadsheet/formula/ReferenceSlot.h"

namespace spreadsheet {

namespace {

constexpr std::uint16_t ownBookMark = 0x0401;
constexpr std::uint16_t addInMark = 0x3A01;

} // namespace

void XlsLinks::readBook(const XlsRecord& record)
{
    const std::uint16_t mark = record.wordAt(2);
    Book book;
    if (record.size() == 4 && mark == ownBookMark)
        book.kind = BookKind::own;
    else if (record.size() == 4 && mark == addInMark)
        book.kind = BookKind::addIn;
    m_books.push_back(std::move(book));
}

void XlsLinks::readExternName(const XlsRecord& record)
{
    if (m_books.empty())
        return;
    RecordCursor cursor(record);
    cursor.skip(6);
    m_books.back().names.push_back(cursor.shortText());
}

void XlsLinks::readExternSheets(const XlsRecord& record, RecordStream& stream)
{
    RecordCursor cursor(record, stream);
    std::size_t count = cursor.take<std::uint16_t>();
    for (; count > 0 && cursor.left() >= 6; --count) {
        const auto book = cursor.take<std::uint16_t>();
        const auto first = cursor.take<std::uint16_t>();
        m_externSheets.push_back({book, first, cursor.take<std::uint16_t>()});
    }
}

const std::string* XlsLinks::tab(std::size_t index) const
{
    return index < m_tabs.size() && !m_tabs[index].empty() ? &m_tabs[index] : nullptr;
}

std::optional<std::string> XlsLinks::sheetPrefixOf(std::size_t externSheet) const
{
    if (externSheet >= m_externSheets.size())
        return std::nullopt;
    const auto& [book, first, last] = m_externSheets[externSheet];
    if (book >= m_books.size() || m_books[book].kind != BookKind::own)
        return std::nullopt;
    if (!tab(first) || !tab(last))
        return std::string();
    return sheetPrefix(*tab(first), first == last ? std::string_view() : std::string_view(*tab(last)));
}

const std::string* XlsLinks::name(std::size_t number) const
{
    return number >= 1 && number <= m_names.size() ? &m_names[number - 1] : nullptr;
}

const std::string* XlsLinks::externName(std::size_t externSheet, std::size_t number) const
{
    if (externSheet >= m_externSheets.size() || m_externSheets[externSheet].book >= m_books.size())
        return nullptr;
    const Book& book = m_books[m_externSheets[externSheet].book];
    if (book.kind == BookKind::own)
        return name(number);
    const bool known = book.kind == BookKind::addIn && number >= 1 && number <= book.names.size();
    return known ? &book.names[number - 1] : nullptr;
}

} // namespace spreadsheet
