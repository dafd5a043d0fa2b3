#pragma once
#include <QFont>
#include <QStringList>

#include <map>
#include <string>
#include <string_view>
#include <tuple>

namespace spreadsheet {

/// What a text on paper asks of its font. Underline and strike-through are drawn apart.
struct FontRequest {
    std::string_view family; ///< UTF-8; empty: the default Song family
    double points = 9;
    bool bold = false;
    bool italic = false;
};

/// Fonts for pages that are measured in twips: a font of 9 points is 180 units high on every device. For a
/// screen the unit is its pixel.
///
/// Families of a report that are not installed give way to one of the same kind (Song, Hei, Kai,
/// FangSong); every font ends with the default Song family for characters that it lacks, so that no
/// Chinese text comes out in the look of another country. Fonts installed later count from the next start on.
class PrintFonts {
public:
    /// @param twip  units that a twip is long; below 1 the fonts are those of a screen, hinted to its pixels
    explicit PrintFonts(double twip = 1)
        : m_twip(twip)
    {
    }

    const QFont& font(const FontRequest& request);

private:
    static const QStringList& families(std::string_view family);

    double m_twip;
    using Key = std::tuple<std::string, int, bool, bool>;
    std::map<Key, QFont> m_fonts;
};

} // namespace spreadsheet
