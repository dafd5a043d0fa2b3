#pragma once
#include <QRect>
#include <QString>

#include <vector>

namespace spreadsheet {

class PageLayout;
class Sheet;

/// What the cells of a page show, rows below each other, cells parted by tabs; blank ends are left out.
/// @param number  1 to layout.pageCount()
QString pageWords(const Sheet& sheet, const PageLayout& layout, int number);

/// Where the parts of header and footer and the cells stand that show a text, which is not empty, in either
/// letter case: twips from the paper's corner, from top to bottom.
std::vector<QRect> pageHits(const Sheet& sheet, const PageLayout& layout, int number, const QString& text);

} // namespace spreadsheet
