#include "windows/printing/header_codes.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstdint>
#include <optional>
#include <vector>

namespace selfreport {

// Reports have been stored with what the suite's editor made of a string, its limits and slips included. This
// reader keeps them, so that opening and saving a header changes nothing that was not touched; the pages read
// the same strings more generously, since for them every text counts.

namespace {

constexpr std::size_t longest = 99; // characters of a text, font name or size
constexpr int largestPoints = 409;  // as for cells

/// Where each character of a UTF-8 text begins; its end stands last.
std::vector<std::size_t> characterStarts(std::string_view text)
{
    std::vector<std::size_t> starts;
    for (std::size_t i = 0; i < text.size(); ++i)
        if ((static_cast<unsigned char>(text[i]) & 0xC0U) != 0x80U)
            starts.push_back(i);
    starts.push_back(text.size());
    return starts;
}

/// Halves become even, whatever rounding the host has set.
int roundedToEven(double value)
{
    const double below = std::floor(value);
    const double rest = value - below;
    const bool up = rest > 0.5 || (rest == 0.5 && std::fmod(below, 2) != 0);
    return static_cast<int>(below) + (up ? 1 : 0);
}

std::optional<int> wholePoints(std::string_view text)
{
    double points = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), points);
    if (error != std::errc() || end != text.data() + text.size() || !(points >= 0 && points <= largestPoints))
        return std::nullopt;
    const int whole = roundedToEven(points);
    return whole >= 1 ? std::optional<int>(whole) : std::nullopt;
}

class EditorReader {
public:
    EditorReader(std::string_view codes, HeaderGrid& grid, HeaderReaderState& state)
        : m_codes(codes)
        , m_starts(characterStarts(codes))
        , m_grid(grid)
        , m_state(state)
    {
    }

    std::string_view read()
    {
        const std::size_t length = m_starts.size() - 1;
        while (m_at + 1 < length && m_problem.empty()) { // what begins at the last character is not read
            if (character(m_at) == "/")
                readCode();
            else if (const auto text = takeUpTo("/", "Error parsing TEXT"))
                setText(*text);
        }
        return m_problem;
    }

private:
    /// By its place from 0; empty beyond the end.
    std::string_view character(std::size_t place) const
    {
        if (place + 1 >= m_starts.size())
            return {};
        return m_codes.substr(m_starts[place], m_starts[place + 1] - m_starts[place]);
    }

    /// The text from here to the character `end`, where reading goes on.
    std::optional<std::string_view> takeUpTo(std::string_view end, std::string_view problem)
    {
        const std::size_t from = m_at;
        for (; m_at - from <= longest && m_at + 1 < m_starts.size(); ++m_at)
            if (character(m_at) == end)
                return m_codes.substr(m_starts[from], m_starts[m_at] - m_starts[from]);
        m_problem = problem;
        return std::nullopt;
    }

    void readCode()
    {
        const std::string_view code = character(m_at + 1);
        if (code == "f")
            return readFontCode();
        m_at += 2;
        if (code == "n")
            ++m_row;
        else if (code == "l" || code == "c" || code == "r")
            addCellData(code == "l" ? 0 : code == "c" ? 1 : 2);
        else if (code == "p")
            setPageNumber();
    }

    void readFontCode()
    {
        const std::string_view code = character(m_at + 2);
        if (code == "n" || code == "z")
            return readFontValue(code == "n");
        static constexpr struct {
            std::string_view letter;
            bool HeaderReaderState::*attribute;
        } switches[] = {{"b", &HeaderReaderState::bold},
                        {"i", &HeaderReaderState::italic},
                        {"u", &HeaderReaderState::underline},
                        {"k", &HeaderReaderState::strikeThrough}};
        const auto found = std::ranges::find(switches, code, [](const auto& s) { return s.letter; });
        m_at += 3;
        if (found == std::end(switches))
            return;
        m_state.*(found->attribute) = character(m_at) != "0";
        ++m_at;
    }

    void readFontValue(bool isName)
    {
        m_at += 4; // the character in the place of the opening quote is passed over whatever it is
        const auto value = takeUpTo("\"", isName ? "Error parsing FONT NAME" : "Error parsing FONT SIZE");
        if (!value)
            return;
        ++m_at;
        if (isName)
            m_state.family = *value;
        else if (const auto points = wholePoints(*value))
            m_state.points = *points;
    }

    void addCellData(std::size_t part)
    {
        m_part = part;
        if (HeaderCell* const cell = current()) {
            cell->font.family = m_state.family;
            cell->font.points = static_cast<float>(m_state.points);
            cell->font.bold = m_state.bold;
            cell->font.underline = m_state.underline;
            cell->font.italic = m_state.italic;
            cell->font.strikeThrough = m_state.strikeThrough;
        }
    }

    void setText(std::string_view text)
    {
        if (HeaderCell* const cell = current())
            cell->text = text;
    }

    void setPageNumber()
    {
        if (HeaderCell* const cell = current()) {
            cell->text = pageNumberText;
            cell->showsPageNumber = true;
        }
    }

    HeaderCell* current()
    {
        return m_row < m_grid.size() ? &m_grid[m_row][m_part]
                                     : nullptr; // lines beyond the ninth show nowhere
    }

    std::string_view m_codes;
    std::vector<std::size_t> m_starts;
    std::size_t m_at = 0; ///< character, from 0
    HeaderGrid& m_grid;
    HeaderReaderState& m_state;
    std::size_t m_row = 0, m_part = 0;
    std::string_view m_problem;
};

std::string shortest(float points)
{
    std::array<char, 32> digits;
    const auto end = std::to_chars(digits.data(), digits.data() + digits.size(), points).ptr;
    return {digits.data(), end};
}

} // namespace

std::string_view readHeaderCodes(std::string_view codes, HeaderGrid& grid, HeaderReaderState& state)
{
    return EditorReader(codes, grid, state).read();
}

std::string headerCellCodes(const HeaderCell& cell, int column)
{
    const HeaderCellFont& font = cell.font;
    std::string codes = "/fn\"" + font.family + "\"/fz\"" + shortest(font.points) + '"';
    for (const auto& [letter, on] : {std::pair('b', font.bold), std::pair('i', font.italic),
                                     std::pair('u', font.underline), std::pair('k', font.strikeThrough)})
        codes += std::string("/f") + letter + (on ? '1' : '0');
    if (column == 1 || column == 3 || column == 5)
        codes += column == 1 ? "/l" : column == 3 ? "/c" : "/r";
    return codes + (cell.text == pageNumberText ? "/p" : cell.text);
}

std::string headerCodes(const HeaderGrid& grid)
{
    const auto holdsText = [](const auto& line) {
        return std::ranges::any_of(line, [](const HeaderCell& cell) { return !cell.text.empty(); });
    };
    const auto end = std::find_if(grid.rbegin(), grid.rend(), holdsText).base();
    std::string codes;
    for (auto line = grid.begin(); line != end; ++line) {
        for (std::size_t part = 0; part < line->size(); ++part)
            if (!(*line)[part].text.empty())
                codes += headerCellCodes((*line)[part], headerColumns[part]);
        codes += "/n";
    }
    return codes;
}

} // namespace selfreport
