#pragma once
#include "spreadsheet/print/PreviewWidget.h"

#include <array>

namespace selfreport {

/// One entry of the page set-up's zoom list. A setting of 0 is not touched.
struct ZoomEntry {
    const char* shown;
    const char* caption; ///< in the preview itself
    spreadsheet::PreviewView view;
    int percentage = 0;
    int pagesAcross = 0;
    int pagesDown = 0;
};

/// In the order of the list; `OpenReport::zoomIndex` holds an index.
inline constexpr std::array zoomEntries{
    ZoomEntry{"200%", "200%", spreadsheet::PreviewView::percentage, 200},
    ZoomEntry{"150%", "150%", spreadsheet::PreviewView::percentage, 150},
    ZoomEntry{"100%", "100%", spreadsheet::PreviewView::percentage, 100},
    ZoomEntry{"75%", "75%", spreadsheet::PreviewView::percentage, 75},
    ZoomEntry{"50%", "50%", spreadsheet::PreviewView::percentage, 50},
    ZoomEntry{"25%", "25%", spreadsheet::PreviewView::percentage, 25},
    ZoomEntry{"10%", "10%", spreadsheet::PreviewView::percentage, 10},
    ZoomEntry{"Page Width", "页宽", spreadsheet::PreviewView::pageWidth},
    ZoomEntry{"Page Height", "页高", spreadsheet::PreviewView::pageHeight},
    ZoomEntry{"Whole Page", "整页", spreadsheet::PreviewView::wholePage},
    ZoomEntry{"Two Pages", "两页", spreadsheet::PreviewView::severalPages, 0, 2, 1},
    ZoomEntry{"Three Pages", "三页", spreadsheet::PreviewView::severalPages, 0, 3, 1},
    ZoomEntry{"Four Pages", "四页", spreadsheet::PreviewView::severalPages, 0, 2, 2},
    ZoomEntry{"Six Pages", "六页", spreadsheet::PreviewView::severalPages, 0, 3, 2},
};

/// The entry that is selected while none was chosen: "100%".
inline constexpr int firstZoomIndex = 2;

} // namespace selfreport
