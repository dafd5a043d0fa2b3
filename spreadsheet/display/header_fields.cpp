#include "spreadsheet/display/header_fields.h"

#include <algorithm>

namespace spreadsheet {

const HeaderFieldName* headerFieldAt(std::string_view text)
{
    const auto* const found = std::ranges::find_if(
        headerFieldNames, [text](const HeaderFieldName& name) { return text.starts_with(name.text); });
    return found == std::end(headerFieldNames) ? nullptr : found;
}

std::string withFields(std::string_view text, const HeaderFieldValues& values)
{
    std::string filled;
    while (!text.empty()) {
        const HeaderFieldName* const field = headerFieldAt(text);
        if (field)
            filled += values[static_cast<std::size_t>(field->field)];
        else
            filled += text.front();
        text.remove_prefix(field ? field->text.size() : 1);
    }
    return filled;
}

} // namespace spreadsheet
