#include "spreadsheet/files/exchange/header_codes.h"

#include "spreadsheet/display/header_fields.h"
#include "spreadsheet/display/header_footer.h"
#include "text/ascii.h"

#include <array>
#include <charconv>
#include <cmath>

namespace spreadsheet {

// Ours keeps a header as lines whose three parts stand side by side; the files keep three sections, each
// with lines of its own, and let a font hold until another one follows. So both directions go through runs
// of one font: reading collects them by section and lays them out by line, writing says a font only where it
// changes. A section begins with the font of the surroundings, which is why entering one resets it.

namespace {

/// Fields with the letters of workbook files, in the order of `headerFieldNames`. A report's name becomes its
/// file's.
constexpr std::array<std::pair<HeaderField, char>, 6> fieldLetters{{{HeaderField::page, 'P'},
                                                                    {HeaderField::pages, 'N'},
                                                                    {HeaderField::date, 'D'},
                                                                    {HeaderField::time, 'T'},
                                                                    {HeaderField::sheet, 'A'},
                                                                    {HeaderField::report, 'F'}}};

/// A part of one section: its lines, each a list of runs.
using Section = std::vector<std::vector<HeaderRun>>;

class ForeignReader {
public:
    ForeignReader(std::string_view text, const HeaderSurroundings& surroundings, Warnings& warnings)
        : m_rest(text)
        , m_surroundings(surroundings)
        , m_warnings(warnings)
    {
        m_sections.fill(Section(1));
        resetFont();
    }

    std::array<Section, 3> read()
    {
        while (!m_rest.empty()) {
            const char c = m_rest.front();
            m_rest.remove_prefix(1);
            if (c == '&' && !m_rest.empty())
                code();
            else if (c == '\n')
                lines().emplace_back();
            else if (c != '\r')
                appendPlain(std::string_view(&c, 1));
        }
        return m_sections;
    }

private:
    Section& lines() { return m_sections[static_cast<std::size_t>(m_part)]; }

    void resetFont() { m_font = {m_surroundings.family, m_surroundings.points, false, false, false, false}; }

    std::string& append(std::string_view text)
    {
        auto& line = lines().back();
        if (line.empty() || line.back().pageNumber || !(line.back().font == m_font))
            line.push_back({m_font, {}, false});
        return line.back().text += text;
    }

    /// Text that looks like a field of ours, once it is whole, is none: its sign becomes full-width.
    void appendPlain(std::string_view piece)
    {
        std::string& text = append(piece);
        for (const HeaderFieldName& name : headerFieldNames)
            if (text.ends_with(name.text))
                text.replace(text.size() - name.text.size(), 1, "＆");
    }

    void enter(HeaderPart part)
    {
        m_part = part;
        resetFont();
    }

    void code()
    {
        const char c = m_rest.front();
        if (ascii::isDigit(c))
            return size();
        m_rest.remove_prefix(1);
        switch (c) {
        case 'L':
            return enter(HeaderPart::left);
        case 'C':
            return enter(HeaderPart::centre);
        case 'R':
            return enter(HeaderPart::right);
        case 'P':
            lines().back().push_back({m_font, {}, true});
            return skipOffset();
        case '&':
            return appendPlain("&");
        case '"':
            return family();
        case 'B':
            m_font.bold = !m_font.bold;
            return;
        case 'I':
            m_font.italic = !m_font.italic;
            return;
        case 'U':
        case 'E':
            m_font.underline = !m_font.underline;
            return;
        case 'S':
            m_font.strikeThrough = !m_font.strikeThrough;
            return;
        case 'K': // a colour: six digits, or a theme's number with its shade
            m_rest.remove_prefix(std::min<std::size_t>(6, m_rest.size()));
            return;
        default:
            return field(c);
        }
    }

    /// "&P+1" counts from another page; the number alone stays.
    void skipOffset()
    {
        if (m_rest.size() < 2 || (m_rest[0] != '+' && m_rest[0] != '-') || !ascii::isDigit(m_rest[1]))
            return;
        m_rest.remove_prefix(1);
        while (!m_rest.empty() && ascii::isDigit(m_rest.front()))
            m_rest.remove_prefix(1);
        m_warnings.add("页眉页脚中的起始页码没有保留");
    }

    void size()
    {
        int points = 0;
        const auto end =
            std::from_chars(m_rest.data(), m_rest.data() + std::min<std::size_t>(3, m_rest.size()), points)
                .ptr;
        m_rest.remove_prefix(static_cast<std::size_t>(end - m_rest.data()));
        if (points > 0 && points <= 409)
            m_font.points = points;
    }

    /// "宋体,Bold Italic" up to the closing quote; "-" is the default family.
    void family()
    {
        const std::size_t end = std::min(m_rest.find('"'), m_rest.size());
        const std::string_view whole = m_rest.substr(0, end);
        m_rest.remove_prefix(std::min(end + 1, m_rest.size()));
        const std::size_t comma = whole.find(',');
        const std::string_view name = whole.substr(0, comma);
        const std::string_view style = comma == std::string_view::npos ? "" : whole.substr(comma + 1);
        m_font.family = name.empty() || name == "-" ? m_surroundings.family : std::string(name);
        const auto names = [style](std::string_view word) {
            return style.find(word) != std::string_view::npos;
        };
        m_font.bold = names("Bold") || names("加粗") || names("粗体");
        m_font.italic = names("Italic") || names("倾斜") || names("斜体");
    }

