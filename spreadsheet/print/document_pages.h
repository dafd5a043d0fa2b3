#pragma once
#include "spreadsheet/print/PageLayout.h"
#include "spreadsheet/print/print_range.h"

#include <QString>

#include <functional>
#include <optional>
#include <vector>

class QPagedPaintDevice;
class QPageLayout;

namespace spreadsheet {

class PageText;
class Workbook;

/// What is printed, on paper or into a file.
struct PrintDocument {
    QString title;            ///< of the document; empty: the name of its first sheet
    QString author, subject;  ///< properties of a PDF; empty: none
    bool isArchive = false;   ///< a PDF keeps to PDF/A-1b
    std::optional<int> sheet; ///< from 1; without it all sheets
    PageRequest page;         ///< its ranges are taken from `range`
    PrintRange range;         ///< of every sheet
    /// Asked before each page, with pages done and pages in all; false ends the work. May be empty.
    std::function<bool(int done, int pages)> goesOn;
};

/// The document is not finished because `goesOn` said so.
struct PrintCancelled {};

/// One sheet of a document. The sheet must outlive it.
struct SheetPages {
    const Sheet& sheet;
    PageLayout layout;
    PageSequence pages;
};

/// Lays out the sheets of a document; those that the range leaves without a page are left out.
/// @throws PageLayoutError  a sheet does not exist, or margins leave no room
std::vector<SheetPages> layOut(const Workbook& workbook, const PrintDocument& document);

int pageCount(const std::vector<SheetPages>& sheets);

/// The paper of a layout, turned as it is printed, without margins of its own.
QPageLayout paperOf(const PageLayout& layout);

/// The document's title, or the name of its first sheet.
QString titleOf(const PrintDocument& document, const std::vector<SheetPages>& sheets);

/// Draws all pages on a printer or PDF writer, which is set to whole sheets of paper here.
/// @param sheets  at least one
/// @return  false if the device did not take a page
/// @throws PrintCancelled
bool drawPages(QPagedPaintDevice& device, const std::vector<SheetPages>& sheets,
               const PrintDocument& document, PageText& text);

} // namespace spreadsheet
