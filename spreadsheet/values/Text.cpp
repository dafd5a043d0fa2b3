#include "spreadsheet/values/Text.h"

#include <cstring>
#include <new>

namespace spreadsheet {

Text::Text(std::string_view text)
    : m_body(text.empty() ? nullptr : create(text))
{
}

Text Text::countedAs(std::string_view text, double number)
{
    Text result(text);
    if (result.m_body) {
        result.m_body->countsAsNumber = true;
        result.m_body->number = number;
    }
    return result;
}

Text::Body* Text::create(std::string_view text)
{
    void* const memory = ::operator new(sizeof(Body) + text.size());
    Body* const body = new (memory) Body;
    body->size = static_cast<std::uint32_t>(text.size());
    std::memcpy(static_cast<char*>(memory) + sizeof(Body), text.data(), text.size());
    return body;
}

void Text::destroy(Body* body) noexcept
{
    body->~Body();
    ::operator delete(body);
}

} // namespace spreadsheet
