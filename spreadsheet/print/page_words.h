#pragma once
#include <optional>
#include <QString>

namespace spreadsheet {

class PageLayout;
class Sheet;

/// What the cells of a page show, rows below each other, cells parted by tabs; blank ends are left out.
/// @param number  1 to layout.pageCount()
QString pageWords(const Sheet& sheet, const PageLayout& layout, int number);

/// The first page behind `from`, going round to it, one of whose cells shows the text in either letter case.
std::optional<int> pageShowing(const Sheet& sheet, const PageLayout& layout, const QString& text, int from);

} // namespace spreadsheet
