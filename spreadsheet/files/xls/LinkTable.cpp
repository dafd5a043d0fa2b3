#include "spreadsheet/files/xls/LinkTable.h"

#include "spreadsheet/files/exchange/function_numbers.h"
#include "spreadsheet/files/xls/records.h"
#include "spreadsheet/formula/NameTable.h"

#include <algorithm>

namespace spreadsheet {

namespace {

constexpr std::uint16_t ownBook = 0, addInBook = 1;
constexpr std::uint16_t noSheet = 0xFFFE;

} // namespace

LinkTable::LinkTable(const Workbook& workbook)
    : m_workbook(workbook)
{
    for (int number = 0; number < workbook.names().size(); ++number) {
        if (workbook.names()[number].formula != 0)
            m_names.push_back(number);
    }
}

int LinkTable::number(Pair pair)
{
    const auto found = std::ranges::find(m_pairs, pair);
    if (found == m_pairs.end())
        m_pairs.push_back(pair);
    return static_cast<int>(std::ranges::find(m_pairs, pair) - m_pairs.begin());
}

int LinkTable::sheets(int firstId, int lastId)
{
    const int first = m_workbook.sheetIndexOfId(firstId), last = m_workbook.sheetIndexOfId(lastId);
    if (first == 0 || last == 0)
        return -1;
    return number({ownBook, static_cast<std::uint16_t>(std::min(first, last) - 1),
                   static_cast<std::uint16_t>(std::max(first, last) - 1)});
}

int LinkTable::function(std::string_view name)
{
    const auto found = std::ranges::find(m_functions, name);
    if (found != m_functions.end())
        return static_cast<int>(found - m_functions.begin()) + 1;
    m_functions.emplace_back(name);
    return static_cast<int>(m_functions.size());
}

int LinkTable::laterFunction(std::string_view name)
{
    const std::string prefixed = std::string(laterFunctionPrefix(name)).append(name);
    auto found = std::ranges::find(m_laterFunctions, prefixed);
    if (found == m_laterFunctions.end())
        found = m_laterFunctions.insert(found, prefixed);
    return static_cast<int>(m_names.size() + static_cast<std::size_t>(found - m_laterFunctions.begin())) + 1;
}

int LinkTable::functionsBook()
{
    return number({addInBook, noSheet, noSheet});
}

int LinkTable::name(std::string_view name) const
{
    const auto found = std::ranges::find(m_names, m_workbook.names().find(name));
    return found == m_names.end() ? 0 : static_cast<int>(found - m_names.begin()) + 1;
}

void LinkTable::write(RecordWriter& writer) const
{
    writer.begin(xls::externBook);
    writer.put16(static_cast<unsigned>(m_workbook.sheetCount()));
    writer.put16(0x0401);
    writer.end();
    if (!m_functions.empty()) {
        writer.begin(xls::externBook);
        writer.put16(1);
        writer.put16(0x3A01);
        writer.end();
    }
    for (const std::string& function : m_functions) {
        writer.begin(xls::externName);
        writer.putZeros(6);
        writer.putShortText(function);
        writer.put16(2); // its formula is #REF!, as long as no add-in is there
        writer.put8(0x1C);
        writer.put8(0x17);
        writer.end();
    }
    writer.begin(xls::externSheet);
    writer.put16(static_cast<unsigned>(m_pairs.size()));
    for (const Pair& pair : m_pairs) {
        writer.keepTogether(6);
        writer.put16(pair.book);
        writer.put16(pair.first);
        writer.put16(pair.last);
    }
    writer.end();
}

} // namespace spreadsheet
