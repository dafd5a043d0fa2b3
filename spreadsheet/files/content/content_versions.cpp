#include "spreadsheet/files/content/content_versions.h"

#include "spreadsheet/cells/SheetSettings.h"
#include "spreadsheet/display/CellStyle.h"
#include "spreadsheet/display/number_format_code.h"

#include <algorithm>
#include <string_view>

namespace spreadsheet {

// A program refuses contents of later versions, because it would drop what it does not know when it saves
// them. So a content has the version that it needs, not that of the program which wrote it, and old programs
// go on opening what they can keep. The list below says what needs which version: whoever stores something
// new adds a field at the end of its table in content.fbs with the version since which it exists, a row here,
// and, if it is the first of a version, a sample under tests/data, which opens for ever.

namespace {

/// By its number in the file; empty for one that is not there.
std::string_view textOf(const stored::Content& content, std::uint32_t number)
{
    const auto* ends = content.text_ends();
    if (number == 0 || !ends || number > ends->size())
        return {};
    const std::uint32_t first = number == 1 ? 0 : ends->Get(number - 2);
    const auto* bytes = reinterpret_cast<const char*>(content.text_bytes()->data());
    return {bytes + first, ends->Get(number - 1) - first};
}

bool anyStyle(const stored::Content& content, const auto& holds)
{
    return content.styles() && std::ranges::any_of(*content.styles(), holds);
}

/// Version 1 knows the line styles up to the fine ones, and takes a file with others for damaged.
bool hasLaterLines(const stored::Content& content)
{
    return anyStyle(content, [](const stored::Style* style) {
        const stored::BorderLine* const lines[]{style->left(), style->right(), style->top(), style->bottom()};
        return std::ranges::any_of(lines, [](const stored::BorderLine* line) {
            return line && line->style() > static_cast<int>(LineStyle::fineDashDotDot);
        });
    });
}

bool hasCarriedAlignment(const stored::Content& content)
{
    return anyStyle(content, [](const stored::Style* style) {
        return style->spread_across() != 0 || style->spread_down() != 0 || style->indent() != 0 ||
               style->rotation() != 0;
    });
}

/// Version 1 shows figures in tens of thousands in full, under headings that say otherwise.
bool hasTenThousands(const stored::Content& content)
{
    return anyStyle(content, [&](const stored::Style* style) {
        const auto sections = parseFormatCode(textOf(content, style->number_format()));
        return sections && std::ranges::any_of(*sections, [](const FormatSection& section) {
                   return section.tenThousands > 0;
               });
    });
}

/// Version 1 knows repeated rows and fitting to one page's width, and drops the rest.
bool hasPrintSetup(const stored::Content& content)
{
    return std::ranges::any_of(*content.sheets(), [](const stored::Sheet* sheet) {
        const stored::Print* const print = sheet->print();
        return print && (print->title_left() > 0 || print->area() || print->scale() != 100 ||
                         print->fit_across() > 0 || print->fit_down() > 0 || print->down_first() ||
                         print->first_page() != 1 || print->paper_width() > 0 || print->paper_height() > 0 ||
                         print->text_distance() != usualTextDistance);
    });
}

/// Version 1 drops both when it saves, and prints what was not to be printed.
bool hasStrictPrinting(const stored::Content& content)
{
    return content.sheets() && std::ranges::any_of(*content.sheets(), [](const stored::Sheet* sheet) {
               return sheet->print() && sheet->print()->strict();
           });
}

bool hasNothingTexts(const stored::Content& content)
{
    return content.sheets() && std::ranges::any_of(*content.sheets(), [](const stored::Sheet* sheet) {
               return sheet->nothing_texts() && sheet->nothing_texts()->size() > 0;
           });
}

/// Version 1 leaves it hidden only.
bool hasVeryHidden(const stored::Content& content)
{
    return content.sheets() && std::ranges::any_of(*content.sheets(), [](const stored::Sheet* sheet) {
               return sheet->is_very_hidden();
           });
}

bool hasNamesOfOneSheet(const stored::Content& content)
{
    return content.names() &&
           std::ranges::any_of(*content.names(), [](const stored::Name* name) { return name->sheet() != 0; });
}

/// What asks for a version beyond the first.
constexpr struct {
    std::uint32_t since;
    bool (*isUsed)(const stored::Content& content);
} laterThings[] = {
    {2, hasLaterLines}, {2, hasCarriedAlignment}, {2, hasNamesOfOneSheet}, {2, hasTenThousands},
    {2, hasPrintSetup}, {2, hasStrictPrinting},   {2, hasNothingTexts},    {2, hasVeryHidden},
};

} // namespace

std::uint32_t neededVersion(const stored::Content& content)
{
    std::uint32_t version = 1;
    for (const auto& [since, isUsed] : laterThings) {
        if (since > version && isUsed(content))
            version = since;
    }
    return version;
}

} // namespace spreadsheet