    void field(char code)
    {
        for (const auto& [own, letter] : fieldLetters)
            if (letter == code) {
                append(headerFieldNames[static_cast<std::size_t>(own)].text);
                return;
            }
        static constexpr std::array<std::pair<char, std::string_view>, 2> known{
            {{'Z', "路径"}, {'G', "图片"}}};
        for (const auto& [letter, what] : known) {
            if (letter == code)
                m_warnings.add("页眉页脚中的" + std::string(what) + "没有对应的代码,已去掉");
        }
    }

    std::string_view m_rest;
    const HeaderSurroundings& m_surroundings;
    Warnings& m_warnings;
    std::array<Section, 3> m_sections;
    HeaderPart m_part = HeaderPart::centre;
    HeaderFont m_font;
};

/// Ours has no escape: a slash that would begin a code becomes its full-width form.
std::string withoutCodes(const std::string& text)
{
    std::string plain;
    for (std::size_t i = 0; i < text.size(); ++i) {
        const bool code =
            text[i] == '/' &&
            (i + 1 == text.size() || std::string_view("nlcrpf").find(text[i + 1]) < std::string_view::npos);
        plain += code ? std::string("／") : std::string(1, text[i]);
    }
    return plain;
}

std::string pointsText(double points)
{
    std::array<char, 32> digits;
    const auto end =
        std::to_chars(digits.data(), digits.data() + digits.size(), static_cast<float>(points)).ptr;
    return {digits.data(), end};
}

void appendOwn(const std::vector<HeaderRun>& runs, char part, std::string& codes)
{
    for (const HeaderRun& run : runs) {
        const HeaderFont& font = run.font;
        codes += "/fn\"" + font.family + "\"/fz\"" + pointsText(font.points) + "\"";
        codes += font.bold ? "/fb1" : "/fb0";
        codes += font.italic ? "/fi1" : "/fi0";
        codes += font.underline ? "/fu1" : "/fu0";
        codes += font.strikeThrough ? "/fk1" : "/fk0";
        codes += std::string("/") + part + (run.pageNumber ? "/p" : withoutCodes(run.text));
    }
}

std::string foreignText(std::string_view text)
{
    std::string escaped;
    while (!text.empty()) {
        const HeaderFieldName* const field = headerFieldAt(text);
        if (field)
            escaped += {'&', fieldLetters[static_cast<std::size_t>(field->field)].second};
        else if (escaped.ends_with("&P") && (text.front() == '+' || text.front() == '-'))
            escaped += {' ', text.front()}; // else it would be added to the number
        else
            escaped += text.front() == '&' ? "&&" : std::string(1, text.front());
        text.remove_prefix(field ? field->text.size() : 1);
    }
    return escaped;
}

/// Writes the runs of one section with the codes that change between them.
class ForeignWriter {
public:
    explicit ForeignWriter(char section)
        : m_text{'&', section}
    {
    }

    void run(const HeaderRun& run)
    {
        // Behind a page number "+1" would be added to it.
        const bool wouldCount = m_text.ends_with("&P") && run.text.find_first_of("+-") == 0;
        if (!m_started || !(run.font == m_font) || wouldCount)
            font(run.font);
        if (run.pageNumber)
            m_text += "&P";
        // A digit right behind a size would be read as part of it.
        else if (!run.text.empty() && ascii::isDigit(run.text.front()) && ascii::isDigit(m_text.back()))
            m_text += " " + foreignText(run.text);
        else
            m_text += foreignText(run.text);
        m_holdsRuns = true;
    }
    void line() { m_text += '\n'; }
    std::string text() const { return m_holdsRuns ? m_text : std::string(); }

private:
    void font(const HeaderFont& font)
    {
        static constexpr std::array<std::string_view, 4> styles{"Regular", "Bold", "Italic", "Bold Italic"};
        m_text += "&" + std::to_string(std::lround(font.points));
        if (!font.family.empty())
            m_text += "&\"" + font.family + "," +
                      std::string(styles[(font.bold ? 1u : 0u) + (font.italic ? 2u : 0u)]) + "\"";
        if (font.underline != (m_started && m_font.underline))
            m_text += "&U";
        if (font.strikeThrough != (m_started && m_font.strikeThrough))
            m_text += "&S";
        m_font = font;
        m_started = true;
    }

    std::string m_text;
    HeaderFont m_font;
    bool m_started = false;
    bool m_holdsRuns = false;
};

} // namespace

std::string readForeignHeader(std::string_view foreign, const HeaderSurroundings& surroundings,
                              Warnings& warnings)
{
    const std::array<Section, 3> sections = ForeignReader(foreign, surroundings, warnings).read();
    std::size_t lines = 0;
    for (const Section& section : sections) {
        for (std::size_t line = 0; line < section.size(); ++line)
            lines = section[line].empty() ? lines : std::max(lines, line + 1);
    }
    static constexpr std::array parts{'l', 'c', 'r'};
    std::string codes;
    for (std::size_t line = 0; line < lines; ++line) {
        for (std::size_t part = 0; part < parts.size(); ++part) {
            if (line < sections[part].size())
                appendOwn(sections[part][line], parts[part], codes);
        }
        codes += "/n";
    }
    return codes;
}

std::string writeForeignHeader(std::string_view codes)
{
    static constexpr std::array sections{'L', 'C', 'R'};
    const std::vector<HeaderLine> lines = readHeaderFooter(codes);
    std::string foreign;
    for (std::size_t part = 0; part < sections.size(); ++part) {
        ForeignWriter writer(sections[part]);
        for (std::size_t line = 0; line < lines.size(); ++line) {
            if (line > 0)
                writer.line();
            for (const HeaderRun& run : lines[line].parts[part])
                writer.run(run);
        }
        foreign += writer.text();
    }
    return foreign;
}

} // namespace spreadsheet
