#pragma once
#include "spreadsheet/print/PageLayout.h"

class QColor;
class QPainter;
class QString;

namespace spreadsheet {

class PageCells;
class PageText;
class Sheet;

/// Draws pages of a layout. The painter's unit is the twip and its origin the paper's top left corner;
/// with that done by a scale, the page is alike on paper, screen and in a PDF.
class PagePainter {
public:
    PagePainter(const Sheet& sheet, const PageLayout& layout, PageText& text)
        : m_sheet(sheet)
        , m_layout(layout)
        , m_text(text)
    {
    }

    /// @param number  1 to layout.pageCount()
    void paint(QPainter& painter, int number);

private:
    void paintTable(QPainter& painter, const PrintedPage& page);
    void paintCells(QPainter& painter, const PrintedPage& page);
    void paintHeadings(QPainter& painter, const PrintedPage& page);
    void paintHeading(QPainter& painter, const PageBox& box, const QString& text);
    void paintBorder(QPainter& painter, const PrintedPage& page);
    void paintHeaderLines(QPainter& painter, const std::vector<HeaderLine>& lines, int top);
    void paintHeaderLine(QPainter& painter, const HeaderLine& line, double baseline);

    const Sheet& m_sheet;
    const PageLayout& m_layout;
    PageText& m_text;
    HeaderFieldValues m_fields; ///< of the page being painted
};

} // namespace spreadsheet
