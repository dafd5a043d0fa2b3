#include "spreadsheet/print/print_fonts.h"

#include "spreadsheet/values/twips.h"

#include <QFontDatabase>

#include <algorithm>
#include <array>
#include <cmath>

namespace spreadsheet {

namespace {

using Chain = std::array<const char*, 8>; // families in the order of preference; unused places are null

constexpr Chain songChain{"SimSun",
                          "宋体",
                          "NSimSun",
                          "Noto Serif CJK SC",
                          "Source Han Serif SC",
                          "AR PL UMing CN",
                          "AR PL SungtiL GB",
                          "WenQuanYi Zen Hei"};
constexpr Chain heiChain{"SimHei",
                         "黑体",
                         "Microsoft YaHei",
                         "Noto Sans CJK SC",
                         "Source Han Sans SC",
                         "WenQuanYi Zen Hei",
                         "WenQuanYi Micro Hei"};
constexpr Chain kaiChain{"KaiTi", "楷体", "KaiTi_GB2312", "楷体_GB2312", "AR PL UKai CN", "AR PL KaitiM GB"};
constexpr Chain fangSongChain{"FangSong", "仿宋", "FangSong_GB2312", "仿宋_GB2312"};

/// A family belongs to the kind whose mark its name contains. FangSong stands before Song on purpose.
constexpr struct {
    const char* mark;
    const Chain* chain;
} kinds[] = {
    {"FangSong", &fangSongChain}, {"仿宋", &fangSongChain}, {"KaiTi", &kaiChain},   {"楷", &kaiChain},
    {"Hei", &heiChain},           {"黑", &heiChain},        {"YaHei", &heiChain},   {"Sans", &heiChain},
    {"Arial", &heiChain},         {"Tahoma", &heiChain},    {"SimSun", &songChain}, {"宋", &songChain}};

/// The toolkit's own question goes through all rules of the system for each name that is not there: half a
/// millisecond, and a chain has several.
bool isListed(const QString& family)
{
    return QFontDatabase::families().contains(family, Qt::CaseInsensitive);
}

/// The first installed family of a chain; empty if none is.
QString installedOf(const Chain& chain)
{
    for (const char* name : chain)
        if (name && isListed(QString::fromUtf8(name)))
            return QString::fromUtf8(name);
    return {};
}

const Chain& chainOf(const QString& family)
{
    const auto kind = std::ranges::find_if(kinds, [&](const auto& k) {
        return family.contains(QString::fromUtf8(k.mark), Qt::CaseInsensitive);
    });
    return kind == std::end(kinds) ? songChain : *kind->chain;
}

void addIfFound(QStringList& list, const QString& family)
{
    if (!family.isEmpty() && !list.contains(family))
        list.append(family);
}

} // namespace

const QStringList& PrintFonts::families(std::string_view family)
{
    // Kept for the process: asking the system takes longer than drawing a page's texts.
    static std::map<std::string, QStringList, std::less<>> chosen;
    if (const auto known = chosen.find(family); known != chosen.end())
        return known->second;
    QStringList list;
    const QString asked = QString::fromUtf8(family);
    if (!asked.isEmpty() && (isListed(asked) || QFontDatabase::hasFamily(asked)))
        list.append(asked);
    addIfFound(list, installedOf(chainOf(asked)));
    addIfFound(list, installedOf(songChain));
    addIfFound(list, installedOf(heiChain));
    return chosen.emplace(family, list).first->second;
}

const QFont& PrintFonts::font(const FontRequest& request)
{
    const int pixels = std::max(static_cast<int>(std::lround(request.points * twipsPerPoint * m_twip)), 1);
    Key key(request.family, pixels, request.bold, request.italic);
    if (const auto known = m_fonts.find(key); known != m_fonts.end())
        return known->second;
    QFont font;
    if (const QStringList& list = families(request.family); !list.isEmpty())
        font.setFamilies(list);
    font.setPixelSize(pixels);
    font.setBold(request.bold);
    font.setItalic(request.italic);
    // One character, one glyph, whatever the process's language: the text layer of a PDF stands on it.
    font.setStyleStrategy(QFont::PreferNoShaping);
    font.setHintingPreference(m_twip < 1 ? QFont::PreferDefaultHinting : QFont::PreferNoHinting);
    return m_fonts.emplace(std::move(key), font).first->second;
}

} // namespace spreadsheet
