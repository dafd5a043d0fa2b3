#include "spreadsheet/print/header_pieces.h"

namespace spreadsheet {

namespace {

constexpr double partGap = 120; // twips between two parts of a header line

} // namespace

QString shownRun(const HeaderRun& run, const HeaderFieldValues& fields)
{
    const std::string filled =
        run.pageNumber ? fields[static_cast<std::size_t>(HeaderField::page)] : withFields(run.text, fields);
    return QString::fromUtf8(filled).replace('\n', ' ');
}

HeaderPieces headerPieces(const HeaderLine& line, const HeaderFieldValues& fields, double width,
                          PageText& text)
{
    HeaderPieces pieces;
    for (std::size_t part = 0; part < pieces.runs.size(); ++part)
        for (const HeaderRun& run : line.parts[part]) {
            const HeaderFont& font = run.font;
            const QFont& drawn = text.font({font.family, font.points, font.bold, font.italic});
            pieces.runs[part].push_back(text.lines(shownRun(run, fields), drawn).front());
            pieces.widths[part] += pieces.runs[part].back().width;
        }
    pieces.places = placeHeaderParts(pieces.widths, width, partGap);
    return pieces;
}

} // namespace spreadsheet
