#include "spreadsheet/display/header_footer.h"

#include "spreadsheet/values/twips.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <optional>

namespace spreadsheet {

namespace {

constexpr double smallestPoints = 1, largestPoints = 409; // as for cells
constexpr double lineSpacing = 1.35; // line height over font size; leaves CJK texts some air

std::optional<double> parsePoints(std::string_view text)
{
    double points = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), points);
    if (error != std::errc() || end != text.data() + text.size() ||
        !(points >= smallestPoints && points <= largestPoints))
        return std::nullopt;
    return points;
}

class HeaderCodeReader {
public:
    explicit HeaderCodeReader(std::string_view codes)
        : m_rest(codes)
    {
    }

    std::vector<HeaderLine> read()
    {
        m_lines.emplace_back();
        while (!m_rest.empty()) {
            if (m_rest.front() != '/' || !readCode())
                readText();
        }
        closeLine();
        if (m_lines.back().empty())
            m_lines.pop_back();
        return std::move(m_lines);
    }

private:
    /// Takes a code off the rest; false, and nothing taken, if none stands there.
    bool readCode()
    {
        if (m_rest.size() < 2)
            return false;
        switch (m_rest[1]) {
        case 'n':
            closeLine();
            m_lines.emplace_back();
            break;
        case 'l':
            m_part = HeaderPart::left;
            break;
        case 'c':
            m_part = HeaderPart::centre;
            break;
        case 'r':
            m_part = HeaderPart::right;
            break;
        case 'p':
            runs().push_back({m_font, {}, true});
            break;
        case 'f':
            return readFontCode();
        default:
            return false;
        }
        m_rest.remove_prefix(2);
        return true;
    }

    bool readFontCode()
    {
        if (m_rest.size() < 4)
            return false;
        if (m_rest[2] == 'n' || m_rest[2] == 'z')
            return readQuotedFontCode();
        static constexpr struct {
            char letter;
            bool HeaderFont::*attribute;
        } switches[] = {{'b', &HeaderFont::bold},
                        {'i', &HeaderFont::italic},
                        {'u', &HeaderFont::underline},
                        {'k', &HeaderFont::strikeThrough}};
        for (const auto& [letter, attribute] : switches) {
            if (m_rest[2] != letter)
                continue;
            m_font.*attribute = m_rest[3] != '0';
            m_rest.remove_prefix(4);
            return true;
        }
        return false;
    }

    bool readQuotedFontCode()
    {
        const std::size_t close = m_rest.find('"', 4);
        if (m_rest[3] != '"' || close == std::string_view::npos)
            return false;
        const std::string_view argument = m_rest.substr(4, close - 4);
        if (m_rest[2] == 'n')
            m_font.family = argument;
        else if (const auto points = parsePoints(argument))
            m_font.points = *points;
        m_rest.remove_prefix(close + 1);
        return true;
    }

    /// The text up to the next slash. A slash at its start, which is no code, belongs to it.
    void readText()
    {
        const std::string_view text = m_rest.substr(0, m_rest.find('/', 1));
        m_rest.remove_prefix(text.size());
        if (!runs().empty() && !runs().back().pageNumber && runs().back().font == m_font)
            runs().back().text += text;
        else
            runs().push_back({m_font, std::string(text), false});
    }

    void closeLine()
    {
        HeaderLine& line = m_lines.back();
        line.points = line.empty() ? m_font.points : 0;
        for (const auto& part : line.parts)
            for (const HeaderRun& run : part)
                line.points = std::max(line.points, run.font.points);
    }

    std::vector<HeaderRun>& runs() { return m_lines.back().parts[static_cast<std::size_t>(m_part)]; }

    std::string_view m_rest;
    std::vector<HeaderLine> m_lines;
    HeaderPart m_part = HeaderPart::left;
    HeaderFont m_font;
};

} // namespace

std::vector<HeaderLine> readHeaderFooter(std::string_view codes)
{
    return HeaderCodeReader(codes).read();
}

int headerLineHeight(const HeaderLine& line)
{
    return static_cast<int>(std::lround(line.points * twipsPerPoint * lineSpacing));
}

int headerHeight(const std::vector<HeaderLine>& lines)
{
    constexpr int gap = 120; // twips
    int height = lines.empty() ? 0 : gap;
    for (const HeaderLine& line : lines)
        height += headerLineHeight(line);
    return height;
}

} // namespace spreadsheet
