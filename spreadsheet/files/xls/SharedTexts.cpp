#include "spreadsheet/files/xls/SharedTexts.h"

#include "spreadsheet/files/exchange/unicode_text.h"
#include "spreadsheet/files/xls/records.h"

namespace spreadsheet {

std::uint32_t SharedTexts::number(std::string_view text)
{
    ++m_uses;
    const auto [entry, isFresh] = m_numbers.try_emplace(text, static_cast<std::uint32_t>(m_texts.size()));
    if (isFresh) {
        m_texts.push_back(text);
        m_hasCut |= text.size() > mostCharacters && utf16Of(text).size() > mostCharacters;
    }
    return entry->second;
}

void SharedTexts::write(RecordWriter& writer) const
{
    writer.begin(xls::sharedTexts);
    writer.put32(m_uses);
    writer.put32(static_cast<std::uint32_t>(m_texts.size()));
    for (const std::string_view text : m_texts) {
        const std::u16string units = utf16Of(text);
        writer.putContinuedText(std::u16string_view(units).substr(0, mostCharacters));
    }
    writer.end();
}

} // namespace spreadsheet
