#include "spreadsheet/display/display_text.h"

#include "spreadsheet/display/cell_types.h"
#include "spreadsheet/display/number_format.h"
#include "spreadsheet/values/decimal_text.h"

namespace spreadsheet {

std::string displayText(const Value& value, const CellStyle& style, bool from1904)
{
    if (!style.numberFormat.empty() && !value.isEmpty() && !value.isError()) {
        if (auto text = formattedCell(value, style.numberFormat.view(), from1904))
            return std::move(*text);
    }
    return textByType(value, style, from1904);
}

Colour textColour(const Value& value, const CellStyle& style)
{
    return style.numberFormat.empty()
               ? style.foreground
               : formatColour(value, style.numberFormat.view()).value_or(style.foreground);
}

std::string textByType(const Value& value, const CellStyle& style, bool from1904)
{
    switch (value.kind()) {
    case ValueKind::empty:
        return {};
    case ValueKind::error:
        return std::string(errorText(value.error()));
    case ValueKind::number: {
        const auto shows = cellTypeRow(style.type).shows;
        return shows ? shows(value.number(), style, from1904) : generalNumberText(value.number());
    }
    case ValueKind::boolean:
        return value.boolean() ? "TRUE" : "FALSE";
    case ValueKind::text:
        break;
    }
    return std::string(value.textView());
}

} // namespace spreadsheet
