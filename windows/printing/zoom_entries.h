#pragma once
#include "spreadsheet/print/PreviewWidget.h"

#include <array>

namespace selfreport {

/// One entry of the page set-up's zoom list. A setting of 0 is not touched.
struct ZoomEntry {
    const char* shown;
    spreadsheet::PreviewView view;
    int percentage = 0;
    int pagesAcross = 0;
    int pagesDown = 0;
};

/// In the order of the list; `OpenReport::zoomIndex` holds an index.
inline constexpr std::array zoomEntries{
    ZoomEntry{"200%", spreadsheet::PreviewView::percentage, 200},
    ZoomEntry{"150%", spreadsheet::PreviewView::percentage, 150},
    ZoomEntry{"100%", spreadsheet::PreviewView::percentage, 100},
    ZoomEntry{"75%", spreadsheet::PreviewView::percentage, 75},
    ZoomEntry{"50%", spreadsheet::PreviewView::percentage, 50},
    ZoomEntry{"25%", spreadsheet::PreviewView::percentage, 25},
    ZoomEntry{"10%", spreadsheet::PreviewView::percentage, 10},
    ZoomEntry{"Page Width", spreadsheet::PreviewView::pageWidth},
    ZoomEntry{"Page Height", spreadsheet::PreviewView::pageHeight},
    ZoomEntry{"Whole Page", spreadsheet::PreviewView::wholePage},
    ZoomEntry{"Two Pages", spreadsheet::PreviewView::severalPages, 0, 2, 1},
    ZoomEntry{"Three Pages", spreadsheet::PreviewView::severalPages, 0, 3, 1},
    ZoomEntry{"Four Pages", spreadsheet::PreviewView::severalPages, 0, 2, 2},
    ZoomEntry{"Six Pages", spreadsheet::PreviewView::severalPages, 0, 3, 2},
};

/// The entry that is selected while none was chosen: "100%".
inline constexpr int firstZoomIndex = 2;

} // namespace selfreport
