#include "spreadsheet/files/content/stored_texts.h"

#include "spreadsheet/files/content/content_frame.h"
#include "spreadsheet/files/content/stored_vector.h"
#include "spreadsheet/files/placing/ContentError.h"

#include <cmath>

namespace spreadsheet {

std::uint32_t TextWriter::number(const Text& text)
{
    if (text.empty())
        return 0;
    if (text.countsAsNumber()) {
        const std::uint32_t number = append(text);
        m_counted.emplace_back(text.number(), number);
        return number;
    }
    if (const auto known = m_plain.find(text.view()); known != m_plain.end())
        return known->second;
    const std::uint32_t number = append(text);
    m_plain.emplace(m_kept.emplace_back(text).view(), number);
    return number;
}

std::uint32_t TextWriter::append(const Text& text)
{
    m_bytes += text.view();
    if (m_bytes.size() > maxExpandedContent)
        throw ContentError("报表内容太大,无法保存");
    m_ends.push_back(static_cast<std::uint32_t>(m_bytes.size()));
    return static_cast<std::uint32_t>(m_ends.size());
}

void TextWriter::finish(flatbuffers::FlatBufferBuilder& builder)
{
    bytes = builder.CreateVector(reinterpret_cast<const std::uint8_t*>(m_bytes.data()), m_bytes.size());
    ends = builder.CreateVector(m_ends);
    counted = builder.CreateVectorOfStructs(m_counted);
}

StoredTexts::StoredTexts(const stored::Content& content)
    : m_texts(1)
{
    const auto* ends = content.text_ends();
    if (!ends)
        return;
    const std::size_t size = content.text_bytes() ? content.text_bytes()->size() : 0;
    const char* bytes = size ? reinterpret_cast<const char*>(content.text_bytes()->data()) : nullptr;
    std::size_t start = 0;
    m_texts.reserve(ends->size() + std::size_t(1));
    for (const std::uint32_t end : *ends) {
        requireContent(end >= start && end <= size, "文本表的长度不符");
        m_texts.emplace_back(std::string_view(bytes + start, end - start));
        start = end;
    }
    if (!content.counted_texts())
        return;
    requireAlignedElements(content.counted_texts());
    for (const stored::CountedText* counted : *content.counted_texts()) {
        requireContent(counted->text() < m_texts.size(), "文本编号超出范围");
        requireContent(std::isfinite(counted->number()), "文本的数值不对");
        Text& text = m_texts[counted->text()];
        text = Text::countedAs(text.view(), counted->number());
    }
}

const Text& StoredTexts::operator[](std::uint64_t number) const
{
    requireContent(number < m_texts.size(), "文本编号超出范围");
    return m_texts[number];
}

} // namespace spreadsheet
