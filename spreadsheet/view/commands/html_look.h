#pragma once
#include "spreadsheet/view/commands/PastedTable.h"

#include <map>
#include <optional>
#include <string>
#include <string_view>

namespace spreadsheet {

/// "#1a2b3c", "#abc", "rgb(1, 2, 3)" or one of the sixteen basic names; nothing for anything else.
std::optional<Colour> parseHtmlColour(std::string_view text);

/// What the declarations of a `style` attribute or a class rule say about a cell.
struct HtmlStyle {
    PastedLook look;
    bool isText = false; ///< its number format is that of texts
};

/// Adds declarations ("font-weight: bold; color: red"); unknown ones are passed over.
void addDeclarations(std::string_view declarations, HtmlStyle& style);

/// Reads the rules for classes and for the element `td` from a style sheet, by "name" or "td".
void readStyleSheet(std::string_view sheet, std::map<std::string, HtmlStyle, std::less<>>& rules);

/// Lays what `over` says on top.
void overlay(PastedLook& look, const PastedLook& over);

/// In small letters, blanks around it taken off: how mark-up names are compared.
std::string htmlKeyword(std::string_view text);

} // namespace spreadsheet
