#pragma once
#include <cstdint>

/// Numbers of the records that the reader or the writer knows. docs/xls.md lists all.
namespace spreadsheet::xls {

enum Record : std::uint16_t {
    formula = 0x0006,
    endOfFile = 0x000A,
    protect = 0x0012,
    header = 0x0014,
    footer = 0x0015,
    externSheet = 0x0017,
    name = 0x0018,
    verticalBreaks = 0x001A,
    horizontalBreaks = 0x001B,
    note = 0x001C,
    dateMode = 0x0022,
    externName = 0x0023,
    leftMargin = 0x0026,
    rightMargin = 0x0027,
    topMargin = 0x0028,
    bottomMargin = 0x0029,
    printHeaders = 0x002A,
    printGridLines = 0x002B,
    filePassword = 0x002F,
    font = 0x0031,
    continued = 0x003C,
    window1 = 0x003D,
    pane = 0x0041,
    codePage = 0x0042,
    defaultColumnWidth = 0x0055,
    object = 0x005D,
    columnInfo = 0x007D,
    guts = 0x0080,
    sheetFlags = 0x0081,
    gridSet = 0x0082,
    centredAcross = 0x0083,
    centredDown = 0x0084,
    boundSheet = 0x0085,
    country = 0x008C,
    palette = 0x0092,
    standardWidth = 0x0099,
    setup = 0x00A1,
    multipleRk = 0x00BD,
    multipleBlank = 0x00BE,
    richText = 0x00D6,
    extendedFormat = 0x00E0,
    mergedCells = 0x00E5,
    drawingGroup = 0x00EB,
    drawing = 0x00EC,
    sharedTexts = 0x00FC,
    sharedTextCell = 0x00FD,
    externBook = 0x01AE,
    inputChecks = 0x01B2,
    textObject = 0x01B6,
    inputCheck = 0x01BE,
    dimensions = 0x0200,
    blank = 0x0201,
    number = 0x0203,
    label = 0x0204,
    recalculationId = 0x01C1,
    boolOrError = 0x0205,
    formulaText = 0x0207,
    row = 0x0208,
    array = 0x0221,
    defaultRowHeight = 0x0225,
    table = 0x0236,
    window2 = 0x023E,
    rk = 0x027E,
    style = 0x0293,
    format = 0x041E,
    sharedFormula = 0x04BC,
    beginOfFile = 0x0809,
};

inline constexpr std::uint16_t version5 = 0x0500;
inline constexpr std::uint16_t version8 = 0x0600;

/// Kinds of substreams.
enum Substream : std::uint16_t { globals = 0x0005, worksheet = 0x0010 };

/// Number of the font colour that is black on every screen's white.
inline constexpr unsigned automaticFontColour = 0x7FFF;

inline constexpr int maxRows = 65'536;
inline constexpr int maxColumns = 256;

} // namespace spreadsheet::xls
