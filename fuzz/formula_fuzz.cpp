// Feeds any text to the formula language: it is refused with a place and a reason, or comes back letter by
// letter and can be computed.
#include "spreadsheet/values/number_text.h"
#include "spreadsheet/workbook/Workbook.h"

#include <cstdint>
#include <cstdlib>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const std::string_view text(reinterpret_cast<const char*>(data), size);
    spreadsheet::Workbook workbook;
    spreadsheet::Sheet& sheet = workbook.sheet(1);
    sheet.setNumber({1, 1}, 1);
    const auto problem = sheet.setFormula({2, 2}, text);
    if (problem) {
        if (problem.position() > text.size())
            std::abort();
        return 0;
    }
    const std::string_view typed = spreadsheet::trimmedBlanks(text);
    const std::string_view body = typed.starts_with('=') ? typed.substr(1) : typed;
    if (!typed.empty() && sheet.formula({2, 2}) != body)
        std::abort();
    workbook.recalculate();
    return 0;
}
